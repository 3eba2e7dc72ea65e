// The parts of the pages, each Markdown with a line feed at the end.
#pragma once

#include <string>

namespace registers {

std::string SpacesPart();    // all register spaces: place, lengths, what reads and writes meet
std::string RowsPart();      // the rows of spaces that have several
std::string FeaturesPart();  // the named feature registers
std::string ReportsPart();   // what the daemon sends unasked
std::string FlashPart();     // the map of the flash store
std::string FactoryPart();   // what a new factory store holds

// The names that the dissector in wireshark/ shows, as a table in Lua.
std::string LuaPart();

}  // namespace registers
