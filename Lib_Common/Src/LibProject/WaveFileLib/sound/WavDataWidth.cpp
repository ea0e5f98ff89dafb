// SPDX-License-Identifier: Apache-2.0
//
// Conversion of a sound to other sample widths and signedness.
#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>

#include "CheckedSize.h"
#include "sound/WavData.h"

namespace {

constexpr unsigned int kBlock = 1024;  // samples that are converted together

// The length of qwSamples samples in bytes; empty when it does not fit in 32 bits.
std::optional<unsigned int> ConvertedByteLength(std::uint64_t qwSamples,
                                                unsigned short wStoreBits) {
  // Kept: this rounds with +1, not +7. That makes no difference for whole bytes, the only widths
  // that conversion takes. Pinned by ConvertedLength_IsThatOfWholeSamples.
  const std::uint64_t qwLength = (qwSamples * wStoreBits + 1) >> 3;
  return vcm::CheckedBytes(qwLength, 1);
}

// Negative values are rounded toward zero, like positive ones. nBits is at most 32.
void Narrow(std::span<int> values, int nBits) {
  if (nBits > 31) {
    std::ranges::fill(values, 0);
    return;
  }
  const auto nRounding = static_cast<int>((1U << nBits) - 1U);
  for (int& nValue : values) nValue = (nValue + (nValue >> 31 & nRounding)) >> nBits;
}

// Frame-wide values of several channels may be too large for the shift; they clip. nBits is at most
// 32.
void Widen(std::span<int> values, int nBits) {
  constexpr int nMin = std::numeric_limits<int>::min();
  constexpr int nMax = std::numeric_limits<int>::max();
  const int nShift = std::min(nBits, 31);
  const auto nLowest = static_cast<int>(-(std::int64_t{1} << 31 >> nBits));
  const int nHighest = nBits > 31 ? 0 : -(nLowest + 1);
  for (int& nValue : values) {
    const auto nShifted = static_cast<int>(static_cast<unsigned int>(nValue) << nShift);
    const int nWide = nValue > nHighest ? nMax : nShifted;
    nValue = nValue < nLowest ? nMin : nWide;
  }
}

// Shifts the magnitudes of values from one width to the other.
void Rescale(std::span<int> values, int nFromBits, int nToBits) {
  if (nToBits < nFromBits) Narrow(values, nFromBits - nToBits);
  if (nToBits > nFromBits) Widen(values, nToBits - nFromBits);
}

void ConvertChannel(C_WavDataBuffer& src, C_WavDataBuffer& dst, unsigned short wChannelNo,
                    unsigned int dwCount, bool bExact) {
  const int nFromBits = src.GetWavInfo()->GetBitsPerSample();
  const int nToBits = dst.GetWavInfo()->GetBitsPerSample();
  C_WavDataBufferIterator from(src, 0, wChannelNo);
  C_WavDataBufferIterator to(dst, 0, wChannelNo);
  std::array<int, kBlock> block{};
  while (dwCount > 0) {
    const auto values = std::span(block).first(std::min(kBlock, dwCount));
    from.ReadValues(values);
    Rescale(values, nFromBits, nToBits);
    to.WriteValues(values, bExact);
    dwCount -= static_cast<unsigned int>(values.size());
  }
}

// Fills dst with the samples of src.
void ConvertSamples(C_WavDataBuffer& src, C_WavDataBuffer& dst, bool bExact) {
  I_WavInfo& info = *dst.GetWavInfo();
  const unsigned int dwCount = std::min(dst.GetHeldSampleSize(), src.GetHeldSampleSize());
  // Frames that the iterators cannot write would otherwise show what the memory held before.
  const std::size_t cbWritten =
      info.GetChannels() == 1 ? std::size_t{dwCount} * info.GetBytesPerSample() : 0;
  std::fill(dst.GetBuffer() + cbWritten, dst.GetBuffer() + dst.GetLength(), 0);
  for (unsigned int dwChannel = 0; dwChannel < info.GetChannels(); ++dwChannel) {
    ConvertChannel(src, dst, static_cast<unsigned short>(dwChannel), dwCount, bExact);
  }
}

}  // namespace

bool C_WavData::ConvertBits(unsigned short wBits, unsigned short wStoreBits, bool bSigned,
                            bool bExact) {
  if (m_pcmBuffer.IsBufferAttached()) return false;
  if (wBits == m_wavInfo.GetBitsPerSample() && wStoreBits == m_wavInfo.GetStoreBitsPerSample() &&
      bSigned == m_wavInfo.IsValueSigned()) {
    return true;
  }
  if (AsOurOwn(*this) == nullptr) {
    const C_WavDataPtr copy(CreateBitsConvertedData(wBits, wStoreBits, bSigned, bExact));
    return CopyWavData(copy.get());
  }
  const auto converted = BitsConverted(wBits, wStoreBits, bSigned, bExact);
  if (!converted) return false;
  m_pcmBuffer.TakeBuffer(converted->m_pcmBuffer);
  SetWavInfo(converted->GetWavInfo());
  return true;
}

I_WavData* C_WavData::CreateBitsConvertedData(unsigned short wBits, unsigned short wStoreBits,
                                              bool bSigned, bool bExact) {
  return BitsConverted(wBits, wStoreBits, bSigned, bExact).release();
}

std::unique_ptr<C_WavData> C_WavData::BitsConverted(unsigned short wBits, unsigned short wStoreBits,
                                                    bool bSigned, bool bExact) {
  if (!IsSupportBitsPerSample(wBits, wStoreBits) ||
      !IsSupportBitsPerSample(m_wavInfo.GetBitsPerSample(), m_wavInfo.GetStoreBitsPerSample())) {
    return nullptr;
  }
  const std::uint64_t qwSamples =
      std::uint64_t{m_pcmBuffer.GetHeldSampleSize()} * m_wavInfo.GetChannels();
  const auto dwLength = ConvertedByteLength(qwSamples, wStoreBits);
  if (!dwLength) return nullptr;

  auto converted = std::make_unique<C_WavData>();
  converted->AllocBuffer(*dwLength);
  converted->SetWavInfoData(m_wavInfo.GetSampleRate(), *dwLength, m_wavInfo.GetChannels(), wBits,
                            wStoreBits, bSigned);
  ConvertSamples(m_pcmBuffer, converted->m_pcmBuffer, bExact);
  return converted;
}
