// platform/network.h and platform/info.h: settings that can't be read back.
#include <platform/info.h>
#include <platform/network.h>

#include "check/report.h"

namespace check {

void Network(Report& report, const Options& options) {
  constexpr const char* kClaims[] = {"the way to an address is chosen", "an address is set",
                                     "what is no address is refused"};
  if (!options.lasting) {
    for (const char* const claim : kClaims) report.Skip(claim, "needs --lasting");
    return;
  }
  report.Holds(ifcfg_set_eth_mode(0) == 0, kClaims[0]);
  report.Holds(ifcfg_set_curr_ip("192.168.0.10", "255.255.255.0", "192.168.0.1") == 0, kClaims[1]);
  report.Holds(ifcfg_set_curr_ip("no address", "255.255.255.0", "192.168.0.1") != 0, kClaims[2]);
}

void Info(Report& report, const Options& options) {
  constexpr const char* kClaim = "the device info store takes bytes";
  constexpr std::uint32_t kAddress = 0;
  constexpr std::uint8_t kBytes[4] = {};
  if (!options.lasting) return report.Skip(kClaim, "needs --lasting");
  report.Holds(st_info_op(1, kAddress, sizeof kBytes, kBytes) == 0, kClaim);
}

}  // namespace check
