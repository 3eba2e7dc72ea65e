// The EDID library's table of functions: a template's description, changed as the request asks,
// written out.
#include <platform/edid.h>

#include <algorithm>
#include <string>

#include "edid/description.h"
#include "edid/image.h"

namespace {

// Bits of `ModifyState`.
constexpr unsigned kName = 1, kColorSpace = 2, kColorDepth = 4, kInterface = 8;

int ModifyEdid(ModifyEDIDData_t request, unsigned char* out) {
  if (out == nullptr) return -1;
  edid::Description sink = edid::DescriptionOf(request.EDIDType);
  const unsigned wanted = request.ModifyState;
  if ((wanted & kName) != 0) {
    const char* const begin = request.ProductName;
    const char* const end = begin + sizeof(request.ProductName);
    sink.name.assign(begin, std::find(begin, end, '\0'));
  }
  if ((wanted & kColorSpace) != 0) sink.color_space = request.ColorSpace;
  if ((wanted & kColorDepth) != 0) sink.color_depth = request.ColorDepth;
  if ((wanted & kInterface) != 0) sink.interface = request.InterfaceType;
  const edid::Image image = edid::Write(sink);
  std::copy(image.begin(), image.end(), out);
  return 0;
}

}  // namespace

const ModifyEDID_API_t ModifyEDID_API{.Get_EDID = nullptr,
                                      .Get_EDIDVersion = nullptr,
                                      .Modify_Name = nullptr,
                                      .Modify_ColorSpace = nullptr,
                                      .Modify_ColorDepth = nullptr,
                                      .Modify_InterfaceType = nullptr,
                                      .Modify_EDID_VIC = nullptr,
                                      .Modify_EDID_Wider = nullptr,
                                      .Modify_EDID = ModifyEdid};
