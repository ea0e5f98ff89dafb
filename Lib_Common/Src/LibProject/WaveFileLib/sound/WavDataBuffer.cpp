// SPDX-License-Identifier: Apache-2.0
#include "sound/WavDataBuffer.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <span>
#include <utility>

#include "LargeMemory.h"
#include "VcmAssert.h"
#include "sound/SampleUnits.h"

namespace {

constexpr const char* kSource = "WaveFileLib/WavDataBuffer";
constexpr unsigned int kBlock = 1024;  // values that are looked at together

// Formats may carry any number of bits, so shift counts are taken modulo 32.
constexpr unsigned int SignBit(unsigned short wBits) { return 1U << ((wBits - 1U) & 31U); }

// (1 << bits) - 1, computed so that 32 bits give all ones.
constexpr unsigned int ValueMask(unsigned short wBits) {
  return wBits == 0 ? 0U : (SignBit(wBits) << 1) - 1U;
}
static_assert(ValueMask(8) == 0xFFU && ValueMask(12) == 0xFFFU && ValueMask(32) == 0xFFFFFFFFU);

constexpr unsigned int AccessMask(unsigned short wStoreBits) {
  return wStoreBits == 8 ? 0xFFU : wStoreBits == 16 ? 0xFFFFU : 0xFFFFFFFFU;
}

constexpr bool IsUnitWidth(unsigned int cbUnit) {
  return cbUnit == 1 || cbUnit == 2 || cbUnit == 4;
}

int ToValue(unsigned int dwUnit, bool bSigned, unsigned int dwSignBit,
            unsigned int dwSignExtension) {
  if (!bSigned) return static_cast<int>(dwUnit - dwSignBit);
  return static_cast<int>((dwUnit & dwSignBit) != 0 ? dwUnit | dwSignExtension : dwUnit);
}

// The magnitude of the most negative 32-bit value is one more than an int holds.
int SaturatedAbs(int nValue) {
  constexpr int nMin = std::numeric_limits<int>::min();
  return nValue == nMin ? std::numeric_limits<int>::max() : std::abs(nValue);
}

// The largest absolute value, or nSoFar if none is larger. Most blocks have no larger one, which is
// quickly seen.
int LargestAbs(std::span<const int> values, int nSoFar) {
  int nLarger = 0;
  for (const int nValue : values) nLarger |= int{nValue > nSoFar} | int{nValue < -nSoFar};
  if (nLarger == 0) return nSoFar;
  for (const int nValue : values) nSoFar = std::max(nSoFar, SaturatedAbs(nValue));
  return nSoFar;
}

}  // namespace

C_WavDataBuffer::C_WavDataBuffer() = default;

C_WavDataBuffer::~C_WavDataBuffer() { SafeDeleteBuffer(); }

int C_WavDataBuffer::GetSampleValueInt(unsigned int dwSamplePos, unsigned short wChannelNo) {
  const unsigned short wChannels = Channels();
  VCM_ASSERT(wChannelNo < wChannels, "GetSampleValueInt", kSource, 96, "wChannelNo < wChannels");
  const auto qwOffset = SampleOffset(dwSamplePos, wChannelNo, wChannels);
  if (!qwOffset) return 0;
  return ToValue(ReadUnit(*qwOffset, m_wStoreBitsPerSample / 8U), m_bValueSigned, m_dwSignBit,
                 m_dwSignExtension);
}

void C_WavDataBuffer::SetSampleValueInt(unsigned int dwSamplePos, int nValue,
                                        unsigned short wChannelNo) {
  const unsigned short wChannels = Channels();
  VCM_ASSERT(wChannelNo < wChannels, "SetSampleValueInt", kSource, 141, "wChannelNo < wChannels");
  const auto qwOffset = SampleOffset(dwSamplePos, wChannelNo, wChannels);
  if (!qwOffset) return;
  // Kept: values are masked, never clipped; the codecs write through here and clip themselves.
  // Pinned by SetSampleValueInt_DoesNotClip.
  const auto dwValue = static_cast<unsigned int>(nValue);
  WriteUnit(*qwOffset, m_wStoreBitsPerSample / 8U,
            m_bValueSigned ? dwValue & m_dwValueMask : dwValue + m_dwSignBit, 0xFFFFFFFFU);
}

