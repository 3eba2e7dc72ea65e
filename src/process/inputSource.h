// `InputSource`: the input boards, the sources that they offer, and the EDID that each shows.
//
// A client's EDID is not kept: its preferred mode is stored for the group, and an EDID of the
// device's own is made for that mode, when the boards are detected and when a client writes one.
#pragma once

#include <platform/inputsource.h>

#include <array>
#include <cstdint>
#include <optional>

#include "mcucmutex.h"
#include "mcucsingleton.h"
#include "mcucutil.h"
#include "process/calc_edid.h"
#include "process/calc_inputsource.h"
#include "process/cvt_modes.h"

namespace ZEPH_MCUC {

// A detected input board; `valid` is 1 where its interface could be read.
struct input_board_t {
  uint8_t valid;
  obj_id_t id;
  en_if_type type;
  ll_video_if_cap_t cap;
};

// The operations take turns: a detection (bus receive thread) and a client's EDID (work thread)
// don't mix. Failures are logged; none reports them.
class InputSource : public Singleton<InputSource> {
 public:
  static constexpr std::size_t kMostBoards = 7;
  static constexpr std::size_t kMostSources = kInputGroups;

  // --- Detection (inputSource.cpp) ---------------------------------------------------------------

  // Looks for boards, lists their sources and gives each its stored mode's EDID. Before the first
  // call there is no source.
  void InputBoardInit();

  // The source of a group, null where it has none; to be used before the next detection.
  source_t* GetSourceByGroup(en_input_group_t group);

  // What a group's source is called.
  inputsource_name_t NameOfGroup(en_input_group_t group);
  u8 RealSourceNum();

  // Takes the FPGA's measurement of a group's input. 1 where something changed that a picture
  // depends on, 0 where nothing did, -1 for a group without a source.
  int RefreshInputSourceStatus(u8 group, fpag_in_res_reg_t in_res_reg);

  // Content protection is not switched from here: does nothing.
  void InputHdcpSet(u8 group, u8 hdcp_on);

  // --- EDID (inputSource_edid.cpp) ---------------------------------------------------------------

  // The EDID that the group's board shows, into 256 bytes. A failure leaves them.
  void ReadEDIDInfo(u8 group, u8* edid);

  // Takes over the preferred mode of a client's EDID, of which 62 bytes are looked at: stores it,
  // then shows an EDID for it. Nothing is stored or shown where a descriptor can't hold the mode.
  void EDIDCommStorage(u8 group, const u8* ReceiveDataBuf);

  // Makes an EDID for a mode, in pixels, lines and 0.01 Hz, and gives it to the group's board.
  void EDIDSetByMode(u8 group, u16 width, u16 height, u16 InputFreq);

  // The image for a mode from a base image, 256 bytes each. 0; 1 where the base image is none or
  // the mode has no timing, and then `pEDID_OUT` is as before.
  u32 ResT_calEDID_by_model_new(const u8* pEDIDMODEL, u8* pEDID_OUT, u16 width, u16 height,
                                u16 InputFreq);

  // Whether header and sums of 256 bytes are right.
  bool ResT_verify_EDID(const u8* pEDID);

  // Writes a timing as 18 bytes, its clock tuned to the rate. False for a null `pDTD`.
  bool edid_create_dtd(const edid_CEA861DetailedTimingDescriptor* pDTD, u8* pDescriptor,
                       u16 InputFreq);

  // The row of the mode table for a size and a rate in 0.1 Hz; false where there is none.
  bool GetDmtTiming(u16 width, u16 height, u16 frame_rate_x10, mode_table_t* timing);

 private:
  void input_board_detect() MCUC_REQUIRES(m_tables);
  void source_info_init() MCUC_REQUIRES(m_tables);
  void source_edid_init() MCUC_REQUIRES(m_tables);
  bool LoadInSetPara() MCUC_REQUIRES(m_tables);
  void StoreMode(u8 group, const VideoMode& mode) MCUC_REQUIRES(m_tables);

  CMutexThreadRecursive m_tables;  // of all that follows; held while boards are asked
  std::array<input_board_t, kMostBoards> _board MCUC_GUARDED_BY(m_tables){};
  InSetPara_T InSetPara MCUC_GUARDED_BY(m_tables){};
  bool m_paraLoaded MCUC_GUARDED_BY(m_tables) = false;
  std::array<source_t, kMostSources> gsource MCUC_GUARDED_BY(m_tables){};
  std::array<inputsource_name_t, kMostSources> m_inputSoruceName MCUC_GUARDED_BY(m_tables){};
  u8 m_realSourceNum MCUC_GUARDED_BY(m_tables) = 0;
};

}  // namespace ZEPH_MCUC
