#include "support/sweep_store.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <sstream>

#include "board/files.h"
#include "board/stores.h"
#include "support/inprocess.h"

namespace sweep {
namespace {

constexpr std::size_t kPage = 4096;

std::filesystem::path File() { return board::StorePath(board::Store::kLive); }

bool SamePage(View one, View other, std::size_t at) {
  return std::memcmp(&one[at], &other[at], kPage) == 0;
}

bool Touches(const StoreWrite& write, const Region& region) {
  return write.address < region.address + region.length &&
         region.address < write.address + write.data.size();
}

Bytes Part(View store, const Region& region) {
  const auto begin = store.begin() + region.address;
  return {begin, begin + region.length};
}

// The region's content in front of the writes and behind each that touches it.
std::vector<Bytes> Contents(View before, const std::vector<StoreWrite>& writes,
                            const Region& region) {
  std::vector<Bytes> contents = {Part(before, region)};
  for (const StoreWrite& write : writes) {
    if (!Touches(write, region)) continue;
    Bytes content = contents.back();
    for (std::size_t i = 0; i < write.data.size(); ++i) {
      const std::size_t at = write.address + i - region.address;  // wraps in front of the region
      if (at < content.size()) content[at] = write.data[i];
    }
    contents.push_back(std::move(content));
  }
  return contents;
}

// Whether each byte stands at its place in one of `contents`.
bool IsMix(const Bytes& content, const std::vector<Bytes>& contents) {
  for (std::size_t i = 0; i < content.size(); ++i) {
    const auto holds = [&](const Bytes& one) { return one[i] == content[i]; };
    if (std::none_of(contents.begin(), contents.end(), holds)) return false;
  }
  return true;
}

}  // namespace

bool Covers(const std::vector<Region>& regions, std::size_t address) {
  return std::ranges::any_of(regions, [=](const Region& region) {
    return address >= region.address && address < region.address + region.length;
  });
}

std::string At(std::size_t address, const std::string& text) {
  std::ostringstream line;
  line << "0x" << std::hex << address << " " << text;
  return line.str();
}

std::vector<std::optional<StoreWrite>> TracedWrites(const std::vector<std::string>& lines) {
  std::vector<std::optional<StoreWrite>> writes;
  for (const std::string& line : lines) {
    std::istringstream words(line);
    std::string kind, direction, store, address, length, outcome, hex;
    words >> kind >> direction >> store >> address >> length >> outcome >> hex;
    if (kind != "flash" || direction != "W" || outcome != "ok") continue;
    auto& write = writes.emplace_back();
    if (store != "live") continue;
    write = {static_cast<std::uint32_t>(std::stoul(address, nullptr, 16)),
             hex == "-" ? Bytes() : inprocess::Bytes(hex.c_str())};
  }
  return writes;
}

// Mapped, and mapped anew where a reset has put another file in its place.
View Store() {
  static ino_t mapped = 0;
  static const std::byte* bytes = nullptr;
  struct stat status {};
  if (stat(File().c_str(), &status) == 0 && status.st_ino != mapped) {
    bytes = board::MapShared(File(), board::kStoreSize);
    mapped = status.st_ino;
  }
  return {reinterpret_cast<const std::uint8_t*>(bytes), board::kStoreSize};
}

// Page by page, what differs alone.
void PutStore(View bytes) {
  const View present = Store();
  const board::FileHandle file(open(File().c_str(), O_WRONLY | O_CLOEXEC));
  for (std::size_t at = 0; at < bytes.size(); at += kPage) {
    if (SamePage(bytes, present, at)) continue;
    if (pwrite(file.get(), &bytes[at], kPage, static_cast<off_t>(at)) != kPage) {
      board::Fail("the sweep can't put the store back");
    }
  }
}

Bytes WithWrites(const Bytes& before, const std::vector<StoreWrite>& writes, std::size_t count) {
  Bytes store = before;
  for (std::size_t i = 0; i < count; ++i) {
    std::ranges::copy(writes[i].data, store.begin() + writes[i].address);
  }
  return store;
}

std::string Recount(const std::vector<StoreWrite>& writes, const std::vector<Region>& regions) {
  for (const Region& region : regions) {
    const auto count = std::ranges::count_if(
        writes, [&](const StoreWrite& write) { return Touches(write, region); });
    if (region.free || count == region.writes) continue;
    return At(region.address, "is written " + std::to_string(count) + " times in place of " +
                                  std::to_string(region.writes));
  }
  return "";
}

std::string Difference(View store, View wanted, const std::vector<Region>& regions) {
  std::vector<Region> free = regions;
  std::erase_if(free, [](const Region& region) { return !region.free; });
  for (std::size_t at = 0; at < store.size(); ++at) {
    while (at % kPage == 0 && at < store.size() && SamePage(store, wanted, at)) at += kPage;
    if (at == store.size() || store[at] == wanted[at]) continue;
    if (!Covers(free, at)) return At(at, "differs");
  }
  return "";
}

std::string Judge(View store, View before, const std::vector<StoreWrite>& writes,
                  const std::vector<Region>& regions, const Damage& damage) {
  std::vector<Region> all = regions;
  for (Region& region : all) {
    const std::vector<Bytes> contents = Contents(before, writes, region);
    const Bytes content = Part(store, region);
    const bool torn = damage.torn.has_value() && *damage.torn < writes.size() &&
                      Touches(writes[*damage.torn], region);
    const bool mixed = torn || (damage.lost && contents.size() > 2);
    const bool holds = std::ranges::find(contents, content) != contents.end();
    if (!region.free && !holds && !(mixed && IsMix(content, contents))) {
      return At(region.address, "holds neither its old nor its new content");
    }
    region.free = true;
  }
  const std::string outside = Difference(store, before, all);
  return outside.empty() ? "" : outside + ", which the operation must not touch";
}

}  // namespace sweep
