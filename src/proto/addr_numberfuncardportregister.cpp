#include "proto/addr_numberfuncardportregister.h"

#include "mcuctrace.h"
#include "proto/porttables.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kOneBlock = 2;       // reads up to this length ask for one block alone
constexpr uint32_t kAskedOfOne = 0x80;  // and for no more of it

// 0, or the failure of the first block that can't be read.
int32_t Refresh(uint32_t offset, uint32_t length) {
  for (const NumberBlock& block : kNumberBlocks) {
    const bool holds = offset >= block.offset && offset < block.offset + block.length;
    if (length <= kOneBlock && !holds) continue;
    const uint32_t asked = length <= kOneBlock ? kAskedOfOne : block.length;
    if (const int32_t result = RefreshNumbers(block, asked); result < 0) return result;
  }
  return 0;
}

}  // namespace

std::span<const RowFunction> Addr_NumberFunCardPortRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {DoNumberFunCardPort};
  return kRows;
}

JSHL_Type_e Addr_NumberFunCardPortRegister::DoNumberFunCardPort(QMB_proto3rd* msg,
                                                                Fshl_cmd* /*row*/, int /*flag*/) {
  return space::Dispatch(msg, ReadFromNumberFunCardPort, WriteToNumberFunCardPort);
}

JSHL_Type_e Addr_NumberFunCardPortRegister::ReadFromNumberFunCardPort(QMB_proto3rd* msg) {
  if (!space::InRange(kNumberFunCardPortSpace, *msg, kNumberSize, "ReadFromNumberFunCardPort")) {
    return JSHL_invalidAddrLen;
  }
  const uint32_t offset = space::Offset(kNumberFunCardPortSpace, *msg);
  const uint32_t length = msg->proto.m_usValidDataLength;
  if (const int32_t result = Refresh(offset, length); result < 0) {
    MCUC_LOG(kLogError,
             "=== ReadFromNumberFunCardPort ===Read FPGA NumberFunCardPort Info failed! ret = "
                 << result);
    return JSHL_invalidCMD;
  }
  msg->proto.m_data.resize(length);
  NumberPartPara.read(offset, msg->proto.m_data);
  return JSHL_OK;
}

JSHL_Type_e Addr_NumberFunCardPortRegister::WriteToNumberFunCardPort(QMB_proto3rd* msg) {
  if (!space::InRange(kNumberFunCardPortSpace, *msg, kNumberSize, "WriteToNumberFunCardPort")) {
    return JSHL_invalidAddrLen;
  }
  return space::QueueWrite(msg, DoNumberFunCardPortKey, "WriteToNumberFunCardPort");
}

}  // namespace ZEPH_MCUC
