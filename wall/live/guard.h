// Who may ask, and who may change something. Pure but for `NewToken`; any thread.
//
// A page from elsewhere can send requests here, too: its own name may even lead to this machine. So
// a request must name a host that no such page can have, and one that changes something must come
// from our own page and know a secret that only our own page can read.
#pragma once

#include <string>
#include <string_view>

namespace quivord::live {

// 128 random bits as hexadecimal digits, new in each run.
std::string NewToken();

// Whether a request's Host header names us: a numeric address, localhost, or `listening`, the name
// that we were told to listen on.
bool HostAllowed(std::string_view host, std::string_view listening);

// Why a request may not change anything, or an empty text. `origin` and `token` are its headers,
// empty where it has none; `host` is its Host header.
struct ChangeRequest {
  std::string_view host;
  std::string_view origin;
  std::string_view content_type;
  std::string_view token;
};
std::string ChangeObstacle(const ChangeRequest& request, std::string_view token);

}  // namespace quivord::live
