#include "proto/registerspace.h"

#include <cstdio>
#include <memory>
#include <new>

#include "driverutil.h"
#include "mcucstdout.h"
#include "mcuctrace.h"
#include "stub/stubutil.h"

namespace ZEPH_MCUC {

JSHL_Type_e Ssh_checkFun(Fcheck_func* check, QMB_proto3rd* msg) {
  const int32_t length = msg->proto.m_usValidDataLength;
  if (length < check->cmdLen.cmdLenMin || length > check->cmdLen.cmdLenMax) {
    MCUC_LOG(kLogError, "=== Ssh_checkFun ===Check Func: Unsupportd register max/min length.");
    return JSHL_invalidLenMaxMin;
  }
  int32_t allowed = 0;
  if (msg->proto.m_ucCode == JSHL_PROTOREAD) allowed = check->cmdType & PROTO_R;
  if (msg->proto.m_ucCode == JSHL_PROTOWRITE) allowed = check->cmdType & PROTO_W;
  if (allowed == 0) {
    MCUC_LOG(kLogError, "=== Ssh_checkFun ===Check Func: Unsupportd register type.");
    return JSHL_invalidTypeErr;
  }
  return JSHL_OK;
}

namespace space {

void InitMap(const SpaceNames& names, std::span<const RowFunction> functions, SpaceOperation print,
             State* state) {
  for (std::size_t i = 0; i < names.rows.size() && i + 1 < kMostRows; ++i) {
    const RowNames& name = names.rows[i];
    Fshl_cmd& row = state->cmd_tblOffset[i];
    row.RegisterAddr = name.key;
    row.cmd_str = name.cmdStr;
    row.cmd_exp = name.cmdExp;
    row.cmdType = PROTO_RW;
    row.cmdLen = {names.least, names.most};
    row.called_fun = i < functions.size() ? functions[i] : functions.back();
    row.print_fun = print;
    row.check_fun = Ssh_checkFun;
    state->m_mapProtoOffsetShl[row.RegisterAddr] = {static_cast<uint32_t>(i), &row};
  }
}

namespace {

void LogRefusal(const SpaceNames& names, const QMB_proto3rd& msg, const char* what) {
  if (names.saysAddress) {
    MCUC_LOG(kLogError, "=== " << names.className << " ===" << what << ", addr = " << CTrace::hex
                               << msg.proto.m_uiRegisterUnitAddress);
  } else {
    MCUC_LOG(kLogError, "=== " << names.className << " ===" << what);
  }
}

}  // namespace

JSHL_Type_e Command(const SpaceNames& names, State* state, QMB_proto3rd* msg) {
  if (!names.rowsChecked) {
    Fshl_cmd* row = &state->cmd_tblOffset[0];
    return row->called_fun(msg, row, 0);
  }
  const auto found =
      state->m_mapProtoOffsetShl.find(msg->proto.m_uiRegisterUnitAddress & names.mask);
  if (found == state->m_mapProtoOffsetShl.end()) {
    msg->proto.m_ucAck = JSHL_invalidCMD;
    LogRefusal(names, *msg, "invalid register access");
    return JSHL_invalidCMD;
  }
  Fshl_cmd* row = found->second.cmd;
  Fcheck_func check{row->cmdType, row->cmdLen};
  if (const JSHL_Type_e fault = row->check_fun(&check, msg); fault != JSHL_OK) {
    msg->proto.m_ucAck = JSHL_invalidCMD;
    if (names.saysAddress) LogRefusal(names, *msg, "check fun failed");
    return fault;
  }
  return row->called_fun(msg, row, 0);
}

JSHL_Type_e Print(const SpaceNames& names, const State& state) {
  for (const auto& [key, entry] : state.m_mapProtoOffsetShl) {
    char line[160];
    std::snprintf(line, sizeof(line), "register base=0x%08X offset=0x%08X :%s\n", names.base(),
                  entry.cmd->RegisterAddr, entry.cmd->cmd_exp);
    SayOnStandardOutput(line);
  }
  return JSHL_OK;
}

JSHL_Type_e Dispatch(QMB_proto3rd* msg, SpaceOperation read, SpaceOperation write) {
  if (msg == nullptr) return JSHL_invalidCMD;
  switch (msg->proto.m_ucCode) {
    case JSHL_PROTOREAD:
      return read(msg);
    case JSHL_PROTOWRITE:
      return write(msg);
    default:
      return JSHL_TYPE_NG;
  }
}

namespace {

void LogRangeFault(const QMB_proto3rd& msg, const char* operation) {
  MCUC_LOG(kLogError, "=== " << operation << " ===Invalid addr+len, return! address = "
                             << CTrace::hex << msg.proto.m_uiRegisterUnitAddress
                             << " length = " << msg.proto.m_usValidDataLength);
}

}  // namespace

bool InRange(const SpaceNames& names, const QMB_proto3rd& msg, uint32_t size,
             const char* operation) {
  if (Offset(names, msg) + msg.proto.m_usValidDataLength <= size) return true;
  LogRangeFault(msg, operation);
  return false;
}

bool FlashTakes(const QMB_proto3rd& msg, FlashOwner owner, uint32_t address,
                const char* operation) {
  const auto length = static_cast<uint32_t>(msg.proto.m_data.size());
  if (FlashWriteAllowed(owner, address, length)) return true;
  LogRangeFault(msg, operation);
  return false;
}

JSHL_Type_e ReplyFromFlash(QMB_proto3rd* msg, uint32_t address, const char* failure) {
  std::vector<uint8_t> bytes(msg->proto.m_usValidDataLength);
  const int32_t result = DriverUtil::getInstance()->ReadBytesFromFlash(
      address, static_cast<uint32_t>(bytes.size()), bytes.data());
  if (result != 0) {
    MCUC_LOG(kLogError, failure << result);
    return JSHL_TYPE_NG;
  }
  msg->proto.m_data = std::move(bytes);
  return JSHL_OK;
}

void Reply(QMB_proto3rd* msg, std::span<const uint8_t> bytes) {
  msg->proto.m_data.assign(bytes.begin(), bytes.end());
}

namespace {

JSHL_Type_e Queue(const QMB_proto3rd& msg, _ValueChanged_Table key,
                  std::unique_ptr<MCUProcessDataBlock> block) {
  block->ipcHeader = msg.ipcHeader;
  block->m_key = key;
  StubUtil::getInstance()->addMessageToList(block.release());
  return JSHL_OK;
}

}  // namespace

JSHL_Type_e QueueWrite(QMB_proto3rd* msg, _ValueChanged_Table key, const char* operation) {
  MCUC_LOG(kLogInfo, "====== Begin " << operation << " ======");
  if (msg == nullptr) return JSHL_invalidCMD;
  std::unique_ptr<MCUProcessDataBlock> block(new (std::nothrow) MCUProcessDataBlock);
  if (block == nullptr) {
    MCUC_LOG(kLogError, "=== " << operation << " ===no memory for the data block");
    return JSHL_invalidCMD;
  }
  if (msg->proto.m_data.empty()) {
    MCUC_LOG(kLogError, "=== " << operation << " ===invalid data");
    return JSHL_invalidTypeErr;
  }
  if (!WritePenetrateInfo(msg->proto.m_uiRegisterUnitAddress, msg->proto.m_data, block.get())) {
    MCUC_LOG(kLogError, "=== " << operation << " ===data too long for a block");
    return JSHL_invalidCMD;
  }
  const JSHL_Type_e result = Queue(*msg, key, std::move(block));
  MCUC_LOG(kLogInfo, "====== Finish " << operation << " ======");
  return result;
}

JSHL_Type_e QueueRecord(const QMB_proto3rd& msg, _ValueChanged_Table key,
                        std::span<const uint8_t> record) {
  std::unique_ptr<MCUProcessDataBlock> block(new (std::nothrow) MCUProcessDataBlock);
  if (block == nullptr || !block->setData(reinterpret_cast<const char*>(record.data()),
                                          static_cast<int32_t>(record.size()))) {
    return JSHL_invalidCMD;
  }
  return Queue(msg, key, std::move(block));
}

}  // namespace space
}  // namespace ZEPH_MCUC
