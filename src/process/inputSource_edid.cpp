// The EDIDs of the sources: read, made for a mode, taken over from a client.
#include <platform/edid.h>

#include <algorithm>
#include <cstdio>

#include "driverutil.h"
#include "mcucstdout.h"
#include "mcuctrace.h"
#include "process/inputSource.h"
#include "proto/calc_flashmap.h"

namespace ZEPH_MCUC {
namespace {

constexpr u8 kEdidGroups = 7;    // groups that are given their EDID at detection
constexpr u8 kHighestGroup = 9;  // beyond it no group is looked for

// What the EDID library is asked for, by the type of a source.
struct EdidRequest {
  en_source_type_t type;
  unsigned char modify;
  const char* product;
};
constexpr EdidRequest kRequests[] = {
    {EN_ST_DVI, 15, "ZEPH DUAL_DVI"},
    {EN_ST_HDMI1_4, 14, ""},
};

const EdidRequest* RequestFor(const source_t& source) {
  const auto* const found = std::find_if(
      std::begin(kRequests), std::end(kRequests),
      [&](const EdidRequest& request) { return request.type == SourceType(source.src_code); });
  return found == std::end(kRequests) ? nullptr : found;
}

EdidImage BaseImage(const EdidRequest& request) {
  ModifyEDIDData_t dat{};
  dat.EDIDType = HDMI_4K1K;
  dat.ModifyState = request.modify;
  dat.InterfaceType = Typ_HDMI_a;
  dat.ColorSpace = RGB444;
  dat.ColorDepth = Col_8Bit;
  const std::string_view product = request.product;
  std::copy(product.begin(), product.end(), dat.ProductName);
  EdidImage image{};
  ModifyEDID_API.Modify_EDID(dat, image.data());
  return image;
}

void LogFault(EdidFault fault) {
  if (fault == EdidFault::kHeader) MCUC_LOG(kLogError, "Check Head Error");
  if (fault == EdidFault::kSum) MCUC_LOG(kLogError, "Check Sum Error");
}

void LogImage(const EdidImage& image) {
  if (!CTrace::Wanted(kLogInfo)) return;
  char text[3 * edid::kSize + 1];
  Bytes2String(image.data(), edid::kSize, text, sizeof(text));
  MCUC_LOG(kLogInfo, "EDID Data = " << text);
}

}  // namespace

bool InputSource::LoadInSetPara() {
  InSetParaBytes bytes{};
  const int32_t result = DriverUtil::getInstance()->ReadBytesFromFlash(1, flash::kEdidRecord,
                                                                       bytes.size(), bytes.data());
  if (result != 0) {
    MCUC_LOG(kLogError, "=== LoadInSetPara ===Read input settings failed. ret = " << result);
    return false;
  }
  InSetPara = UnpackInSetPara(bytes);
  m_paraLoaded = true;
  return true;
}

void InputSource::source_edid_init() {
  for (u8 group = 0; group < kEdidGroups; ++group) {
    const source_t* source = GetSourceByGroup(static_cast<en_input_group_t>(group));
    if (source == nullptr) continue;
    if (RequestFor(*source) == nullptr) {
      MCUC_LOG(kLogError, "Nonsupport EDIDInit Source group " << group);
      return;
    }
    LoadInSetPara();  // without it the modes as they are known
    const InResPara_T& mode = InSetPara.InRes[group];
    EDIDSetByMode(group, mode.InResHor, mode.InResVer, mode.InResFrame);
  }
}

void InputSource::ReadEDIDInfo(u8 group, u8* edid) {
  const CMutexGuardT guard(m_tables);
  const source_t* source = GetSourceByGroup(static_cast<en_input_group_t>(group));
  if (source == nullptr) return;
  u16 length = edid::kSize;
  const ll_ret_t result = ll_input_get_edid(source->id, edid, &length);
  if (result == ll_ret_ok) return;
  char text[48];
  std::snprintf(text, sizeof(text), "GetEDIDInfo error %d \n", result);
  SayOnStandardOutput(text);
}

void InputSource::EDIDCommStorage(u8 group, const u8* ReceiveDataBuf) {
  const CMutexGuardT guard(m_tables);
  if (group >= kInputGroups) {
    MCUC_LOG(kLogError, "group error");
    return;
  }
  const auto mode = PreferredMode(std::span<const u8, edid::kRead>(ReceiveDataBuf, edid::kRead));
  if (!mode) {
    MCUC_LOG(kLogError, "=== EDIDCommStorage ===no timing that can be shown, not taken");
    return;
  }
  StoreMode(group, *mode);
  EDIDSetByMode(group, mode->width, mode->height, mode->rate);
}

// The mode is stored before a board is touched: should that fail, the next detection has it.
void InputSource::StoreMode(u8 group, const VideoMode& mode) {
  // The other groups' modes lie in the same record: unread, they would be overwritten with nothing.
  if (!m_paraLoaded && !LoadInSetPara()) return;
  InSetPara.InRes[group] = {mode.width, mode.height, mode.rate};
  const InSetParaBytes bytes = PackInSetPara(InSetPara);
  const int32_t result = DriverUtil::getInstance()->WriteDataToFlash(1, flash::kEdidRecord,
                                                                     bytes.size(), bytes.data());
  if (result != 0) {
    MCUC_LOG(kLogError, "=== EDIDCommStorage ===Write input settings failed. ret = " << result);
  }
}

void InputSource::EDIDSetByMode(u8 group, u16 width, u16 height, u16 InputFreq) {
  const CMutexGuardT guard(m_tables);
  if (group > kHighestGroup) {
    MCUC_LOG(kLogError, "group error");
    return;
  }
  const source_t* p_src = GetSourceByGroup(static_cast<en_input_group_t>(group));
  if (p_src == nullptr) {
    MCUC_LOG(kLogError, "SourceGroup Error,p_src is NULL!");
    return;
  }
  const EdidRequest* request = RequestFor(*p_src);
  if (request == nullptr) {
    MCUC_LOG(kLogError, "Nonsupport Source ");
    return;
  }
  const EdidImage pEDIDMODEL = BaseImage(*request);
  EdidImage TempArrayu8{};
  if (ResT_calEDID_by_model_new(pEDIDMODEL.data(), TempArrayu8.data(), width, height, InputFreq) !=
      0) {
    MCUC_LOG(kLogError, "CheckEDIDInfo error ");
    return;
  }
  LogImage(TempArrayu8);
  if (ll_input_set_edid(p_src->id, TempArrayu8.data(), TempArrayu8.size()) != ll_ret_ok) {
    MCUC_LOG(kLogError, "SetEDIDInfo error");
  }
  MCUC_LOG(kLogInfo, "EDIDSetByMode done");
}

u32 InputSource::ResT_calEDID_by_model_new(const u8* pEDIDMODEL, u8* pEDID_OUT, u16 width,
                                           u16 height, u16 InputFreq) {
  EdidImage image;
  const EdidFault fault =
      BuildEdid(EdidView(pEDIDMODEL, edid::kSize), width, height, InputFreq, &image);
  if (fault == EdidFault::kNone) {
    std::copy(image.begin(), image.end(), pEDID_OUT);
    return 0;
  }
  LogFault(fault);
  if (fault == EdidFault::kNoTiming) {
    MCUC_LOG(kLogError, "no timing for " << width << " x " << height << " at " << InputFreq);
  } else {
    MCUC_LOG(kLogError, "CheckEDIDInfo error ");
  }
  return 1;
}

bool InputSource::ResT_verify_EDID(const u8* pEDID) {
  const EdidFault fault = VerifyEdid(EdidView(pEDID, edid::kSize));
  LogFault(fault);
  return fault == EdidFault::kNone;
}

bool InputSource::edid_create_dtd(const edid_CEA861DetailedTimingDescriptor* pDTD, u8* pDescriptor,
                                  u16 InputFreq) {
  if (pDTD == nullptr) return false;
  const Descriptor bytes = EncodeDescriptor(*pDTD, TuneClock(*pDTD, InputFreq));
  std::copy(bytes.begin(), bytes.end(), pDescriptor);
  return true;
}

bool InputSource::GetDmtTiming(u16 width, u16 height, u16 frame_rate_x10, mode_table_t* timing) {
  const EN_MODE_TYPE mode = FindMode(width, height, frame_rate_x10);
  if (mode == INVALID_MODE) return false;
  *timing = Modes()[mode];
  return true;
}

}  // namespace ZEPH_MCUC
