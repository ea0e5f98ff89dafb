// SPDX-License-Identifier: Apache-2.0
#include "sound/MonoSamples.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include "ByteReader.h"
#include "CheckedSize.h"
#include "sound/HeldBytes.h"
#include "sound/WavData.h"

namespace {

constexpr unsigned int kSampleBytes = 2;
constexpr unsigned short kStereo = 2;
constexpr unsigned int kPieceFrames = 4096;

// The frames that a format counts in so many bytes of 16-bit samples. The count wraps at half a
// gibibyte, and a sound that is converted as a whole is not counted otherwise.
unsigned int CountedFrames(unsigned int dwBytes, unsigned short wChannels) {
  C_WavInfo info;
  info.SetInfoData(0, dwBytes, wChannels, 16, 16, true);
  return info.GetSampleSize();
}

std::span<const std::uint8_t> PcmOf(I_WavData& mono) {
  const std::uint64_t qwBytes = std::uint64_t{kSampleBytes} * mono.GetWavInfo()->GetSampleSize();
  if (mono.GetBuffer() == nullptr || qwBytes > mono.GetBufferLength()) return {};
  return {mono.GetBuffer(), static_cast<std::size_t>(qwBytes)};
}

}  // namespace

C_MonoSamples::C_MonoSamples(std::span<const std::uint8_t> pcm)
    : m_dwCount(static_cast<unsigned int>(pcm.size() / kSampleBytes)), m_pcm(pcm) {}

std::optional<C_MonoSamples> C_MonoSamples::Of(I_WavData& wavData) {
  I_WavInfo& info = *wavData.GetWavInfo();
  const unsigned short wChannels = info.GetChannels();
  C_WavData* const pOwn = AsOurOwn(wavData);
  if (pOwn == nullptr || wChannels == 0 || wChannels > kStereo) return OfWhole(wavData);
  if (wChannels == 1 && vcm::Holds16Bits(wavData)) {
    C_MonoSamples samples(PcmOf(wavData));
    samples.m_kept = pOwn->KeepBuffer();
    return samples;
  }
  if (!IsSupportBitsPerSample(info.GetBitsPerSample(), info.GetStoreBitsPerSample())) {
    return std::nullopt;
  }
  auto& buffer = static_cast<C_WavDataBuffer&>(*pOwn->GetIWaveDataBuffer());
  const unsigned int dwHeld = buffer.GetHeldSampleSize();
  const auto dwConverted = vcm::CheckedBytes(std::uint64_t{dwHeld} * wChannels, kSampleBytes);
  if (!dwConverted) return std::nullopt;
  C_MonoSamples samples;
  samples.m_dwCount = CountedFrames(dwHeld * kSampleBytes, 1);
  if (dwHeld > 0) samples.m_source = {buffer.GetBuffer(), buffer.GetLength()};
  samples.m_sourceInfo.SetInfo(&info);
  samples.m_kept = pOwn->KeepBuffer();
  // Of a very long stereo sound, frames beyond those that are counted are not mixed.
  samples.m_dwEndFrame = std::min(samples.m_dwCount, CountedFrames(*dwConverted, wChannels));
  return samples;
}

std::optional<C_MonoSamples> C_MonoSamples::OfWhole(I_WavData& wavData) {
  C_WavDataPtr mono(wavData.CreateBitsConvertedData(16, 16, true, true));
  if (!mono) return std::nullopt;
  mono->ConvertToMono();
  C_MonoSamples samples(PcmOf(*mono));
  samples.m_converted = std::move(mono);
  return samples;
}

void C_MonoSamples::Read(std::span<short> samples) {
  while (!samples.empty()) {
    if (m_pcm.empty()) NextPiece();
    const std::size_t nTaken = std::min(samples.size(), m_pcm.size() / kSampleBytes);
    if (nTaken == 0) break;
    if constexpr (std::endian::native == std::endian::little) {
      std::memcpy(samples.data(), m_pcm.data(), nTaken * kSampleBytes);
    } else {
      vcm::C_ByteReader reader(m_pcm);
      for (short& nSample : samples.first(nTaken)) nSample = reader.I16();
    }
    m_pcm = m_pcm.subspan(nTaken * kSampleBytes);
    samples = samples.subspan(nTaken);
  }
  std::ranges::fill(samples, short{0});
}

void C_MonoSamples::NextPiece() {
  if (m_source.empty() || m_dwNextFrame == m_dwEndFrame) return;
  C_WavInfo& info = m_sourceInfo;
  const unsigned int cbFrame = info.GetChannels() * (info.GetStoreBitsPerSample() / 8U);
  const auto rest = m_source.subspan(std::size_t{m_dwNextFrame} * cbFrame);
  const unsigned int dwFrames = std::min(kPieceFrames, m_dwEndFrame - m_dwNextFrame);
  // One frame more, because the conversion of a stereo frame looks at the next one, too.
  const auto dwBytes =
      static_cast<unsigned int>(std::min(std::size_t{cbFrame} * (dwFrames + 1U), rest.size()));
  C_WavData piece;
  piece.AttachBuffer(rest.data(), dwBytes);
  piece.SetWavInfoData(info.GetSampleRate(), dwBytes, info.GetChannels(), info.GetBitsPerSample(),
                       info.GetStoreBitsPerSample(), info.IsValueSigned());
  m_converted.reset(piece.CreateBitsConvertedData(16, 16, true, true));
  m_converted->ConvertToMono();
  m_pcm = {m_converted->GetBuffer(), std::size_t{dwFrames} * kSampleBytes};
  m_dwNextFrame += dwFrames;
}
