// The feature image and the FPGA: which of the two the bytes of a register come from, and the block
// that brings all of them over.
#include <algorithm>

#include "driverutil.h"
#include "proto/calc_feature.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {

int32_t Data_Global::WriteFeatureBus(uint32_t offset, std::span<const uint8_t> bytes) {
  const CMutexGuardT guard(m_featureBus);
  DropForeignBytes();
  SendParameterReg.write(offset, bytes);
  const auto length = static_cast<uint32_t>(bytes.size());
  if (offset <= feature::kRole && feature::kRole < offset + length) m_roleAhead = false;
  return DriverUtil::getInstance()->WriteFPGABusBlock(offset, bytes.data(), length);
}

bool Data_Global::StaysInRefresh(uint32_t at) const {
  return (at >= m_writeBegin && at < m_writeEnd) || (m_roleAhead && at == feature::kRole);
}

int32_t Data_Global::RefreshFromFeatureBus(uint32_t offset, uint32_t length) {
  std::array<uint8_t, feature::kSize> bytes;
  length = std::min(length, feature::kSize - std::min(offset, feature::kSize));
  const CMutexGuardT guard(m_featureBus);
  const int32_t result = DriverUtil::getInstance()->ReadFPGABusBlock(offset, bytes.data(), length);
  const bool changing = m_imageWaits && m_writeBegin != m_writeEnd;
  if (result < 0 || m_imageAhead || changing) return result;
  if (m_imageWaits && !m_ownImage) m_ownImage = SendParameterReg.snapshot<feature::kSize>(0);
  for (uint32_t i = 0; i < length; ++i) {
    const uint32_t at = offset + i;
    if (!StaysInRefresh(at)) SendParameterReg[at] = bytes[i];
  }
  return result;
}

void Data_Global::DropForeignBytes() {
  if (m_ownImage) SendParameterReg.write(0, *m_ownImage);
  m_ownImage.reset();
}

void Data_Global::BeginFeatureWrite(uint32_t offset, std::span<const uint8_t> bytes) {
  const CMutexGuardT guard(m_featureBus);
  DropForeignBytes();
  SendParameterReg.write(offset, bytes);
  m_writeBegin = offset;
  m_writeEnd = offset + static_cast<uint32_t>(bytes.size());
}

void Data_Global::EndFeatureWrite() {
  const CMutexGuardT guard(m_featureBus);
  m_writeBegin = m_writeEnd = 0;
}

void Data_Global::EndRole() {
  const CMutexGuardT guard(m_featureBus);
  DropForeignBytes();
  SendParameterReg[feature::kRole] = feature::kNoRole;
  m_roleAhead = true;
}

void Data_Global::LoadFeatureImage(std::span<const uint8_t, feature::kSize> image) {
  const CMutexGuardT guard(m_featureBus);
  SendParameterReg.write(0, image);
  m_ownImage.reset();
  m_imageAhead = FpgaOnlineFlag == 1;
  m_imageWaits = !m_imageAhead;
  m_roleAhead = false;
}

int32_t Data_Global::SendFeatureImage() {
  const CMutexGuardT guard(m_featureBus);
  return SendImageBlock(feature::kBusEnd - feature::kBusPage);
}

int32_t Data_Global::SendImageBlock(uint32_t length) {
  const auto bytes =
      SendParameterReg.snapshot<feature::kBusEnd - feature::kBusPage>(feature::kBusPage);
  m_imageAhead = m_imageWaits = false;
  m_ownImage.reset();
  m_roleAhead = false;
  return DriverUtil::getInstance()->WriteFPGABusBlock(feature::kBusPage, bytes.data(), length);
}

}  // namespace ZEPH_MCUC