int C_WavDataBuffer::GetMaxAbsValue(unsigned int dwStartSample, unsigned int dwEndSample,
                                    unsigned short wFirstChannel, unsigned short wLastChannel) {
  if (m_pIWavInfo == nullptr || dwEndSample >= m_pIWavInfo->GetSampleSize() ||
      wLastChannel >= Channels()) {
    return -1;
  }
  // Kept: the end sample does not count, although it must exist. Existing sounds were normalised to
  // peaks found this way. Pinned by MaxAbsValue_LeavesOutTheEndSample.
  const unsigned int dwEnd = std::min(dwEndSample, GetHeldSampleSize());
  std::array<int, kBlock> block{};
  int nMax = 0;
  for (unsigned int dwSample = dwStartSample; dwSample < dwEnd;) {
    const auto values = std::span(block).first(std::min(kBlock, dwEnd - dwSample));
    for (unsigned int dwChannel = wFirstChannel; dwChannel <= wLastChannel; ++dwChannel) {
      ReadChannel(dwSample, static_cast<unsigned short>(dwChannel), values);
      nMax = LargestAbs(values, nMax);
    }
    dwSample += static_cast<unsigned int>(values.size());
  }
  return nMax;
}

C_WavDataBufferIterator* C_WavDataBuffer::CreateIterator(unsigned int dwSamplePos,
                                                         unsigned short wChannelNo) {
  // Kept: a buffer has one iterator, and the iterator that was handed out before is deleted here,
  // so that callers need not delete any. Pinned by CreateIterator_DeletesTheOneBefore.
  m_pIterator.reset();
  m_pIterator = std::make_unique<C_WavDataBufferIterator>(*this, dwSamplePos, wChannelNo);
  return m_pIterator.get();
}

void C_WavDataBuffer::SetWavInfo(I_WavInfo* pIWavInfo) {
  VCM_ASSERT(pIWavInfo != nullptr, "SetWavInfo", kSource, 81, "pIWavInfo != NULL");
  m_pIWavInfo = pIWavInfo;
  m_wStoreBitsPerSample = pIWavInfo->GetStoreBitsPerSample();
  m_bValueSigned = pIWavInfo->IsValueSigned();
  m_dwSignBit = SignBit(pIWavInfo->GetBitsPerSample());
  m_dwSignExtension = 0U - m_dwSignBit;
  m_dwValueMask = ValueMask(pIWavInfo->GetBitsPerSample());
}

unsigned int C_WavDataBuffer::GetHeldSampleSize() {
  return m_pIWavInfo == nullptr
             ? 0
             : std::min(m_pIWavInfo->GetSampleSize(), GetUnwrappedHeldSampleSize());
}

unsigned int C_WavDataBuffer::GetUnwrappedHeldSampleSize() {
  const std::uint64_t qwFrameBits = std::uint64_t{Channels()} * m_wStoreBitsPerSample;
  if (qwFrameBits == 0) return 0;
  const std::uint64_t qwBytes = std::min(m_dwLength, m_pIWavInfo->GetByteLength());
  constexpr std::uint64_t qwMax = std::numeric_limits<unsigned int>::max();
  return static_cast<unsigned int>(std::min(qwBytes * 8U / qwFrameBits, qwMax));
}

void C_WavDataBuffer::ReadChannel(unsigned int dwSamplePos, unsigned short wChannelNo,
                                  std::span<int> values) {
  if (values.empty()) return;
  const unsigned short wChannels = Channels();
  const auto dwLast = static_cast<unsigned int>(dwSamplePos + values.size() - 1);
  const auto qwFirst = SampleOffset(dwSamplePos, wChannelNo, wChannels);
  const bool bHeld = dwLast >= dwSamplePos && SampleOffset(dwLast, wChannelNo, wChannels);
  if (wChannelNo < wChannels && qwFirst && bHeld) {
    const unsigned int cbSample = m_wStoreBitsPerSample / 8U;
    sampleunits::Read({cbSample, m_bValueSigned, m_dwSignBit},
                      {m_pbyBuffer + *qwFirst, std::size_t{wChannels} * cbSample}, values);
    return;
  }
  for (int& nValue : values) nValue = GetSampleValueInt(dwSamplePos++, wChannelNo);
}

void C_WavDataBuffer::MuteFrames(unsigned int dwSamplePos, unsigned int dwFrames) {
  const auto qwOffset = SampleOffset(dwSamplePos, 0, Channels());
  if (!qwOffset) return;
  const unsigned int cbSample = m_wStoreBitsPerSample / 8U;
  const unsigned int dwSilent = m_bValueSigned ? 0 : m_dwSignBit;
  std::array<unsigned char, 4> silence{};
  for (unsigned int i = 0; i < silence.size(); ++i) {
    silence[i] = static_cast<unsigned char>(dwSilent >> (8U * i));
  }
  sampleunits::Copy({silence.data(), 0}, std::size_t{Channels()} * dwFrames, cbSample,
                    m_pbyBuffer + *qwOffset, cbSample);
}

