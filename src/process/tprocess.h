// `Tprocess`: the handlers of the work queue, one for each kind of deferred work. A handler is the
// slow half of a register write. It runs on the work thread, one at a time, gets a block's content
// (`lenth` bytes at `data`), cannot reply, logs what fails and returns 0.
//
// A handler must not wait for the bus receive thread, which may wait for the handler's end.
#pragma once

#include "mcucsingleton.h"

namespace ZEPH_MCUC {

class Tprocess : public Singleton<Tprocess> {
 public:
  // tprocess_store.cpp
  static int Sprocess_SaveSendCardPara(int lenth, char* data);
  static int Sprocess_ReloadSendCardProgram(int lenth, char* data);
  // tprocess_feature.cpp
  static int Sprocess_DoFeatureInfo(int lenth, char* data);
  // tprocess_brightness.cpp
  static int Sprocess_doAdjustBrightness(int lenth, char* data);
  // tprocess_layout.cpp
  static int Sprocess_CalculateParaOfSender(int lenth, char* data);
  static int Sprocess_AdvCalcParaOfSender(int lenth, char* data);
  static int Sprocess_PositionNetPort(int lenth, char* data);
  static int Sprocess_DoNumberFunCardPort(int lenth, char* data);
  // Lays out the wall that was asked for last; no handler of the queue, the flag thread calls it.
  static void CalculateParaOfSenderHandler();
  // tprocess_video.cpp
  static int Sprocess_DoDoEDIDSpace(int lenth, char* data);
  // tprocess_cardfiles.cpp
  static int Sprocess_RVConfigFileSpace(int lenth, char* data);
  static int Sprocess_SendRVConfigFile(int lenth, char* data);
  // tprocess_colour.cpp
  static int Sprocess_HDR10(int lenth, char* data);
  static int Sprocess_HLG(int lenth, char* data);
  static int Sprocess_PictureQualityCal(int lenth, char* data);
  static int Sprocess_DisplayWarmUp(int lenth, char* data);
  static int Sprocess_SenderRGBGamma(int lenth, char* data);
  static int Sprocess_ScreenPatternGen(int lenth, char* data);
  // tprocess_small.cpp
  static int Sprocess_BasicData(int lenth, char* data);
  static int Sprocess_ReturnFactorySet(int lenth, char* data);
  static int Sprocess_doMappingForSender(int lenth, char* data);
  static int Sprocess_DoSoftwareTable(int lenth, char* data);
  static int Sprocess_DoScreenInfoEcho(int lenth, char* data);
  static int Sprocess_DoBackupInfo(int lenth, char* data);
  // tprocess.cpp: kinds that nobody queues. They log and do nothing else.
  static int Sprocess_Correction(int lenth, char* data);
  static int Sprocess_SenderTestPatten(int lenth, char* data);
  static int Sprocess_ActiveReporting(int lenth, char* data);
  static int Sprocess_SendtoScanCard(int lenth, char* data);
  static int Sprocess_SendtoMultiCard(int lenth, char* data);
  static int Sprocess_SendtoDistribute(int lenth, char* data);
};

}  // namespace ZEPH_MCUC
