// `Tshl_ctl`: the top table of the register spaces, and the entry points of requests.
#pragma once

#include <cstdint>

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// Built on first use, which creates every space. The entry points run on the bus receive thread.
class Tshl_ctl {
 public:
  static Tshl_ctl* getInstance();

  // Fills the map from key to row; true. Once, before the first request.
  bool initialize();

  // A frame for the sending card: finds the space of the address and calls it. 4 for a null message
  // or an address in no space (the ack is then left alone), else what the space returned.
  int32_t Ssh_StartSendCard(QMB_proto3rd* msg);

  // Frames for devices behind the ports (tshl_ctl_cards.cpp): receiving cards, multi-function
  // cards, distribution boxes, 3D launchers. Each passes the request on in chunks and waits between
  // the chunks of a write, so a long write holds the request path for its pauses. A read that fails
  // sets the ack (1 for a receiving card that does not answer, else 4) and gives no data; a write
  // never fails. The ack, or 0.
  int32_t Ssh_StartScanCard(QMB_proto3rd* msg);
  int32_t Ssh_StartMultiCard(QMB_proto3rd* msg);
  int32_t Ssh_StartDistribute(QMB_proto3rd* msg);
  int32_t Ssh_Start3DLauncher(QMB_proto3rd* msg);

  // 1 where `PortAddr`, 0 to 15 or 0xFF for all, is linked by copper or by a fiber that counts,
  // else 0. Asks the FPGA.
  uint8_t PortLinkVerify(uint8_t PortAddr);

  // Console diagnostics: the rows of the space at an address's top byte; a log line for each space.
  int32_t Ssh_cmdOffset(QMB_proto3rd* msg);
  void Ssh_cmdAll();

 private:
  static constexpr std::size_t kRows = 71;

  Tshl_ctl();

  Fshl_cmd cmd_root[kRows];        // rows after the last filled one stay zero
  MAP_INT_Fshl_cmd m_mapProtoShl;  // fixed after `initialize`
};

}  // namespace ZEPH_MCUC
