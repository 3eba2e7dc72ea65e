// The flash stores of a board that isn't running.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <iterator>

#include "commands.h"
#include "commands/store_file.h"
#include "counted.h"
#include "file_fault.h"
#include "numbers.h"
#include "option_words.h"
#include "proto/calc_flashmap.h"
#include "subcommands.h"
#include "table.h"
#include "written_files.h"

namespace ctl {
namespace {

using quivord::Counted;
using ZEPH_MCUC::FlashRegion;
using ZEPH_MCUC::flash::kStoreSize;
using Bytes = std::vector<std::uint8_t>;

struct Words {
  std::string store = "live";
  std::string place;   // a region's name or an address
  std::string length;  // of a read at an address, or of less than a region
  std::string file;
  std::vector<std::string> bytes;
};

// Where in the store, and how much of it.
struct Place {
  std::uint32_t address = 0;
  std::uint32_t length = 0;  // 0: not said
};

constexpr char kPlaceRule[] =
    "the place in a store is a region's name, as 'quivordctl store dump' shows them, or an address "
    "below 0x1000000";
constexpr char kLengthRule[] = "LENGTH is a number of bytes from 1 up that ends inside the 16 MiB";

// Whose bytes these are, in words.
std::string NameOf(std::uint32_t address, std::size_t length) {
  for (const FlashRegion& region : ZEPH_MCUC::FlashRegions()) {
    if (address >= region.address + region.length) continue;
    if (address + length <= region.address) break;
    const bool inside =
        address >= region.address && length <= region.address + region.length - address;
    return inside ? std::string(region.name) : "more than one region";
  }
  return "unused";
}

// Understands place and length; `fault` says why they make no sense where they don't.
Place FindPlace(const Words& words, std::string& fault) {
  Place place;
  const FlashRegion* region = ZEPH_MCUC::FindFlashRegion(words.place);
  const auto address = ParseNumber(words.place, kStoreSize - 1);
  if (region == nullptr && !address.has_value()) {
    fault = kPlaceRule;
    return place;
  }
  place.address = region != nullptr ? region->address : static_cast<std::uint32_t>(*address);
  place.length = region != nullptr ? region->length : 0;
  if (!words.length.empty()) {
    const auto length = ParseNumber(words.length, kStoreSize - place.address);
    if (!length.has_value() || *length == 0) {
      fault = kLengthRule;
      return place;
    }
    place.length = static_cast<std::uint32_t>(*length);
  }
  return place;
}

std::optional<StoreFile> OpenStore(const Context& context, const Words& words) {
  const auto name = std::find(board::kStoreNames.begin(), board::kStoreNames.end(), words.store);
  const auto store = static_cast<board::Store>(name - board::kStoreNames.begin());
  std::string fault;
  auto file = StoreFile::Open(context.options.board, store, fault);
  if (!file.has_value()) context.Fail(Exit::kRefused, fault);
  return file;
}

// How the first bytes of a region look.
std::string Start(const Bytes& bytes) {
  constexpr std::size_t kShown = 8;
  const auto all = [&](std::uint8_t value) {
    return std::all_of(bytes.begin(), bytes.end(), [=](std::uint8_t b) { return b == value; });
  };
  if (all(0xFF)) return "(unwritten)";
  if (all(0)) return "(all 0)";
  const Bytes first(bytes.begin(), bytes.begin() + std::min(kShown, bytes.size()));
  return HexText(first) + (bytes.size() > kShown ? ".." : "");
}

Exit ShowMap(const Context& context, const StoreFile& store) {
  std::vector<std::vector<std::string>> rows = {
      {"address", "length", "region", "begins with", "holds"}};
  nlohmann::json regions = nlohmann::json::array();
  for (const FlashRegion& region : ZEPH_MCUC::FlashRegions()) {
    const auto bytes = store.Read(region.address, region.length);
    if (!bytes.has_value()) {
      return context.Fail(Exit::kRefused, quivord::CannotRead("the store", errno));
    }
    rows.push_back({AddressText(region.address), std::to_string(region.length),
                    std::string(region.name), Start(*bytes), region.content});
    regions.push_back({{"name", region.name},
                       {"address", region.address},
                       {"length", region.length},
                       {"content", region.content}});
  }
  context.out.Show(Columns(rows), {{"regions", regions}});
  return Exit::kDone;
}

// Reads what the words say; nothing, and the exit status in `exit`, where that can't be.
std::optional<Bytes> ReadPlace(const Context& context, const Words& words, Place& place,
                               Exit& exit) {
  std::string fault;
  place = FindPlace(words, fault);
  if (fault.empty() && place.length == 0) fault = "with an address, LENGTH is needed";
  if (!fault.empty()) {
    exit = context.Fail(Exit::kWrongUse, fault);
    return std::nullopt;
  }
  exit = Exit::kRefused;
  const auto store = OpenStore(context, words);
  if (!store.has_value()) return std::nullopt;
  auto bytes = store->Read(place.address, place.length);
  if (!bytes.has_value()) context.Fail(exit, quivord::CannotRead("the store", errno));
  return bytes;
}

Exit Dump(const Context& context, const Words& words) {
  if (words.place.empty()) {
    const auto store = OpenStore(context, words);
    return store.has_value() ? ShowMap(context, *store) : Exit::kRefused;
  }
  Exit exit = Exit::kDone;
  Place place;
  const auto bytes = ReadPlace(context, words, place, exit);
  if (!bytes.has_value()) return exit;
  context.out.Show(HexDump(place.address, *bytes), {{"address", place.address},
                                                    {"length", place.length},
                                                    {"region", NameOf(place.address, place.length)},
                                                    {"data", HexText(*bytes)}});
  return Exit::kDone;
}

Exit Get(const Context& context, const Words& words) {
  Exit exit = Exit::kDone;
  Place place;
  const auto bytes = ReadPlace(context, words, place, exit);
  if (!bytes.has_value()) return exit;
  nlohmann::json object = {{"address", place.address},
                           {"length", place.length},
                           {"region", NameOf(place.address, place.length)}};
  if (words.file.empty()) {
    object["data"] = HexText(*bytes);
    context.out.Show(HexText(*bytes), object);
    return Exit::kDone;
  }
  exit = WriteFile(context, words.file, *bytes);
  if (exit != Exit::kDone) return exit;
  object["file"] = words.file;
  context.out.Show(Counted(place.length, "byte") + " from " + AddressText(place.address) + " (" +
                       NameOf(place.address, place.length) + ") in " + words.file,
                   object);
  return Exit::kDone;
}

// The bytes to put; empty, and the reason in `fault`, where they can't be had.
Bytes BytesToPut(const Words& words, std::string& fault) {
  if (words.file.empty() == words.bytes.empty()) {
    fault = "give either BYTES or --file";
    return {};
  }
  if (words.file.empty()) {
    const auto bytes = ParseBytes(words.bytes);
    if (!bytes.has_value()) fault = "BYTES are hexadecimal: 05 0x1F 0a0b0c";
    return bytes.value_or(Bytes{});
  }
  std::error_code missing;
  const auto size = std::filesystem::file_size(words.file, missing);
  if (missing) fault = quivord::CannotRead(words.file, missing.value());
  if (!missing && (size == 0 || size > kStoreSize)) {
    fault = words.file + " is empty or larger than a store";
  }
  if (!fault.empty()) return {};
  std::ifstream file(words.file, std::ios::binary);
  if (!file) fault = quivord::CannotRead(words.file, errno);
  return {std::istreambuf_iterator<char>(file), {}};
}

Exit Put(const Context& context, const Words& words) {
  std::string fault;
  const Bytes bytes = BytesToPut(words, fault);
  const Place place = fault.empty() ? FindPlace(words, fault) : Place{};
  if (fault.empty() && place.length != 0 && bytes.size() > place.length) {
    fault = Counted(bytes.size(), "byte") + " do not fit into " + words.place + ", which has " +
            std::to_string(place.length);
  }
  if (fault.empty() && bytes.size() > kStoreSize - place.address) {
    fault = Counted(bytes.size(), "byte") + " from " + AddressText(place.address) +
            " end behind the store's 16 MiB";
  }
  if (!fault.empty()) return context.Fail(Exit::kWrongUse, fault);
  const auto store = OpenStore(context, words);
  if (!store.has_value()) return Exit::kRefused;
  if (!store->Write(place.address, bytes)) {
    return context.Fail(Exit::kRefused, quivord::CannotWrite("the store", errno));
  }
  const std::string name = NameOf(place.address, bytes.size());
  context.out.Show(Counted(bytes.size(), "byte") + " put at " + AddressText(place.address) + " (" +
                       name + ") of the " + words.store + " store",
                   {{"address", place.address}, {"length", bytes.size()}, {"region", name}});
  return Exit::kDone;
}

void AddPlace(CLI::App& app, Words& words, bool required) {
  auto* const place =
      app.add_option("PLACE", words.place, "Region by name, or address")->required(required);
  Offer(place, NamesOf(ZEPH_MCUC::FlashRegions()));
}

Run Declare(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.require_subcommand(0, 1);
  app.add_option("--store", words->store, "Which: live, factory or tmp")
      ->type_name("STORE")
      ->check(CLI::IsMember(std::vector<std::string>{"live", "factory", "tmp"}))
      ->capture_default_str();
  auto* const dump = AddPart(app, "dump", "Show the map of regions, or bytes for people",
                             "  quivordctl store dump\n"
                             "  quivordctl store dump feature\n"
                             "  quivordctl store --store factory dump 0xA3B100 512\n");
  auto* const get = AddPart(app, "get", "Print bytes, or copy them into a file",
                            "  quivordctl store get screen-size\n"
                            "  quivordctl store get 0 0x1000000 --file backup.bin\n");
  auto* const put = AddPart(app, "put", "Put bytes, or those of a file, into the store",
                            "  quivordctl store put card-size 80000000 80000000\n"
                            "  quivordctl store put 0 --file backup.bin\n");
  for (CLI::App* part : {dump, get, put}) AddPlace(*part, *words, part != dump);
  for (CLI::App* part : {dump, get}) {
    part->add_option("LENGTH", words->length, "Number of bytes; without it all of the region");
  }
  put->add_option("BYTES", words->bytes, "Bytes in hexadecimal");
  for (CLI::App* part : {get, put}) {
    auto* const file = part->add_option("--file", words->file, "File of plain bytes");
    file->type_name("FILE");
    if (part == get) WritesFile(file);
  }
  return [words, get, put](Context& context) {
    if (put->parsed()) return Put(context, *words);
    return get->parsed() ? Get(context, *words) : Dump(context, *words);
  };
}

}  // namespace

const Command kStoreCommand{
    "store",
    "Look into the flash stores of a board that isn't running, or change them",
    "  quivordctl store dump\n"
    "  quivordctl store dump feature\n"
    "  quivordctl store --store factory get screen-size\n"
    "  quivordctl store put card-size 80000000 80000000\n",
    Declare,
};

}  // namespace ctl
