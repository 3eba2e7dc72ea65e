#include "live/tail.h"

#include <algorithm>
#include <string_view>

#include "live/files.h"

namespace quivord::live {

void Tail::BeginAnew(std::uint64_t identity) {
  identity_ = identity;
  at_ = 0;
  line_.clear();
  in_the_middle_ = false;
}

void Tail::SkipTo(std::uint64_t at) {
  at_ = at;
  line_.clear();
  in_the_middle_ = true;
}

void Tail::Take(std::string_view piece, std::vector<std::string>& lines) {
  while (!piece.empty()) {
    const std::size_t end = std::min(piece.find('\n'), piece.size());
    const std::size_t room = kMostLine - line_.size();
    if (!in_the_middle_) line_.append(piece.substr(0, std::min(end, room)));
    if (end == piece.size()) return;
    if (!in_the_middle_) lines.push_back(std::move(line_));
    line_.clear();
    in_the_middle_ = false;
    piece.remove_prefix(end + 1);
  }
}

std::vector<std::string> Tail::Look() {
  std::vector<std::string> lines;
  const FileReader file(file_);
  const std::uint64_t size = file.size();
  if (file.identity() != identity_ || size < at_) BeginAnew(file.identity());
  if (size - at_ > kMostRead) {
    if (looked_) passed_over_ += size - kMostRead - at_;
    SkipTo(size - kMostRead);
  }
  looked_ = true;
  std::string piece(size - at_, '\0');
  if (!file.Read(at_, {reinterpret_cast<std::uint8_t*>(piece.data()), piece.size()})) return lines;
  at_ = size;
  Take(piece, lines);
  return lines;
}

}  // namespace quivord::live
