// The frame decoder: whatever comes, it reads no byte past the end, and a frame that it takes and
// whose sum is right goes out again as it came in.
#include <algorithm>
#include <vector>

#include "stub/mcucmessagestruct.h"
#include "world.h"

using namespace ZEPH_MCUC;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::uint8_t> bytes(data, data + size);
  const auto length = static_cast<std::int32_t>(size);
  const bool right = MCUCMsg::Checkout(bytes.data(), length);
  ThirdProtoMCUCMsg message;
  if (message.Decode(bytes.data(), length) != 0) {
    Want(length < frame::kShortest);
    return 0;
  }
  Want(message.m_data.size() <= size);
  if (!right || message.DataFallsShort() || message.m_ucCode != JSHL_PROTOWRITE) return 0;
  std::vector<std::uint8_t> again(size + frame::kShortest);
  ThirdProtoMCUCMsg copy = message;
  const std::int32_t written = copy.Encode(again.data(), static_cast<std::uint32_t>(again.size()));
  Want(written > 0 && written <= length);
  ThirdProtoMCUCMsg second;
  Want(second.Decode(again.data(), written) == 0);
  Want(second.m_data == (message.m_ucReserved == frame::kEchoWrittenData
                             ? message.m_data
                             : decltype(message.m_data){}));
  Want(second.m_uiRegisterUnitAddress == message.m_uiRegisterUnitAddress);
  return 0;
}
