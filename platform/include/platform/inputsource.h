// The input boards: which there are, what they can take, and the EDID that each shows its source.
//
// Two threads may call at the same time, one that detects boards and one that writes an EDID. Calls
// may take as long as a board needs to answer, well below a second.
#pragma once

#include <cstdint>

extern "C" {

enum ll_ret_t : int32_t {
  ll_ret_ok = 0,
  ll_ret_fail = -1,
  ll_ret_obj_absent = -2,
  ll_ret_comm_err = -3,
  ll_ret_unexpected = -4,
  ll_ret_not_ready = -5,
  ll_ret_sem_err = -6,
};

// Names an input board: its slot in the low nibble, its connector in the next.
typedef uint16_t obj_id_t;

// A place in the list of objects; 0 is none.
typedef uintptr_t ll_handle_t;

// The interface of an input board.
enum en_if_type : int32_t {
  EN_IF_T_DVI = 0,
  EN_IF_T_DDVI = 1,
  EN_IF_T_HDMI14 = 2,
  EN_IF_T_HDMI20 = 3,
  EN_IF_T_DP11 = 4,
  EN_IF_T_DP12 = 5,
  EN_IF_T_DP14 = 6,
  EN_IF_T_SDI3G = 7,
  EN_IF_T_SDI6G = 8,
  EN_IF_T_SDI12G = 9,
  EN_IF_T_VGA = 10,
};

// The most that an interface takes. `weidth` and `height` are pixels, `bandwidth` is MHz.
struct ll_video_if_cap_t {
  uint16_t flg;
  int bandwidth;
  int htotal;
  int vtotal;
  int weidth;
  int height;
};

// Makes the library ready and looks for boards anew. Called before each run of detection.
ll_ret_t ll_initial();

// The handle behind `handle` in the list, the first one for 0; 0 at the end.
ll_handle_t ll_find_input_next(ll_handle_t handle);

// Non-zero where the object is an input board; `*id` then names it. Otherwise `*id` is as before.
int ll_find_input_filter_all(ll_handle_t handle, obj_id_t* id);

// The board's interface and what it takes. On failure both are as before.
ll_ret_t ll_get_input_info(obj_id_t id, en_if_type* type, ll_video_if_cap_t* cap);

// The EDID that the board shows now. `*datalen` is the buffer's size and becomes the number of
// bytes, 256. On failure both are as before.
ll_ret_t ll_input_get_edid(obj_id_t id, uint8_t* edid, uint16_t* datalen);

// Gives the board a complete image of `datalen` bytes, 256, to show from now on. On failure it goes
// on showing the old one.
ll_ret_t ll_input_set_edid(obj_id_t id, const uint8_t* edid, uint16_t datalen);

}  // extern "C"
