// A flash store of a board that isn't running, as bytes.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "board/board.h"
#include "board/files.h"
#include "board/stores.h"

namespace ctl {

class StoreFile {
 public:
  // Opens a store of the board in `folder` and keeps the daemon off the board for as long as this
  // object lives. Nothing, and the reason in `fault`, where there is no such board or store, or
  // where the daemon runs.
  static std::optional<StoreFile> Open(const std::filesystem::path& folder, board::Store store,
                                       std::string& fault);

  // `length` bytes from `address`; nothing where they do not all lie in the store, or can't be
  // read.
  std::optional<std::vector<std::uint8_t>> Read(std::uint32_t address, std::uint32_t length) const;

  // Puts `bytes` at `address`, all of them or, where they don't all fit into the store, none. False
  // for that, and where the file can't be written.
  bool Write(std::uint32_t address, const std::vector<std::uint8_t>& bytes) const;

 private:
  StoreFile(board::FileHandle lock, board::FileHandle file)
      : lock_(std::move(lock)), file_(std::move(file)) {}

  board::FileHandle lock_;  // what the daemon's guard finds taken
  board::FileHandle file_;
};

}  // namespace ctl
