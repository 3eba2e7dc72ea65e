// The brightness space: the table of the plan that the screen's brightness follows, and the running
// state of that plan. Its calculations are the files `calc_brightness*`; here are their effects.
//
// A source a subject: the space (addr_hardwarebrightnessadjust.cpp), what a write of the table sets
// off (…_table.cpp), the start of a plan (…_start.cpp), what the loop's ticks do (…_tick.cpp), the
// watch over an outside device (…_watch.cpp), the light sensors (…_sensor.cpp), and the ways to the
// cards (…_send.cpp). When a tick comes is `Proc_Poll`'s (process/proc_poll.cpp).
#pragma once

#include <array>
#include <cstdint>

#include "mcucmutex.h"
#include "mcucutil.h"
#include "proto/calc_brightness_table.h"
#include "proto/calc_brightness_time.h"
#include "proto/registerspace.h"

namespace ZEPH_MCUC {

enum enum_Active : uint8_t { DISABLE = 0, ENABLE = 1 };

class Addr_HardWareBrightnessAdjust
    : public RegisterSpace<Addr_HardWareBrightnessAdjust, kBrightnessSpace> {
 public:
  // --- The space; bus receive thread ------------------------------------------------------------

  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e doAdjustBrightness(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  // From the image where the bytes lie in it, else from flash, at most 512; -1 for more, and where
  // flash can't be read.
  static JSHL_Type_e ReadFromBrightnessInfo(QMB_proto3rd* msg);
  // Queues the write; one that reaches past the area is a range fault.
  static JSHL_Type_e WriteToBrightnessInfo(QMB_proto3rd* msg);

  // --- The table (…_table.cpp); work thread unless said otherwise -------------------------------
  // Failures of flash and cards are logged, and what failed is not repeated before the next event.

  // Takes `length` bytes at register `addr` into image and flash as the mode says, and starts the
  // plan where the table is complete. Bytes past the area are refused.
  static void SetBrightnessAdjustTable(uint32_t addr, uint16_t length, const uint8_t* data);
  // The mode's flags from the image, for the mix family.
  static void BriAdjustModeProcess();
  // Loads the image and the plan that it holds; once, at the loop's first pass. Flag thread.
  static void UpdataBrightnessPara();
  // Stores the image, and the rest of the area as it is.
  static void SaveBrightnessPara();

  // --- The start (…_start.cpp); work or flag thread ---------------------------------------------

  // Starts the plan in force, or starts it again: the node of this moment is applied, and the next
  // one armed. An arrival that nobody has taken is dropped: the node in force is its successor.
  static void BrightnessAdjustInit();
  // Node of the list of times, and of the mix, that is in force at a time in plain numbers. The mix
  // gives 0xFFFF where it has none.
  static u8 CurrentTimeBelongToWhichNode(u8 current_hour, u8 current_minute);
  static u16 MixAdjCurrentTimeNode(u8 current_hour, u8 current_minute);
  // Arms the node behind `RtcIndex`: 0 of the list of times, 1 of the mix. Where the mix's node
  // can't be read, the time that was armed before stands in.
  static void InsertInterruptTimeToQueue(u8 AdjustType);
  // Weekday by calculation, 1 for Monday to 7 for Sunday, as arrivals of the mix count it.
  static u8 NowTimeGetWeek();
  // Sends what node `node` of the list of times holds.
  static void ApplyListNode(std::size_t node);

  // --- The ticks (…_tick.cpp); flag thread ------------------------------------------------------

  // Compares the clock with the armed time; every 2 seconds.
  static void TimeToOver_Handler();
  // One step of each plan; every second. The last one ramps, and then takes up to 12.75 seconds.
  static void ProgrammableBrightnessAdjust();
  static void AutoBrightnessAdjust();
  static void MixBrightnessAdjust();
  // The watch over the outside device (…_watch.cpp); every second.
  static void SeiralComErrorProcess();

  // --- The light sensors (…_sensor.cpp); flag thread --------------------------------------------
  // Each waits for the cards.

  // 1 and the lux that the sensor sees; 0 without an answer, and for a place where none can be.
  static u8 ReadEnvironmentLux(u8 Pos, u8 PortAddr, u16 BoardAddr, u8 SensorAddr, u16& lux);
  // 0 and the trimmed average of the `n` values at `p`, which it sorts; 1 where none counts.
  static u8 SortAndAverage(u16* p, u8 n, u16& AverageVal);
  // 1 and one reading over all sensors of the sensor mode, or of the mix; 0 where none answers.
  static u8 GetAverageLuxOneTime(u16& GetLuxVal);
  static u8 GetMixAdjAverageLux(u16& GetLuxVal);
  // 1 and the brightness for `Lux`: 0 to 255 of the sensor mode, percent of the mix; 0 where there
  // is no usable map.
  static u8 LuxToBrightnessLookupTable(u16 Lux, u8& Bright);
  static u8 MixAdjLuxToBriLookupTable(u16 Lux, u8& Bright);
  // 1 and what the mix shows when all sensors fail, in percent; 0 where it then shows what it did.
  static u8 MixAdjFallback(u8& Bright);

  // --- To the cards (…_send.cpp); any thread ----------------------------------------------------

  // Writes `Num` bytes at a register of receiving cards; a brightness is reported to the service
  // daemon too.
  static void NewSendReceiveCardPara(u32 RegStartAddr, u8 PortAddr, u16 BoardAddr, u16 Num,
                                     const u8* data);
  // Sends `brightness` to all cards of `port`, 0xFF for all ports.
  static void SendBrightness(u8 port, u8 brightness);
  // Goes from `CurrentBri` to `TargetBri` one by one, `DelayMs` apart, where brightness is to
  // change gradually; else at once. False where a plan was started or stopped meanwhile, or since
  // `PlanChanges` was `plan`: what the cards show is its business from then on, so the way ends
  // there.
  static bool SmartAdjustGlobalBrightness(u8 PortAddress, u8 CurrentBri, u8 TargetBri, int DelayMs);
  static bool SmartAdjustGlobalBrightness(u8 PortAddress, u8 CurrentBri, u8 TargetBri, int DelayMs,
                                          uint32_t plan);
  // Sends four colour bytes to all cards of a port on the FPGA's own road.
  static void AdjustCurrentComponentBrightness(u8 PortAddress, u8 RBrightness, u8 GBrightness,
                                               u8 BBrightness, u8 VRBrightness);

  // --- For the sources above --------------------------------------------------------------------

  static brightness::Moment Now();
  static brightness::Image TheImage();
  // Reads bytes of the area in flash; false where they can't be had.
  static bool ReadArea(uint32_t offset, std::span<uint8_t> into);
  // Says in the log why a sub-table is not used.
  static void LogAbsent(const char* table, brightness::TableState state);

  // Held while a plan starts or stops, and for each step of one. A step that takes its time (a
  // ramp, the sensors) lets it go in between, and does nothing more once another plan has started.
  static constinit CMutexThreadRecursive m_plan;
  // Runs `work` if no plan has started or stopped since `PlanChanges` was `plan`; false otherwise.
  template <class Work>
  static bool UnderPlan(uint32_t plan, Work work) {
    const CMutexGuardT guard(m_plan);
    if (PlanChanges != plan) return false;
    work();
    return true;
  }

  // --- State ------------------------------------------------------------------------------------
  // Written by the work and the flag thread, the link state by the work thread; read by any.

  using Flag = Relaxed<enum_Active>;

  static inline constinit SharedBytes<brightness::kImageSize> ProgrammableTimeTableArray;

  // The plan in force: one of them at most, save that the hardware plan lends its place to the mix.
  static inline constinit Flag ProgrammableAdjustEnable{DISABLE};
  static inline constinit Flag AutoBrightnessAdjustEnable{DISABLE};
  static inline constinit Flag MixBrightnessAdjustEnable{DISABLE};
  static inline constinit Flag SerialCtrlScreenBlackEnable{DISABLE};
  static inline constinit Flag HardwareCtrlAdjustEnable{DISABLE};

  static inline constinit Flag MixAutoBriAdjustEnable{DISABLE};  // the node asks for the sensor
  static inline constinit Flag MixBriAdjustGlobalControl{ENABLE};
  static inline constinit Flag MixBriAdjustControl{ENABLE};
  static inline constinit Flag LastMixBriAdjustControl{ENABLE};
  static inline constinit Flag GradualAdjustControl{ENABLE};

  static inline constinit Flag ProgrammableAdjustArrived{DISABLE};    // a node is due
  static inline constinit Flag AutoBrightnessAdjustArrived{DISABLE};  // a reading is due
  static inline constinit Flag RtcIntOccurArrived{DISABLE};  // the clock reached the armed time
  static inline constinit Flag BriBroadcastEnable{DISABLE};  // repeat a fixed brightness
  static inline constinit Flag BriBroadcastArrived{DISABLE};

  // Counts the starts of a plan, and the stops of all. A step that sees it change is out of date.
  static inline constinit vu32 PlanChanges;

  // The header of the mix, as it was when the plan started.
  static inline constinit vu32 ConfigFileLength;
  static inline constinit vu16 TimeNodeBaseAddr;
  static inline constinit vu16 SensorInfoBaseAddr;
  static inline constinit vu16 LuxMapBaseAddr;
  static inline constinit vu16 SensorValidBaseAddr;
  static inline constinit vu16 SensorReadInterval;
  static inline constinit vu8 SensorReadTimes;

  static inline constinit vu32 ProgrammableAdjustPartNum;  // nodes in use
  static inline constinit vu16 Index;                      // what the last search found
  static inline constinit Relaxed<int> RtcIndex{0};        // the node whose time is armed
  static inline constinit vu8 TimeIntHour;                 // that time, BCD
  static inline constinit vu8 TimeIntMin;
  static inline constinit vu8 INT_Once{brightness::kSpent};

  static inline constinit std::array<vu16, brightness::mix::kMostReadings>
      AutoBrightnessReadValTable;
  static inline constinit vu8 AutoBrightnessAdjustCnt;  // readings in it
  static inline constinit vu16 SensorReadTimeCnt;       // seconds since the last reading
  static inline constinit vu8 SensorReadFaultCnt;       // failed readings in a row
  static inline constinit vu16 BriBroadcastCnt;         // seconds since the last repeat

  static inline constinit vu8 LastGlobalBri;     // what the mix sent last
  static inline constinit vu8 MixBriAdjOccured;  // 1 once it has, so that a ramp has a start

  static inline constinit vu8 UartDiscOvertime{0x28};  // seconds of silence that are borne
  static inline constinit vu8 DevComLinkState;         // 1 when the outside device was heard
  static inline constinit vu8 TIM2_PeriodCnt;          // seconds of silence

 private:
  static void LoadImage() MCUC_REQUIRES(m_area);
  static void LoadImageOnce() MCUC_REQUIRES(m_area);

  static constinit CMutexThread m_area;  // each read-change-write of image and area
  static bool m_imageLoaded MCUC_GUARDED_BY(m_area);
};

}  // namespace ZEPH_MCUC
