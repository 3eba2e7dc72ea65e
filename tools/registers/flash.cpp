#include <algorithm>
#include <cstdio>
#include <map>

#include "board/stores.h"
#include "markdown.h"
#include "pages.h"
#include "proto/calc_feature_words.h"
#include "proto/calc_flashmap.h"

namespace registers {
namespace {

using namespace ZEPH_MCUC;
using Rows = std::vector<std::vector<std::string>>;
using Bytes = std::span<const std::uint8_t>;

constexpr std::uint8_t kUnwritten = 0xFF;
constexpr std::size_t kMostShown = 16;  // bytes in a row

// A stretch of the store: a region, or what lies between two.
struct Stretch {
  std::uint32_t address;
  std::uint32_t length;
  std::string name;
  std::string content;
};

std::vector<Stretch> Stretches() {
  std::vector<Stretch> stretches;
  std::uint32_t end = 0;
  const auto gap = [&](std::uint32_t next) {
    if (next > end) stretches.push_back({end, next - end, "", "between the regions"});
  };
  for (const FlashRegion& region : FlashRegions()) {
    gap(region.address);
    stretches.push_back({region.address, region.length, std::string(region.name), region.content});
    end = region.address + region.length;
  }
  gap(flash::kStoreSize);
  return stretches;
}

// Cuts what is unwritten off both ends.
void Trim(Stretch& stretch, Bytes& bytes) {
  const auto written = [](std::uint8_t byte) { return byte != kUnwritten; };
  const auto begin = std::find_if(bytes.begin(), bytes.end(), written);
  const auto end = std::find_if(bytes.rbegin(), bytes.rend(), written).base();
  stretch.address += static_cast<std::uint32_t>(begin - bytes.begin());
  bytes = begin < end ? Bytes(begin, end) : Bytes();
  stretch.length = static_cast<std::uint32_t>(bytes.size());
}

// What in the feature image isn't 0, by name. A value that all ports have in common is said once.
std::string FeatureValues(Bytes image) {
  std::map<std::string, int> of_ports;
  std::string text;
  const auto add = [&](const std::string& more) { text += (text.empty() ? "" : ", ") + more; };
  for (const FeatureGroup& group : FeatureGroups()) {
    for (const FeatureRegister& row : group.registers) {
      const Bytes bytes = image.subspan(row.offset, row.width);
      const bool zero = std::all_of(bytes.begin(), bytes.end(), [](auto b) { return b == 0; });
      if (zero || row.place == FeaturePlace::kCell) continue;
      const std::string_view name = row.name;
      const std::string value = " " + FeatureText(row, bytes);
      if (!name.starts_with("port-")) {
        add(Code(name) + value);
        continue;
      }
      const auto suffix = name.substr(name.find('-', sizeof "port-" - 1) + 1);
      const std::string common = Code("port-N-" + std::string(suffix)) + value;
      if (++of_ports[common] == 16) add(common);
    }
  }
  return text;
}

std::string HexBytes(Bytes bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    char digits[4];
    std::snprintf(digits, sizeof digits, "%02x", byte);
    text += (text.empty() ? "" : " ") + std::string(digits);
  }
  return text;
}

// The runs of bytes that aren't 0, as offset and bytes.
std::string Runs(Bytes bytes) {
  std::string text;
  const auto is_zero = [](std::uint8_t byte) { return byte == 0; };
  for (auto at = bytes.begin(); at != bytes.end();) {
    const auto begin = std::find_if_not(at, bytes.end(), is_zero);
    at = std::find_if(begin, bytes.end(), is_zero);
    if (begin == at) break;
    const Bytes run(begin, at);
    text += (text.empty() ? "" : ", ") + Hex(static_cast<std::uint32_t>(begin - bytes.begin())) +
            ": " + HexBytes(run.first(std::min(run.size(), kMostShown)));
    if (run.size() > kMostShown) text += " .. (" + std::to_string(run.size()) + " bytes)";
  }
  return text;
}

std::string ContentText(const Stretch& stretch, Bytes bytes) {
  if (bytes.size() <= kMostShown) return HexBytes(bytes);
  const bool features = stretch.address == flash::kFeature;
  const std::string values = features ? FeatureValues(bytes) : Runs(bytes);
  return values.empty() ? "0" : "0 but " + values;
}

}  // namespace

std::string FlashPart() {
  Rows rows;
  for (const FlashRegion& region : FlashRegions()) {
    rows.push_back(
        {Hex(region.address, 6), std::to_string(region.length), Code(region.name), region.content});
  }
  return Table({"Address", "Bytes", "Name", "Content"}, rows);
}

std::string FactoryPart() {
  const std::string image = board::FactoryImage();
  const Bytes all(reinterpret_cast<const std::uint8_t*>(image.data()), image.size());
  Rows rows;
  for (Stretch& stretch : Stretches()) {
    Bytes bytes = all.subspan(stretch.address, stretch.length);
    Trim(stretch, bytes);
    if (bytes.empty()) continue;
    rows.push_back({Hex(stretch.address, 6), std::to_string(stretch.length), stretch.content,
                    ContentText(stretch, bytes)});
  }
  return Table({"Address", "Bytes", "What", "Holds"}, rows);
}

}  // namespace registers