void C_WavDataBuffer::SafeDeleteBuffer() {
  if (m_pbyBuffer == nullptr) return;
  if (!m_bAttached) {
    std::unique_ptr<unsigned char[]> memory(m_pbyBuffer);
    if (const auto keeper = m_keeper.lock()) *keeper = std::move(memory);
  }
  m_keeper.reset();
  Hold(nullptr, 0, false);
}

std::shared_ptr<const void> C_WavDataBuffer::KeepMemory() {
  if (m_pbyBuffer == nullptr || m_bAttached) return nullptr;
  auto keeper = m_keeper.lock();
  if (!keeper) m_keeper = keeper = std::make_shared<std::unique_ptr<unsigned char[]>>();
  return keeper;
}

unsigned char* C_WavDataBuffer::DetachBuffer() {
  if (!m_bAttached) return nullptr;
  unsigned char* pbyBuffer = m_pbyBuffer;
  Hold(nullptr, 0, false);
  return pbyBuffer;
}

void C_WavDataBuffer::CopyBuffer(const void* pData, unsigned int dwLength) {
  if (pData == nullptr) dwLength = 0;
  auto pbyCopy = vcm::NewBytes(dwLength);
  if (dwLength > 0) std::memcpy(pbyCopy.get(), pData, dwLength);
  TakeBuffer(std::move(pbyCopy), dwLength);
}

unsigned char* C_WavDataBuffer::AllocBuffer(unsigned int dwLength) {
  SafeDeleteBuffer();
  Hold(vcm::NewBytes(dwLength).release(), dwLength, false);
  return m_pbyBuffer;
}

void C_WavDataBuffer::TakeBuffer(C_WavDataBuffer& other) {
  SafeDeleteBuffer();
  Hold(other.m_pbyBuffer, other.m_dwLength, other.m_bAttached);
  m_keeper = std::move(other.m_keeper);
  other.Hold(nullptr, 0, false);
}

void C_WavDataBuffer::TakeBuffer(std::unique_ptr<unsigned char[]> pbyBuffer,
                                 unsigned int dwLength) {
  SafeDeleteBuffer();
  Hold(pbyBuffer.release(), dwLength, false);
}

void C_WavDataBuffer::AttachBuffer(void* pData, unsigned int dwLength) {
  SafeDeleteBuffer();
  Hold(static_cast<unsigned char*>(pData), dwLength, true);
}

void C_WavDataBuffer::Hold(unsigned char* pbyBuffer, unsigned int dwLength, bool bAttached) {
  m_pbyBuffer = pbyBuffer;
  m_dwLength = pbyBuffer == nullptr ? 0 : dwLength;
  m_bAttached = bAttached;
}

unsigned short C_WavDataBuffer::Channels() {
  return m_pIWavInfo == nullptr ? static_cast<unsigned short>(0) : m_pIWavInfo->GetChannels();
}

std::optional<std::uint64_t> C_WavDataBuffer::SampleOffset(unsigned int dwSamplePos,
                                                           unsigned short wChannelNo,
                                                           unsigned short wChannels) const {
  const unsigned int cbSample = m_wStoreBitsPerSample / 8U;
  if (m_wStoreBitsPerSample % 8U != 0 || !IsUnitWidth(cbSample)) return std::nullopt;
  const std::uint64_t qwOffset = (std::uint64_t{wChannels} * dwSamplePos + wChannelNo) * cbSample;
  if (qwOffset + cbSample > m_dwLength) return std::nullopt;
  return qwOffset;
}

std::size_t C_WavDataBuffer::UnitsFrom(std::uint64_t qwOffset, unsigned int cbUnit) const {
  if (!IsUnitWidth(cbUnit) || qwOffset >= m_dwLength) return 0;
  return static_cast<std::size_t>((m_dwLength - qwOffset) / cbUnit);
}

unsigned int C_WavDataBuffer::ReadUnit(std::uint64_t qwOffset, unsigned int cbUnit) const {
  if (qwOffset >= m_dwLength) return 0;
  const auto cbHeld = std::min<std::uint64_t>(cbUnit, m_dwLength - qwOffset);
  unsigned int dwUnit = 0;
  for (unsigned int i = 0; i < cbHeld; ++i) {
    dwUnit |= static_cast<unsigned int>(m_pbyBuffer[qwOffset + i]) << (8U * i);
  }
  return dwUnit;
}

