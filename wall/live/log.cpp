#include "live/log.h"

#include <algorithm>

#include "proto/calc_feature_words.h"
#include "quivord/messages.h"
#include "trace/subject.h"

namespace quivord::live {
namespace {

using namespace ZEPH_MCUC;
using trace::PeerText;
using trace::SubjectText;

std::string ReportWords(const BusLine& line) {
  const std::string words = line.head.deviceType == JSHL_TypeSender
                                ? ReportText(line.head.registerAddress, line.data)
                                : std::string();
  return words.empty() ? SubjectText(line.head, line.data) : words;
}

}  // namespace

void Log::Take(std::string_view line) {
  const auto read = ReadBusLine(line);
  if (!read.has_value()) return;
  read->towards_daemon ? TakeRequest(*read) : TakeAnswer(*read);
}

void Log::TakeRequest(const BusLine& line) {
  asked_.push_back({line.peer, line.head.registerAddress});
  if (asked_.size() > kPending) asked_.pop_front();
  const bool write = line.head.code == JSHL_PROTOWRITE;
  Add(line, LogEntry::Kind::kRequest,
      PeerText(line.peer) + (write ? " writes " : " reads ") + SubjectText(line.head, line.data));
}

// The trace doesn't say whether a frame answers a request: what nobody has asked for is a report.
void Log::TakeAnswer(const BusLine& line) {
  const auto asked =
      std::find(asked_.begin(), asked_.end(), Asked{line.peer, line.head.registerAddress});
  if (asked == asked_.end()) return Add(line, LogEntry::Kind::kReport, ReportWords(line));
  asked_.erase(asked);
  if (line.head.ack == JSHL_OK) return;
  Add(line, LogEntry::Kind::kRefusal,
      PeerText(line.peer) + " is refused " + SubjectText(line.head, {}) + ": " +
          std::string(AckText(line.head.ack)));
}

void Log::Add(const BusLine& line, LogEntry::Kind kind, std::string text) {
  entries_.push_back({next_++, line.at_us, kind, std::move(text)});
  if (entries_.size() > kMost) entries_.pop_front();
}

}  // namespace quivord::live
