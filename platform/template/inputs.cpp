// Input boards and the network settings: not here.
#include <platform/inputsource.h>
#include <platform/network.h>

#include "missing.h"

namespace {

constexpr char kInputs[] = "the input boards (platform/inputsource.h)";
constexpr char kNetwork[] = "the network settings (platform/network.h)";
constexpr int32_t kFailed = -1;

}  // namespace

ll_ret_t ll_initial() { return missing::Say(kInputs, ll_ret_obj_absent); }

ll_handle_t ll_find_input_next(ll_handle_t) { return missing::Say(kInputs, ll_handle_t{0}); }

int ll_find_input_filter_all(ll_handle_t, obj_id_t*) { return missing::Say(kInputs, 0); }

ll_ret_t ll_get_input_info(obj_id_t, en_if_type*, ll_video_if_cap_t*) {
  return missing::Say(kInputs, ll_ret_obj_absent);
}

ll_ret_t ll_input_get_edid(obj_id_t, uint8_t*, uint16_t*) {
  return missing::Say(kInputs, ll_ret_obj_absent);
}

ll_ret_t ll_input_set_edid(obj_id_t, const uint8_t*, uint16_t) {
  return missing::Say(kInputs, ll_ret_obj_absent);
}

int32_t ifcfg_set_eth_mode(int32_t) { return missing::Say(kNetwork, kFailed); }

int32_t ifcfg_set_curr_ip(const char*, const char*, const char*) {
  return missing::Say(kNetwork, kFailed);
}
