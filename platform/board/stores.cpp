#include "board/stores.h"

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <system_error>

#include "board/board.h"
#include "board/files.h"

namespace board {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 3> kFiles = {"brmpara", "brmpara_factory",
                                                    "brmpara_factory_tmp"};

void Create(const fs::path& file, std::string_view content) {
  if (!ReplaceWhole(file, content)) Fail("cannot create the store " + file.string());
}

std::size_t SizeOf(const fs::path& file) {
  std::error_code missing;
  const auto size = fs::file_size(file, missing);
  return missing ? 0 : static_cast<std::size_t>(size);
}

bool FillUp(const fs::path& file) {
  const std::size_t size = SizeOf(file);
  if (size >= kStoreSize) return true;
  std::fprintf(stderr, "board: %s has only %zu bytes; the rest is filled up with 0xFF\n",
               file.c_str(), size);
  const FileHandle handle(open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
  return handle && WriteAll(handle.get(), std::string(kStoreSize - size, '\xFF'));
}

void CreateMissing(const fs::path& factory, const fs::path& live) {
  const FileHandle lock = LockFolder(Folder());
  if (!fs::exists(factory)) Create(factory, FactoryImage());
  if (fs::exists(live)) return;
  const auto content = ReadWhole(factory);
  if (!content) Fail("cannot read the factory store " + factory.string());
  Create(live, *content);
}

}  // namespace

const fs::path& StorePath(Store store) {
  static const auto* const paths = [] {
    auto made = std::make_unique<std::array<fs::path, kFiles.size()>>();
    for (std::size_t i = 0; i < kFiles.size(); ++i) {
      (*made)[i] = Folder() / "usr/zeph/etc/envcfg" / kFiles[i];
    }
    return made.release();
  }();
  return (*paths)[static_cast<std::size_t>(store)];
}

void CreateStores() {
  const auto factory = StorePath(Store::kFactory);
  const auto live = StorePath(Store::kLive);
  if (fs::exists(factory) && fs::exists(live)) return;
  CreateMissing(factory, live);
  malloc_trim(0);  // whole images were in memory; a daemon that made them stays as small as others
}

bool CheckStores() {
  bool good = true;
  for (const Store store : {Store::kLive, Store::kFactory, Store::kTmp}) {
    const auto file = StorePath(store);
    if (!fs::exists(file)) continue;  // the temporary one
    const bool plain = fs::is_regular_file(file);
    if (!plain) std::fprintf(stderr, "board: the store %s is not a plain file\n", file.c_str());
    good = plain && FillUp(file) && good;
  }
  return good;
}

bool TakeFactoryStore() {
  const auto live = StorePath(Store::kLive);
  const auto tmp = StorePath(Store::kTmp);
  if (fs::is_regular_file(tmp) && SizeOf(tmp) >= kStoreSize) {
    return std::rename(tmp.c_str(), live.c_str()) == 0;
  }
  const auto factory = ReadWhole(StorePath(Store::kFactory));
  return factory && ReplaceWhole(live, *factory);
}

}  // namespace board
