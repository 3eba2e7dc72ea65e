// Files on disk with configurations for the receiving cards, and their replay.
#include <fcntl.h>
#include <platform/system.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "driverutil.h"
#include "mcuctrace.h"

namespace ZEPH_MCUC {
namespace {

constexpr char kFolder[] = "/usr/zeph/etc/owd/cabCfg/";
constexpr int kLastNumber = 31;        // a number above it stands for a file by its full path
constexpr off_t kMostFile = 0x800000;  // as many registers hold files
constexpr uint16_t kPiece = 512;       // bytes in one packet
constexpr int kAfterPiece_ms = 10;
constexpr int kAfterPack_ms = 15;

// The device path of a file by its number, or the path as it is given.
std::string PathOf(const char* file_name, int number) {
  if (number > kLastNumber && file_name != nullptr) return file_name;
  char name[32];
  std::snprintf(name, sizeof(name), "RvCfgFile_%d.rcfgx", number);
  return std::string(kFolder) + name;
}

// A file descriptor that closes itself.
class File {
 public:
  File(const std::string& path, int flags)
      : descriptor_(open(path.c_str(), flags | O_CLOEXEC, 0664)) {}
  ~File() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  int get() const { return descriptor_; }
  bool isOpen() const { return descriptor_ >= 0; }

 private:
  int descriptor_;
};

void MakeFolder() {
  const std::string folder = platform::DevicePath(kFolder);
  for (std::size_t at = folder.find('/', 1); at != std::string::npos;
       at = folder.find('/', at + 1)) {
    mkdir(folder.substr(0, at).c_str(), 0775);  // mostly there already; the open says if it isn't
  }
}

bool WriteAll(int file, const uint8_t* data, std::size_t length) {
  while (length > 0) {
    const ssize_t written = write(file, data, length);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    data += written;
    length -= static_cast<std::size_t>(written);
  }
  return true;
}

bool ReadAll(int file, uint8_t* data, std::size_t length) {
  while (length > 0) {
    const ssize_t count = read(file, data, length);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    data += count;
    length -= static_cast<std::size_t>(count);
  }
  return true;
}

// 0 removed, or nothing there, or no regular file; -1 where it can't be looked at.
int Remove(const std::string& devicePath) {
  const std::string path = platform::DevicePath(devicePath);
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) return 0;
    std::perror("get directory stat error");
    return -1;
  }
  if (!S_ISREG(status.st_mode)) return 0;
  if (unlink(path.c_str()) == 0) {
    MCUC_LOG(kLogInfo, "<<<<<<<<<<<<<<<<<<< Remove File: " << devicePath.c_str()
                                                           << "Ok >>>>>>>>>>>>>>>>>>>>>>");
  }
  return 0;
}

}  // namespace

int32_t DriverUtil::WriteRvFileToFalsh(const char* file_name, int save_rv_num, uint32_t begin_addr,
                                       const uint8_t* write_data, uint16_t length) {
  const std::string path = PathOf(file_name, save_rv_num);
  MakeFolder();
  const File file(platform::DevicePath(path), O_WRONLY | O_CREAT);
  if (!file.isOpen()) {
    std::perror("File Fail");
    MCUC_LOG(kLogError, "Open File " << path.c_str() << " fail!");
    return 1;
  }
  if (lseek(file.get(), begin_addr, SEEK_SET) < 0) {
    MCUC_LOG(kLogError, "File " << path.c_str() << " LSEEK fail!");
  }
  if (!WriteAll(file.get(), write_data, length)) {
    MCUC_LOG(kLogError, "File " << path.c_str() << " write fail! errno = " << errno);
  }
  fsync(file.get());
  return 0;
}

int DriverUtil::RemoveRvFile(const char* file_name, int delate_num) {
  const std::string path = PathOf(file_name, delate_num);
  MCUC_LOG(kLogInfo, "<<<<<<<<<<<<<<<<<<< Delate File: " << path.c_str());
  return Remove(path);
}

int DriverUtil::RemoveOtherRvFile(int begin_num, int max_num) {
  for (int number = begin_num; number < max_num; ++number) {
    Remove(PathOf(nullptr, number));  // one that can't be removed doesn't keep the others
  }
  return 0;
}

std::vector<uint8_t> DriverUtil::ReadRvFile(uint32_t load_index) {
  const std::string path = PathOf(nullptr, static_cast<int>(std::min<uint32_t>(load_index, 255)));
  MCUC_LOG(kLogInfo, "======Send RvCfg File:" << load_index << " Dir: " << path.c_str());
  const std::string place = platform::DevicePath(path);
  struct stat status {};
  if (stat(place.c_str(), &status) != 0) {
    MCUC_LOG(kLogError, "======Read File: " << path.c_str() << " File Not exist!======");
    return {};
  }
  const File file(place, O_RDONLY);
  if (!file.isOpen() || !S_ISREG(status.st_mode)) {
    MCUC_LOG(kLogError, "======fOpen File: " << path.c_str() << " File!======");
    return {};
  }
  if (status.st_size > kMostFile) {
    MCUC_LOG(kLogError, "======Read File: " << path.c_str() << " File too large!======");
    return {};
  }
  std::vector<uint8_t> bytes(static_cast<std::size_t>(status.st_size));
  if (!ReadAll(file.get(), bytes.data(), bytes.size())) return {};
  return bytes;
}

int32_t DriverUtil::ReadBytesFromrecvcard(uint8_t /*FlashNum*/, uint32_t addr, uint32_t length,
                                          uint8_t* data, const char* buff) {
  errno = 0;  // the end of a file is no error to read()
  const File file(platform::DevicePath(buff), O_RDWR);
  if (!file.isOpen() || lseek(file.get(), addr, SEEK_SET) < 0 ||
      !ReadAll(file.get(), data, length)) {
    const int code = errno != 0 ? errno : EIO;
    MCUC_LOG(kLogError, "=== ReadBytesFromrecvcard: file open errno = " << code << " detail = "
                                                                        << std::strerror(code));
    return code;
  }
  return 0;
}

void DriverUtil::SendCardPack(uint32_t reg, std::span<const uint8_t> data, uint16_t delay_ms) {
  const auto send = [&](std::size_t at, std::size_t length) {
    SendCardPara(reg + static_cast<uint32_t>(at), static_cast<uint16_t>(length), data.data() + at,
                 RecvCard);
  };
  std::size_t at = 0;
  for (; data.size() > kPiece && data.size() - at >= kPiece; at += kPiece) {
    send(at, kPiece);
    Delay(kAfterPiece_ms);
  }
  if (at == 0 || at < data.size()) send(at, data.size() - at);
  Delay(kAfterPack_ms);
  if (delay_ms != 0) Delay(delay_ms);
}

}  // namespace ZEPH_MCUC