void C_WavDataBuffer::WriteUnit(std::uint64_t qwOffset, unsigned int cbUnit, unsigned int dwUnit,
                                unsigned int dwMask) {
  if (qwOffset >= m_dwLength) return;
  const auto cbHeld = std::min<std::uint64_t>(cbUnit, m_dwLength - qwOffset);
  for (unsigned int i = 0; i < cbHeld; ++i) {
    const unsigned int dwByteMask = dwMask >> (8U * i) & 0xFFU;
    unsigned char& byStored = m_pbyBuffer[qwOffset + i];
    byStored =
        static_cast<unsigned char>((byStored & ~dwByteMask) | (dwUnit >> (8U * i) & dwByteMask));
  }
}

C_WavDataBufferIterator::C_WavDataBufferIterator(C_WavDataBuffer& buffer, unsigned int dwSamplePos,
                                                 unsigned short wChannelNo)
    : m_buffer(buffer),
      m_wChannelNo(wChannelNo),
      m_dwSignBit(buffer.m_dwSignBit),
      m_dwSignExtension(buffer.m_dwSignExtension),
      m_dwValueMask(buffer.m_dwValueMask) {
  if (I_WavInfo* pIWavInfo = buffer.GetWavInfo()) {
    m_wChannels = pIWavInfo->GetChannels();
    m_wStoreBitsPerSample = pIWavInfo->GetStoreBitsPerSample();
    m_bValueSigned = pIWavInfo->IsValueSigned();
    m_nMaximum = static_cast<int>(SignBit(pIWavInfo->GetBitsPerSample()) - 1U);
  }
  m_nMinimum = ~m_nMaximum;
  m_wFrameStep = static_cast<unsigned short>((m_wStoreBitsPerSample >> 3) * unsigned{m_wChannels});
  m_dwAccessMask = AccessMask(m_wStoreBitsPerSample);
  SetPos(dwSamplePos);
}

void C_WavDataBufferIterator::SetPos(unsigned int dwSamplePos) {
  m_qwOffset =
      (std::uint64_t{m_wChannels} * dwSamplePos + m_wChannelNo) * (m_wStoreBitsPerSample >> 3U);
}

// Kept: the unit is as wide as a whole frame, so with several channels the samples after this one
// appear in its upper bytes. Conversions of existing multi-channel sounds depend on these values.
// Pinned by Iterator_StereoSeesTheOtherChannelInItsUpperBytes.
int C_WavDataBufferIterator::GetValue() const {
  if (!IsUnitWidth(m_wFrameStep)) return 0;
  return ToValue(m_buffer.ReadUnit(m_qwOffset, m_wFrameStep), m_bValueSigned, m_dwSignBit,
                 m_dwSignExtension);
}

void C_WavDataBufferIterator::SetValue(int nValue, bool bExact) {
  if (!IsUnitWidth(m_wFrameStep)) return;
  const int nClipped = std::clamp(nValue, m_nMinimum, m_nMaximum);
  const auto dwValue = static_cast<unsigned int>(nClipped);
  unsigned int dwUnit = m_bValueSigned ? dwValue & m_dwValueMask : dwValue + m_dwSignBit;
  // Kept: the inexact path stores negative values one step lower, even at the minimum, where that
  // wraps to the maximum. Encoders were tuned on sounds converted this way. Pinned by
  // InexactSetValue_StoresNegativeValuesOneStepLower.
  if (m_bValueSigned && nClipped < 0 && !bExact) --dwUnit;
  m_buffer.WriteUnit(m_qwOffset, m_wFrameStep, dwUnit, m_dwAccessMask);
}

void C_WavDataBufferIterator::ReadValues(std::span<int> values) {
  const auto nWhole = std::min(values.size(), m_buffer.UnitsFrom(m_qwOffset, m_wFrameStep));
  if (nWhole > 0) {
    sampleunits::Read({m_wFrameStep, m_bValueSigned, m_dwSignBit},
                      {m_buffer.m_pbyBuffer + m_qwOffset, m_wFrameStep}, values.first(nWhole));
    m_qwOffset += nWhole * m_wFrameStep;
  }
  for (int& nValue : values.subspan(nWhole)) {
    nValue = GetValue();
    Next();
  }
}

void C_WavDataBufferIterator::Write(std::span<const int> values, bool bClip, bool bExact) {
  const auto nWhole = std::min(values.size(), m_buffer.UnitsFrom(m_qwOffset, m_wFrameStep));
  if (nWhole > 0) {
    sampleunits::Write({m_wFrameStep, m_bValueSigned, m_dwSignBit},
                       {bClip, m_nMinimum, m_nMaximum, m_dwValueMask, m_dwAccessMask, bExact},
                       values.first(nWhole), m_buffer.m_pbyBuffer + m_qwOffset);
    m_qwOffset += nWhole * m_wFrameStep;
  }
  for (const int nValue : values.subspan(nWhole)) {
    SetValue(nValue, bExact);
    Next();
  }
}
