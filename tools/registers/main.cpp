// quivord-registers: prints docs/registers.md, the table of a new factory store in docs/board.md,
// or the names in wireshark/quivord.lua, from the tables that the daemon and the board work with.
#include <cstdio>
#include <string_view>

#include "pages.h"

namespace {

using namespace registers;

std::string RegistersPage() {
  return "# Registers\n\n"
         "Printed by `quivord-registers` from the daemon's own tables; `scripts/docs` renews it.\n"
         "\n"
         "A request names a register by a 32-bit address, the number of bytes, and the device it "
         "is\n"
         "for. This page is about the sending card's own registers. Values of more than one byte "
         "are\n"
         "little-endian.\n"
         "\n"
         "## Spaces\n\n"
         "The address says which space serves a request; offsets are counted from the space's "
         "first\n"
         "register. An access of more or fewer bytes than the space takes is refused with ack 4. "
         "One\n"
         "that leaves the offsets named here has a reply without data, and does nothing.\n\n" +
         SpacesPart() +
         "\n"
         "Registers from `0xF0000000` are the FPGA's cells: the low 28 bits are the bus address.\n"
         "\n" +
         RowsPart() +
         "\n"
         "## Feature registers\n\n"
         "Offset n is register `0x02000000` + n and, below `0x1F0`, also FPGA cell n, readable at\n"
         "`0xF0000000` + n. The daemon keeps an image of them, which it stores with every write. "
         "Where\n"
         "an offset is marked as a cell, the FPGA's value is the one to go by. Bytes that have no "
         "name\n"
         "here are kept and passed on to the FPGA as they are. `quivordctl feature` takes these "
         "names.\n"
         "\n"
         "A reply comes before the work: what a write did can be read back a little later.\n\n" +
         FeaturesPart() +
         "\n"
         "## Reports\n\n"
         "The daemon tells the service daemon unasked when a status register changes: a report "
         "bears\n"
         "the number of the register, `0x02000000` + the cell, and the new bytes. Roles of ports "
         "are\n"
         "reported in the same way, and these:\n\n" +
         ReportsPart() +
         "\n"
         "`quivordctl monitor` prints them in words.\n"
         "\n"
         "## Flash store\n\n"
         "The store has 16 MiB. `quivordctl store` takes these names.\n\n" +
         FlashPart();
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view option = argc == 2 ? argv[1] : "";
  if (argc == 1) {
    std::fputs(RegistersPage().c_str(), stdout);
  } else if (option == "--factory-store") {
    std::fputs(FactoryPart().c_str(), stdout);
  } else if (option == "--lua") {
    std::fputs(LuaPart().c_str(), stdout);
  } else {
    std::fputs("usage: quivord-registers [--factory-store | --lua]\n", stderr);
    return 2;
  }
  return 0;
}
