// The pattern of a register space: rows, checks, dispatch, queuing and replies, written once.
//
// A space is a class that derives from `RegisterSpace` with its own name and its row in the table
// of names. It adds a row function, a read and a write, and nothing else. All of it runs on the bus
// receive thread, one request at a time.
#pragma once

#include <cstdint>
#include <map>
#include <span>

#include "mcucsingleton.h"
#include "proto/calc_flashmap.h"
#include "proto/registerspace_names.h"
#include "stub/mcucmessagestruct.h"
#include "stub/mcuprocessdatablock.h"

namespace ZEPH_MCUC {

// Which requests a row takes.
enum PROTO_CMD_TYPE : int32_t { PROTO_R = 1, PROTO_W = 16, PROTO_RW = 17 };

// Allowed range of a request's length.
struct Fcmd_len {
  int32_t cmdLenMin = 1;
  int32_t cmdLenMax = 512;
};

struct Fcheck_func {
  int32_t cmdType = 0;
  Fcmd_len cmdLen;
};

struct Fdev_func_tbl {
  uint32_t addr = 0;
  int32_t dev_type = 0;
  int32_t type = 0;
};

// One row of a register table; a null `cmd_str` ends a table.
struct Fshl_cmd {
  uint32_t RegisterAddr = 0;
  const char* cmd_str = nullptr;
  const char* cmd_exp = nullptr;
  int32_t cmdType = 0;
  Fcmd_len cmdLen;
  Fdev_func_tbl dev_tbl;
  ThirdProtoMCUCMsg* paras = nullptr;
  JSHL_Type_e (*called_fun)(QMB_proto3rd*, Fshl_cmd*, int) = nullptr;
  JSHL_Type_e (*print_fun)(QMB_proto3rd*) = nullptr;
  JSHL_Type_e (*check_fun)(Fcheck_func*, QMB_proto3rd*) = nullptr;
};

// A row and its index in its table.
struct Fshl_cmdMap {
  uint32_t NO = 0;
  Fshl_cmd* cmd = nullptr;
};
using MAP_INT_Fshl_cmd = std::map<uint32_t, Fshl_cmdMap>;

using RowFunction = JSHL_Type_e (*)(QMB_proto3rd*, Fshl_cmd*, int);
using SpaceOperation = JSHL_Type_e (*)(QMB_proto3rd*);

// Checks a request's length and operation against a row's. JSHL_OK, JSHL_invalidLenMaxMin or
// JSHL_invalidTypeErr, each fault with a log line.
JSHL_Type_e Ssh_checkFun(Fcheck_func* check, QMB_proto3rd* msg);

// What the spaces share, apart from the storage that each has for itself.
namespace space {

inline constexpr std::size_t kMostRows = 12;  // the table's end included

struct State {
  Fshl_cmd cmd_tblOffset[kMostRows];
  MAP_INT_Fshl_cmd m_mapProtoOffsetShl;
};

// Fills table and map from the names; `functions` holds one function a row, or one for all rows.
void InitMap(const SpaceNames& names, std::span<const RowFunction> functions, SpaceOperation print,
             State* state);
JSHL_Type_e Command(const SpaceNames& names, State* state, QMB_proto3rd* msg);
JSHL_Type_e Print(const SpaceNames& names, const State& state);

// The read or the write of a request; 4 for a null request, -1 for any other operation.
JSHL_Type_e Dispatch(QMB_proto3rd* msg, SpaceOperation read, SpaceOperation write);

// Where in its space a request begins.
inline uint32_t Offset(const SpaceNames& names, const QMB_proto3rd& msg) {
  return msg.proto.m_uiRegisterUnitAddress & names.offsetMask;
}

// Whether the request lies below `size`. If not, one line is logged under the operation's name, and
// the caller answers with JSHL_invalidAddrLen and does nothing.
bool InRange(const SpaceNames& names, const QMB_proto3rd& msg, uint32_t size,
             const char* operation);

// Whether a write of the request's data to flash address `address` stays inside the store and
// touches nobody else's bytes; if not, as `InRange`.
bool FlashTakes(const QMB_proto3rd& msg, FlashOwner owner, uint32_t address, const char* operation);

// Makes the flash bytes from `address`, as many as the request asks for, the data of the reply. -1
// and no data, logged in the words `failure`, where they can't be read.
JSHL_Type_e ReplyFromFlash(QMB_proto3rd* msg, uint32_t address, const char* failure);

// Makes `bytes` the data of the reply.
void Reply(QMB_proto3rd* msg, std::span<const uint8_t> bytes);

// Queues the request's register, length and data under `key`. 4 for a null request or no memory;
// JSHL_invalidTypeErr, logged under the operation's name, for a write without data.
JSHL_Type_e QueueWrite(QMB_proto3rd* msg, _ValueChanged_Table key, const char* operation);

// Queues `record` under `key`. 4 for no memory or a record that doesn't fit.
JSHL_Type_e QueueRecord(const QMB_proto3rd& msg, _ValueChanged_Table key,
                        std::span<const uint8_t> record);

}  // namespace space

template <class Space, const SpaceNames& Names>
class RegisterSpace : public Singleton<Space> {
 public:
  RegisterSpace() { initMap(); }

  // Fills the map of rows; 0.
  static int32_t initMap() {
    space::InitMap(Names, Space::RowFunctions(), Ssh_print, &state());
    return 0;
  }

  // Finds the row, checks the request against it and calls it. A missing row or a failed check sets
  // the request's ack to 4.
  static JSHL_Type_e Ssh_cmd(QMB_proto3rd* msg, Fshl_cmd* /*row*/, int /*flag*/) {
    if (state().m_mapProtoOffsetShl.empty()) initMap();
    return space::Command(Names, &state(), msg);
  }

  // Prints the rows to standard output.
  static JSHL_Type_e Ssh_print(QMB_proto3rd* /*msg*/) { return space::Print(Names, state()); }

 private:
  static space::State& state() {
    static auto* const state = new space::State;  // outlives all threads
    return *state;
  }
};

}  // namespace ZEPH_MCUC
