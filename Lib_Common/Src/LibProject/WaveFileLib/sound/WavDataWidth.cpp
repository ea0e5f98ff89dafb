// SPDX-License-Identifier: Apache-2.0
//
// Conversion of a sound to other sample widths and signedness.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>

#include "CheckedSize.h"
#include "sound/WavData.h"

namespace {

// The length of qwSamples samples in bytes; empty when it does not fit in 32 bits.
std::optional<unsigned int> ConvertedByteLength(std::uint64_t qwSamples,
                                                unsigned short wStoreBits) {
  // Kept: this rounds with +1, not +7. That makes no difference for whole bytes, the only widths
  // that conversion takes. Pinned by ConvertedLength_IsThatOfWholeSamples.
  const std::uint64_t qwLength = (qwSamples * wStoreBits + 1) >> 3;
  return vcm::CheckedBytes(qwLength, 1);
}

// The value with its magnitude shifted from one width to the other. Negative values are rounded
// toward zero, like positive ones.
int RescaledValue(int nValue, int nFromBits, int nToBits) {
  const std::int64_t qnValue = nValue;
  std::int64_t qnMagnitude = qnValue < 0 ? -qnValue : qnValue;
  if (nToBits > nFromBits) {
    // Frame-wide values of several channels may be too large for the shift; they clip.
    qnMagnitude = qnMagnitude > (std::int64_t{1} << 31 >> (nToBits - nFromBits))
                      ? std::int64_t{1} << 31
                      : qnMagnitude << (nToBits - nFromBits);
  } else {
    qnMagnitude >>= nFromBits - nToBits;
  }
  const std::int64_t qnRescaled = qnValue < 0 ? -qnMagnitude : qnMagnitude;
  return static_cast<int>(std::min<std::int64_t>(qnRescaled, std::numeric_limits<int>::max()));
}

void ConvertChannel(C_WavDataBuffer& src, C_WavDataBuffer& dst, unsigned short wChannelNo,
                    unsigned int dwCount, bool bExact) {
  const int nFromBits = src.GetWavInfo()->GetBitsPerSample();
  const int nToBits = dst.GetWavInfo()->GetBitsPerSample();
  C_WavDataBufferIterator from(src, 0, wChannelNo);
  C_WavDataBufferIterator to(dst, 0, wChannelNo);
  for (unsigned int i = 0; i < dwCount; ++i, from.Next(), to.Next()) {
    to.SetValue(RescaledValue(from.GetValue(), nFromBits, nToBits), bExact);
  }
}

// Fills pbyDst, whose length and widths dstInfo gives, with the samples of src.
void ConvertSamples(C_WavDataBuffer& src, unsigned char* pbyDst, C_WavInfo& dstInfo, bool bExact) {
  C_WavDataBuffer dst;
  dst.AttachBuffer(pbyDst, dstInfo.GetByteLength());
  dst.SetWavInfo(&dstInfo);
  const unsigned int dwCount = std::min(dst.GetHeldSampleSize(), src.GetHeldSampleSize());
  for (unsigned int dwChannel = 0; dwChannel < dstInfo.GetChannels(); ++dwChannel) {
    ConvertChannel(src, dst, static_cast<unsigned short>(dwChannel), dwCount, bExact);
  }
  dst.DetachBuffer();
}

}  // namespace

bool C_WavData::ConvertBits(unsigned short wBits, unsigned short wStoreBits, bool bSigned,
                            bool bExact) {
  if (m_pcmBuffer.IsBufferAttached()) return false;
  if (wBits == m_wavInfo.GetBitsPerSample() && wStoreBits == m_wavInfo.GetStoreBitsPerSample() &&
      bSigned == m_wavInfo.IsValueSigned()) {
    return true;
  }
  const C_WavDataPtr converted(CreateBitsConvertedData(wBits, wStoreBits, bSigned, bExact));
  return CopyWavData(converted.get());
}

I_WavData* C_WavData::CreateBitsConvertedData(unsigned short wBits, unsigned short wStoreBits,
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
  // Frames that the iterators cannot write would otherwise show what the memory held before.
  std::memset(converted->AllocBuffer(*dwLength), 0, *dwLength);
  C_WavInfo info;
  info.SetInfoData(m_wavInfo.GetSampleRate(), *dwLength, m_wavInfo.GetChannels(), wBits, wStoreBits,
                   bSigned);
  ConvertSamples(m_pcmBuffer, converted->GetBuffer(), info, bExact);
  converted->SetWavInfo(&info);
  return converted.release();
}
