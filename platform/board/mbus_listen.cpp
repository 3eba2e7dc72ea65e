#include "board/mbus_listen.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "board/mbus_warn.h"

namespace board::mbus {
namespace {

constexpr int kWaitingConnections = 128;

FileHandle NewSocket() {
  return FileHandle(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

// Whether whatever lies at the address is out of the way.
bool ClearTheWay(const sockaddr_un& address) {
  const FileHandle probe = NewSocket();
  if (connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ||
      errno == EAGAIN) {
    Warn("another daemon listens on %s: stop it or use another board folder", address.sun_path);
    return false;
  }
  if (errno == ENOENT) return true;
  struct stat status {};
  if (lstat(address.sun_path, &status) == 0 && !S_ISSOCK(status.st_mode)) {
    Warn("%s is in the way and is no socket: remove it", address.sun_path);
    return false;
  }
  return unlink(address.sun_path) == 0 || errno == ENOENT;
}

}  // namespace

FileHandle Listen(const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string& text = path.native();
  if (text.size() >= sizeof address.sun_path) {
    Warn("the socket's path has more than 107 bytes, use a shorter board folder: %s", text.c_str());
    return {};
  }
  std::memcpy(address.sun_path, text.c_str(), text.size() + 1);
  if (!ClearTheWay(address)) return {};

  FileHandle listener = NewSocket();
  // The mode is given to the descriptor, so the name never stands there with a wider one.
  if (!listener || fchmod(listener.get(), S_IRUSR | S_IWUSR) != 0 ||
      bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      listen(listener.get(), kWaitingConnections) != 0) {
    Warn("cannot listen on %s: %s", address.sun_path, std::strerror(errno));
    return {};
  }
  return listener;
}

}  // namespace board::mbus
