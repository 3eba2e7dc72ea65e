#include "process/inputSource.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "mcuctrace.h"

namespace ZEPH_MCUC {
namespace {

// Interface types, each with a counter of its own.
constexpr std::size_t kTypes = EN_IF_T_VGA + 1;

// Sources of one interface type; a numbered name ends in the source's number, from 1.
struct LabelRow {
  en_if_type type;
  uint8_t first_code;
  bool numbered;
  const char* name;
};
constexpr LabelRow kLabels[] = {
    {EN_IF_T_DVI, EN_SC_DVI_1, false, "DVI"},
    {EN_IF_T_DDVI, EN_SC_DL_DVI_1 + 1, true, "DUAL_DVI-"},
    {EN_IF_T_HDMI14, EN_SC_HDMI1_4_1 + 1, true, "HDMI1.4-"},
    {EN_IF_T_SDI3G, EN_SC_SDI_1, false, "SDI"},
    {EN_IF_T_VGA, EN_SC_VGA_1, false, "VGA"},
};

// Gives the `n`-th source of a type, 0 up, its code and name. Types that aren't listed leave both
// as they were.
void Label(en_if_type type, unsigned n, source_t* source, inputsource_name_t* name) {
  const auto* const row = std::find_if(std::begin(kLabels), std::end(kLabels),
                                       [=](const LabelRow& label) { return label.type == type; });
  if (row == std::end(kLabels)) return;
  source->src_code = static_cast<uint8_t>(row->first_code + n);
  const std::string text = row->numbered ? row->name + std::to_string(n + 1) : row->name;
  name->name.fill('\0');
  std::copy(text.begin(), text.end(), name->name.begin());
  name->lenName = static_cast<uint8_t>(text.size());
}

}  // namespace

void InputSource::InputBoardInit() {
  const CMutexGuardT guard(m_tables);
  input_board_detect();
  source_info_init();
  source_edid_init();
}

void InputSource::input_board_detect() {
  _board.fill({});
  if (const ll_ret_t result = ll_initial(); result != ll_ret_ok) {
    MCUC_LOG(kLogError, "=== input_board_detect ===ll_initial error " << result);
  }
  std::size_t n = 0;
  for (ll_handle_t handle = ll_find_input_next(0); handle != 0;
       handle = ll_find_input_next(handle)) {
    obj_id_t id = 0;
    if (ll_find_input_filter_all(handle, &id) == 0) continue;
    if (n < kMostBoards) {
      _board[n++].id = id;
    } else {
      MCUC_LOG(kLogError,
               "=== input_board_detect ===no room for input board " << CTrace::hex << id);
    }
  }
  MCUC_LOG(kLogInfo, "Input Total = " << n);
  for (std::size_t i = 0; i < n; ++i) {
    input_board_t& board = _board[i];
    board.valid = ll_get_input_info(board.id, &board.type, &board.cap) == ll_ret_ok ? 1 : 0;
  }
}

void InputSource::source_info_init() {
  std::array<unsigned, kTypes> count{};
  m_realSourceNum = 0;
  for (const input_board_t& board : _board) {
    if (board.valid == 0) continue;
    source_t& source = gsource[m_realSourceNum];
    inputsource_name_t& name = m_inputSoruceName[m_realSourceNum];
    source.signal_state = EN_SSS_SIGNAL_LINK;
    source.group = static_cast<en_input_group_t>(m_realSourceNum);
    source.input_ch = ChannelOfBoard(board.id);
    source.id = board.id;
    const auto type = static_cast<std::size_t>(board.type);
    if (type < kTypes) Label(board.type, count[type]++, &source, &name);
    name.cardNO = source.group;
    name.sourceCode = source.src_code;
    ++m_realSourceNum;
  }
}

source_t* InputSource::GetSourceByGroup(en_input_group_t group) {
  const CMutexGuardT guard(m_tables);
  const auto end = gsource.begin() + m_realSourceNum;
  const auto found = std::find_if(gsource.begin(), end,
                                  [=](const source_t& source) { return source.group == group; });
  return found == end ? nullptr : &*found;
}

inputsource_name_t InputSource::NameOfGroup(en_input_group_t group) {
  const CMutexGuardT guard(m_tables);
  return group < m_inputSoruceName.size() ? m_inputSoruceName[group] : inputsource_name_t{};
}

u8 InputSource::RealSourceNum() {
  const CMutexGuardT guard(m_tables);
  return m_realSourceNum;
}

int InputSource::RefreshInputSourceStatus(u8 group, fpag_in_res_reg_t in_res_reg) {
  const CMutexGuardT guard(m_tables);
  source_t* source = GetSourceByGroup(static_cast<en_input_group_t>(group));
  if (source == nullptr || source->signal_state == EN_SSS_INVALID) return -1;
  return TakeMeasurement(in_res_reg, source) ? 1 : 0;
}

void InputSource::InputHdcpSet(u8 /*group*/, u8 /*hdcp_on*/) {}

}  // namespace ZEPH_MCUC
