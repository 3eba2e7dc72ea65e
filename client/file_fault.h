// Why a file can't be read or written, or a board isn't there, as all texts have it.
#pragma once

#include <string>
#include <system_error>

namespace quivord {

// ": No such file or directory" for an errno; empty for 0, where no reason is known.
inline std::string ReasonOf(int error) {
  return error == 0 ? "" : ": " + std::generic_category().message(error);
}

inline std::string CannotRead(const std::string& file, int error) {
  return file + " can't be read" + ReasonOf(error);
}

inline std::string CannotWrite(const std::string& file, int error) {
  return file + " can't be written" + ReasonOf(error);
}

inline std::string NoBoardAt(const std::string& folder) {
  return "no board at " + folder + "; 'quivord-board create' makes one";
}

}  // namespace quivord
