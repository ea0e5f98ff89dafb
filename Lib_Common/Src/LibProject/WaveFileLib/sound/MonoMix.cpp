// SPDX-License-Identifier: Apache-2.0
#include "sound/MonoMix.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <span>
#include <utility>

#include "ByteReader.h"
#include "CheckedSize.h"
#include "sound/HeldBytes.h"
#include "sound/WavData.h"

namespace monomix {
namespace {

constexpr std::uint32_t kSampleBytes = 2;
// Short enough for the width conversion, where the count of bits wraps at half a gibibyte.
constexpr unsigned int kBlockFrames = 65536;

// Counts in 64 bits, because the format's own count wraps too. nChannels must not be 0.
std::optional<unsigned int> CountFrames(I_WavData& wavData, std::int32_t nChannels) {
  const auto qwFrameBits =
      static_cast<std::uint64_t>(nChannels) * wavData.GetWavInfo()->GetStoreBitsPerSample();
  if (qwFrameBits == 0) return std::nullopt;
  const std::uint64_t qwFrames = std::uint64_t{wavData.GetBufferLength()} * 8 / qwFrameBits;
  if (!vcm::CheckedBytes(qwFrames, kSampleBytes)) return std::nullopt;
  return static_cast<unsigned int>(qwFrames);
}

// The whole mix of signed 16-bit samples, all of which the PCM holds.
std::vector<short> MixStraight(I_WavData& wavData, std::int32_t nChannels, unsigned int dwFrames) {
  vcm::C_ByteReader reader({wavData.GetBuffer(), wavData.GetBufferLength()});
  std::vector<short> mix(dwFrames);
  for (short& nMixed : mix) {
    std::int32_t nSum = 0;
    for (std::int32_t i = 0; i < nChannels; ++i) nSum += reader.I16();
    nMixed = static_cast<short>(nSum / nChannels);
  }
  return mix;
}

// Adds the samples of one channel, from frame dwStart on, to the sums. There is one sum per frame.
bool AddChannel(I_WavData& wavData, unsigned short wChannel, unsigned int dwStart,
                std::span<std::int32_t> sums) {
  const auto dwFrames = static_cast<unsigned int>(sums.size());
  const C_WavDataPtr channel(wavData.CreateChannelData(wChannel, dwStart, dwFrames));
  if (!channel) return false;
  const C_WavDataPtr samples(channel->CreateBitsConvertedData(16, 16, true, true));
  if (!samples) return false;
  vcm::C_ByteReader reader({samples->GetBuffer(), samples->GetBufferLength()});
  for (std::int32_t& nSum : sums) nSum += reader.I16();
  return reader.Ok();
}

// Appends the mix of dwFrames frames from dwStart on.
bool MixBlock(I_WavData& wavData, std::int32_t nChannels, unsigned int dwStart,
              unsigned int dwFrames, std::vector<short>& mix) {
  // The sum of 65,535 channels of 16 bits fits in 32 bits.
  std::vector<std::int32_t> sums(dwFrames);
  for (std::int32_t i = 0; i < nChannels; ++i) {
    if (!AddChannel(wavData, static_cast<unsigned short>(i), dwStart, sums)) return false;
  }
  for (const std::int32_t nSum : sums) mix.push_back(static_cast<short>(nSum / nChannels));
  return true;
}

}  // namespace

std::optional<std::vector<short>> SamplesOf(I_WavData& wavData) {
  const std::int32_t nChannels = wavData.GetWavInfo()->GetChannels();
  if (wavData.GetBuffer() == nullptr || nChannels == 0) return std::nullopt;
  const auto dwFrames = CountFrames(wavData, nChannels);
  if (!dwFrames) return std::nullopt;
  if (vcm::Holds16Bits(wavData)) return MixStraight(wavData, nChannels, *dwFrames);
  // Grows with the samples that are mixed, because the format may claim more than the sound holds.
  std::vector<short> mix;
  if (vcm::HoldsItsBytes(wavData)) mix.reserve(*dwFrames);
  for (unsigned int dwDone = 0; dwDone < *dwFrames;) {
    const unsigned int dwBlock = std::min(kBlockFrames, *dwFrames - dwDone);
    if (!MixBlock(wavData, nChannels, dwDone, dwBlock, mix)) return std::nullopt;
    dwDone += dwBlock;
  }
  return mix;
}

std::optional<C_Samples> C_Samples::Of(I_WavData& wavData) {
  C_Samples samples;
  const unsigned char* const pbyPcm = wavData.GetBuffer();
  const bool bAligned = reinterpret_cast<std::uintptr_t>(pbyPcm) % alignof(short) == 0;
  if (pbyPcm != nullptr && bAligned && std::endian::native == std::endian::little &&
      wavData.GetWavInfo()->GetChannels() == 1 && vcm::Holds16Bits(wavData)) {
    samples.m_kept = AsOurOwn(wavData)->KeepBuffer();
    samples.m_view = {static_cast<const short*>(static_cast<const void*>(pbyPcm)),
                      wavData.GetBufferLength() / kSampleBytes};
    return samples;
  }
  auto mix = SamplesOf(wavData);
  if (!mix) return std::nullopt;
  // Moving a vector does not move what it holds.
  samples.m_mix = std::move(*mix);
  samples.m_view = samples.m_mix;
  return samples;
}

}  // namespace monomix
