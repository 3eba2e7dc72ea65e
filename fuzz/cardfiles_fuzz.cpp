// Configuration files for the receiving cards, whatever a client sends: a header gives a sorted
// table that names every register's file rightly or nothing at all, and the packs of a file lie in
// it, one behind the other. The client's own reading of both agrees.
#include <algorithm>
#include <numeric>

#include "cardfiles/image.h"
#include "proto/calc_cardfiles.h"
#include "want.h"

namespace {

using namespace ZEPH_MCUC;
using Bytes = std::span<const uint8_t>;

void ReadHeader(Bytes bytes) {
  const auto table = ReadCardFileHeader(bytes);
  if (!table.has_value()) return;
  const auto places = std::span(table->address).first(table->count + std::size_t{1});
  Want(table->count <= cardfiles::kMostFiles && std::is_sorted(places.begin(), places.end()));
  for (const uint32_t place : places) {
    for (const uint32_t reg : {place - 1, place, place + 1, place + 2047}) {
      const auto entry = table->EntryOf(reg);
      const bool held = entry.has_value();
      const auto first = std::lower_bound(places.begin(), places.end(), cardfiles::kBase);
      Want(held == (first != places.end() && reg >= *first && reg < places.back()));
      Want(!held || (*entry < table->count && places[*entry] <= reg && reg < places[*entry + 1]));
      Want(!held || table->index[*entry] <= table->count);
    }
  }
}

void ReadPacks(Bytes file) {
  CardPackReader reader(file);
  std::size_t packs = 0;
  const uint8_t* at = file.data() + std::min<std::size_t>(file.size(), cardfiles::kFirstPack);
  while (const auto pack = reader.Next()) {
    ++packs;
    Want(pack->data.data() == at + cardfiles::kPackHead);
    Want(pack->data.size() <= cardfiles::kMostPackData);
    at = pack->data.data() + pack->data.size();
    Want(at <= file.data() + file.size());
  }
  const auto verdict = quivord::cardfiles::Check(file);
  Want(verdict.packs == packs);
  Want(packs <= 0xFFFF);
}

void ReadList(Bytes bytes) {
  const std::size_t header = std::min<std::size_t>(bytes.size(), quivord::cardfiles::kHeaderBytes);
  for (const auto& entry :
       quivord::cardfiles::Entries(bytes.first(header), bytes.subspan(header))) {
    Want(entry.name.size() < quivord::cardfiles::kNameBytes);
    Want(entry.length == 0 || entry.length <= cardfiles::kImage - entry.offset);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const Bytes bytes(data, size);
  ReadHeader(bytes);
  ReadPacks(bytes);
  ReadList(bytes);
  return 0;
}
