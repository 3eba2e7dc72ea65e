#include "live/guard.h"

#include <arpa/inet.h>

#include <cstdio>
#include <random>

namespace quivord::live {
namespace {

// The host without its port; the brackets of an IPv6 address go with it.
std::string NameOf(std::string_view host) {
  if (host.starts_with('[')) {
    const auto end = host.find(']');
    return std::string(host.substr(1, end == std::string_view::npos ? end : end - 1));
  }
  return std::string(host.substr(0, host.find(':')));
}

bool IsAddress(const std::string& name) {
  in6_addr unused{};
  return inet_pton(AF_INET, name.c_str(), &unused) == 1 ||
         inet_pton(AF_INET6, name.c_str(), &unused) == 1;
}

// As long for a wrong secret as for the right one.
bool SameSecret(std::string_view a, std::string_view b) {
  unsigned different = a.size() == b.size() ? 0 : 1;
  for (std::size_t i = 0; i < b.size() && i < a.size(); ++i) {
    different |= static_cast<unsigned>(a[i] ^ b[i]);
  }
  return different == 0;
}

}  // namespace

std::string NewToken() {
  std::random_device random;
  std::string token;
  for (int i = 0; i < 4; ++i) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%08x", random());
    token += digits;
  }
  return token;
}

bool HostAllowed(std::string_view host, std::string_view listening) {
  const std::string name = NameOf(host);
  return name == "localhost" || name == listening || IsAddress(name);
}

std::string ChangeObstacle(const ChangeRequest& request, std::string_view token) {
  const std::string own = "http://" + std::string(request.host);
  if (!request.origin.empty() && request.origin != own) return "not from another page";
  if (!request.content_type.starts_with("application/json")) return "an order is JSON";
  if (!SameSecret(request.token, token)) return "the token is missing or not of this run";
  return "";
}

}  // namespace quivord::live
