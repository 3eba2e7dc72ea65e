// Brightness plans, whatever a client sends: each input fills the table's area, then writes to the
// space, moves light, clock and the outside device's word, and lets the loop's share of an hour
// pass. Cards get only what the plan in force can give, and afterwards a plain plan still runs.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "brightness_watch.h"
#include "home.h"
#include "mcuctrace.h"
#include "process/proc_poll.h"
#include "proto/addr_hardwarebrightnessadjust.h"
#include "proto/data_common.h"
#include "support/brightness_bytes.h"
#include "support/inprocess.h"

namespace {

using namespace ZEPH_MCUC;
using Brightness = Addr_HardWareBrightnessAdjust;
using Input = FuzzedDataProvider;
using brightness_bytes::Data;
using brightness_bytes::Mix;

constexpr std::uint32_t kBase = 0x0A000000;
constexpr std::uint32_t kFlash = 0xB8B000;
constexpr std::uint32_t kArea = 0x1400;
constexpr std::int64_t kNoon_s = 1'777'636'800;  // 1 May 2026, 12:00
// An hour; a whole number of rounds of 99, so that each input finds the count of passes alike.
constexpr int kHour = 182 * 99;
constexpr std::uint8_t kModes[] = {0x5B, 0x7D, 0x9A, 0x9B, 0x9C, 0};

std::filesystem::path g_board;

// --- The daemon

void Serve(std::uint32_t address, const Data& data) {
  inprocess::Write(address, data);
  watch::TablesMayHaveChanged();
  inprocess::DrainQueue();
  watch::TablesMayHaveChanged();
}

void Write(std::uint32_t offset, const Data& data) { Serve(kBase + offset, data); }

void Upload(const Data& file) {
  for (std::size_t at = 0; at < file.size(); at += 512) {
    const auto begin = file.begin() + static_cast<std::ptrdiff_t>(at);
    const auto size = static_cast<std::ptrdiff_t>(std::min<std::size_t>(512, file.size() - at));
    Write(static_cast<std::uint32_t>(at), {begin, begin + size});
  }
}

void CheckState() {
  const int plans = Brightness::ProgrammableAdjustEnable + Brightness::AutoBrightnessAdjustEnable +
                    Brightness::MixBrightnessAdjustEnable +
                    Brightness::SerialCtrlScreenBlackEnable + Brightness::HardwareCtrlAdjustEnable;
  const bool lent = Brightness::HardwareCtrlAdjustEnable && Brightness::MixBrightnessAdjustEnable;
  Want(plans <= (lent ? 2 : 1));
  const int armed = Brightness::RtcIndex;
  Want(Brightness::INT_Once != brightness::kArmed ||
       (armed >= 0 && static_cast<std::uint32_t>(armed) < Brightness::ProgrammableAdjustPartNum));
}

void Pass(int passes) {
  for (; passes > 0; --passes) {
    Proc_Poll::AutoBrightnessadjust();
    watch::Wait(200'000);
    watch::TablesMayHaveChanged();  // a start may have taken another header
    CheckState();
  }
}

// A start of the daemon on what is stored.
void Restart() {
  watch::TablesMayHaveChanged();
  Brightness::UpdataBrightnessPara();
  watch::TablesMayHaveChanged();
}

// --- What an input says

int Pick(Input& input, int least, int most) { return input.ConsumeIntegralInRange(least, most); }

Data RandomTable(Input& input) {
  Data bytes = input.ConsumeBytes<std::uint8_t>(static_cast<std::size_t>(Pick(input, 1, 512)));
  if (bytes.empty()) bytes = {0};
  if (input.ConsumeBool()) bytes[0] = input.PickValueInArray(kModes);
  if (bytes.size() < 18) return bytes;
  if (input.ConsumeBool()) brightness_bytes::Put16(bytes, 1, bytes.size());
  for (const std::size_t at : {3, 5, 7, 10}) {
    brightness_bytes::Put16(bytes, at, input.ConsumeIntegralInRange<std::size_t>(0, kArea));
  }
  return bytes;
}

// A plan that says something. Its nodes begin in the hour that is to pass.
Mix SomeMix(Input& input) {
  Mix mix;
  mix.mode = input.PickValueInArray({0x9A, 0x9B, 0x9C});
  for (int i = Pick(input, 0, 40); i > 0; --i) {
    mix.nodes.push_back({Pick(input, 11, 13), Pick(input, 0, 59), input.ConsumeBool(),
                         input.ConsumeBool() ? 0x7F : Pick(input, 0, 255), Pick(input, 0, 120),
                         Pick(input, 0, 7) == 0 ? Pick(input, 0, 3) : 1});
  }
  if (input.ConsumeBool()) {
    std::ranges::sort(mix.nodes, {}, [](const auto& node) { return node.hour * 60 + node.minute; });
  }
  for (int i = Pick(input, 0, 9); i > 0; --i) {
    mix.sensors.push_back({Pick(input, 0, 1), Pick(input, 0, 10), 0, Pick(input, 0, 6)});
  }
  for (int i = Pick(input, 0, 33); i > 0; --i) {
    mix.map.push_back({Pick(input, 0, 65535), Pick(input, 0, 120)});
  }
  if (input.ConsumeBool()) std::ranges::sort(mix.map, {}, &brightness_bytes::Lux::lux);
  mix.fallback = Pick(input, -1, 120);
  mix.interval_s = Pick(input, 0, 30);
  mix.readings = Pick(input, 0, 17);
  mix.on = Pick(input, 0, 7) != 0;
  mix.runs = Pick(input, 0, 7) != 0;
  mix.gradual = input.ConsumeBool();
  return mix;
}

Data SomeList(Input& input) {
  std::vector<brightness_bytes::ListNode> nodes;
  for (int i = Pick(input, 0, 32); i > 0; --i) {
    nodes.push_back(
        {Pick(input, 11, 13), Pick(input, 0, 59), Pick(input, 0, 255), Pick(input, 0, 255)});
  }
  return brightness_bytes::List(nodes, input.ConsumeBool());
}

Data SomeSensorTable(Input& input) {
  Data table(512);
  table[0] = 0x7D;
  table[1] = static_cast<std::uint8_t>(Pick(input, 0, 9));
  for (std::size_t at = 5; at < 12; ++at) table[at] = input.ConsumeIntegral<std::uint8_t>();
  return table;
}

std::uint8_t Byte(Input& input) { return input.ConsumeIntegral<std::uint8_t>(); }

using Step = void (*)(Input& input, int* left);

constexpr Step kSteps[] = {
    [](Input& input, int*) { Upload(SomeMix(input).Bytes()); },
    [](Input& input, int*) { Upload(SomeList(input)); },
    [](Input& input, int*) { Upload(SomeSensorTable(input)); },
    [](Input& input, int*) { Write(0, RandomTable(input)); },
    [](Input& input, int*) {
      const auto offset = static_cast<std::uint32_t>(Pick(input, 0, 0x1500));
      Write(offset, RandomTable(input));
    },
    [](Input& input, int*) { Write(0, {input.PickValueInArray(kModes)}); },
    [](Input& input, int*) { Write(12, {Byte(input)}); },
    [](Input& input, int*) {
      Write(static_cast<std::uint32_t>(Pick(input, 0, 17)), {Byte(input)});
    },
    [](Input& input, int*) { Serve(0x0200003F, {Byte(input)}); },
    [](Input& input, int*) { Serve(0x02400000, RandomTable(input)); },
    [](Input& input, int*) { watch::SetLight(input.ConsumeIntegral<std::uint16_t>()); },
    [](Input& input, int*) {
      watch::SetLight(watch::kNoLight);
      static_cast<void>(input);
    },
    [](Input& input, int*) { watch::SetTime(kNoon_s + Pick(input, -90'000, 700'000)); },
    [](Input&, int*) { Restart(); },
    [](Input& input, int* left) {
      const int passes = std::min(*left, Pick(input, 1, 4000));
      Pass(passes);
      *left -= passes;
    },
};

// --- One input

// Fills the area with bytes of the input, over and over, or with none.
void FillArea(Input& input) {
  const Data bytes = input.ConsumeBytes<std::uint8_t>(static_cast<std::size_t>(Pick(input, 0, 64)));
  Data area(kArea);
  for (std::size_t i = 0; i < area.size() && !bytes.empty(); ++i) area[i] = bytes[i % bytes.size()];
  std::fstream store(g_board / "usr/zeph/etc/envcfg/brmpara",
                     std::ios::in | std::ios::out | std::ios::binary);
  store.seekp(kFlash);
  store.write(reinterpret_cast<const char*>(area.data()), static_cast<std::streamsize>(kArea));
  Want(store.flush().good());
}

// The daemon's memory of an input before.
void Forget() {
  Write(0, {0});
  Data_Global::getInstance()->SendParameterReg[0x3F] = 0;
  Brightness::UartDiscOvertime = 0x28;
  Brightness::DevComLinkState = 0;
  Brightness::MixBriAdjOccured = 0;
  Brightness::LastGlobalBri = 0;
  Brightness::MixBriAdjustControl = ENABLE;
  watch::Begin();
  watch::SetTime(kNoon_s);
  watch::SetLight(1000);
}

void APlainPlanRuns() {
  Write(0, {0});
  Data list = brightness_bytes::List({{0, 0, 123}});
  list[0] = 0;
  Upload(list);
  Write(0, {0x5B});
  Want(watch::LastOnPort(0) == 123);
  Want(inprocess::Read(kBase, 1).m_data == Data{0x5B});
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  g_board = home::Make();
  g_logLevel = kLogNothing;
  inprocess::Start();
  Data_Global::getInstance()->GigaPhyLinkSta = 0xFFFF;
  Proc_Poll::AutoBrightnessadjust();
  Pass(99);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  Forget();
  FillArea(input);
  Restart();
  int left = kHour;
  while (input.remaining_bytes() > 0) input.PickValueInArray(kSteps)(input, &left);
  Pass(left);
  APlainPlanRuns();
  return 0;
}
