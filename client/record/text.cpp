#include "record/text.h"

#include <cstdio>
#include <map>

#include "counted.h"
#include "proto/calc_feature_words.h"
#include "stub/frame_layout.h"
#include "trace/busline.h"
#include "trace/subject.h"

namespace quivord::record {
namespace {

using namespace ZEPH_MCUC;

constexpr std::size_t kMostShown = 20;  // findings, and places of one of them

std::string Seconds(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f s", seconds);
  return text;
}

// "0x7F1234 reads 0x02000012 output, 1 byte".
std::string RequestText(const Finding& finding) {
  const auto head = ReadFrameHead(finding.request);
  if (!head.has_value()) return "a frame of " + Counted(finding.request.size(), "byte");
  const auto data = FrameData(*head, finding.request);
  const bool write = head->code == JSHL_PROTOWRITE;
  const std::string subject = trace::SubjectText(*head, data);
  return write ? "writes " + subject
               : "reads " + subject + ", " + Counted(head->dataLength, "byte");
}

std::string ReportWords(const Finding& finding) {
  const auto head = ReadFrameHead(finding.report);
  if (!head.has_value()) return "a frame of " + Counted(finding.report.size(), "byte");
  const auto data = FrameData(*head, finding.report);
  const std::string text =
      head->deviceType == JSHL_TypeSender ? ReportText(head->registerAddress, data) : std::string();
  return trace::PlaceText(*head) + (data.empty() ? "" : " =" + trace::HexWords(data)) +
         (text.empty() ? "" : ", " + text);
}

// What a finding is about, behind the peer.
std::string Subject(const Finding& finding) {
  switch (finding.kind) {
    case Finding::Kind::kAnswer:
      return RequestText(finding);
    case Finding::Kind::kNoAnswer:
      return RequestText(finding) + ": no answer in time";
    case Finding::Kind::kMissingReport:
      return "was told " + ReportWords(finding) + ": not now";
    case Finding::Kind::kNewReport:
      return "is told " + ReportWords(finding) + ": not when it was recorded";
  }
  return "";
}

std::string FindingText(const Finding& finding) {
  std::string text = "  at " + Seconds(static_cast<double>(finding.at_us) / 1e6) + "  " +
                     trace::PeerText(finding.peer) + " " + Subject(finding);
  std::size_t shown = 0;
  for (const Place& place : finding.places) {
    if (!place.why.empty() || ++shown > kMostShown) continue;
    text += "\n    " + place.where + ": recorded " + place.recorded + ", now " + place.now;
  }
  if (shown > kMostShown) text += "\n    and " + Counted(shown - kMostShown, "more place");
  return text;
}

std::string DifferencesText(const Played& played) {
  std::string text;
  std::size_t shown = 0;
  for (const Finding& finding : played.findings) {
    if (!finding.allowed() && ++shown <= kMostShown) text += "\n" + FindingText(finding);
  }
  if (shown == 0) return "";
  if (shown > kMostShown) {
    text += "\n  and " + std::to_string(shown - kMostShown) + " more; --json has all";
  }
  return "\ndifferent:" + text;
}

// A line a place that is allowed to differ and did.
std::string AllowedText(const Played& played) {
  std::map<std::string, std::size_t> times;
  for (const Finding& finding : played.findings) {
    for (const Place& place : finding.places) {
      if (!place.why.empty()) ++times[place.where + ": " + place.why];
    }
  }
  std::string text;
  if (played.passing != 0) {
    text +=
        "\n  " + Counted(played.passing, "answer") + " of peers that asked again until it fitted";
  }
  for (const auto& [place, count] : times) {
    const bool report = place.starts_with("a report");
    text += "\n  " + (report ? Counted(count, "time") + " " : Counted(count, "answer") + " in ") +
            place;
  }
  return text.empty() ? "" : "\ndifferent, as it may be:" + text;
}

const char* KindWord(Finding::Kind kind) {
  switch (kind) {
    case Finding::Kind::kAnswer:
      return "answer";
    case Finding::Kind::kNoAnswer:
      return "no-answer";
    case Finding::Kind::kMissingReport:
      return "missing-report";
    case Finding::Kind::kNewReport:
      return "new-report";
  }
  return "";
}

nlohmann::json FindingJson(const Finding& finding) {
  nlohmann::json places = nlohmann::json::array();
  for (const Place& place : finding.places) {
    places.push_back({{"where", place.where},
                      {"recorded", place.recorded},
                      {"now", place.now},
                      {"allowed", place.why}});
  }
  const Bytes& frame = finding.request.empty() ? finding.report : finding.request;
  return {{"kind", KindWord(finding.kind)},
          {"at_us", finding.at_us},
          {"peer", finding.peer},
          {"about", Subject(finding)},
          {"frame", trace::HexOf(frame)},
          {"allowed", finding.allowed()},
          {"places", places}};
}

}  // namespace

std::string PlayedText(const Played& played, bool compared) {
  std::string text = "sent " + Counted(played.sent, "frame") + " of " +
                     Counted(played.peers, "peer") + " in " + Seconds(played.seconds) + "; " +
                     Counted(played.answers, "answer");
  if (compared) {
    text += ", " + Counted(played.reports, "report");
    if (played.greetings != 0) {
      text +=
          " (and " + std::to_string(played.greetings) + " before the first frame, not compared)";
    }
    if (played.asked_again != 0) {
      text += "\nasked again " + std::to_string(played.asked_again) +
              " times for answers that were not as recorded yet";
    }
    text += AllowedText(played);
  }
  text += DifferencesText(played);
  if (compared && played.same()) text += "\nthe same";
  return text;
}

nlohmann::json PlayedJson(const Played& played, bool compared) {
  nlohmann::json findings = nlohmann::json::array();
  for (const Finding& finding : played.findings) findings.push_back(FindingJson(finding));
  return {{"sent", played.sent},
          {"peers", played.peers},
          {"answers", played.answers},
          {"reports", played.reports},
          {"reports_before", played.greetings},
          {"passing", played.passing},
          {"asked_again", played.asked_again},
          {"seconds", played.seconds},
          {"compared", compared},
          {"same", compared ? nlohmann::json(played.same()) : nlohmann::json()},
          {"findings", findings}};
}

}  // namespace quivord::record
