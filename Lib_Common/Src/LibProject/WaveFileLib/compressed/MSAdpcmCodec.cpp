// SPDX-License-Identifier: Apache-2.0
#include "compressed/MSAdpcmCodec.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "CheckedSize.h"
#include "compressed/CodecBuffer.h"
#include "compressed/SampleBytes.h"
#include "compressed/TablesAdpcm.h"
#include "compressed/WavFileCodecInfo.h"

namespace {

constexpr unsigned int kHeaderBytes = 7;  // per channel
// What GetDecodedSize subtracts from a remainder instead of kHeaderBytes: the two samples in a
// header count as the one byte that their codes would take.
constexpr std::int64_t kCountedHeader = 6;
constexpr std::int64_t kMinDelta = 16;
constexpr std::int64_t kMaxDelta = std::numeric_limits<int>::max();

struct S_Channel {
  S_MSAdpcmInfo::S_Coefficients coefficients;
  int nDelta = 0;
  short nSample1 = 0;  // the last sample
  short nSample2 = 0;  // the sample before that
};

short NextSample(S_Channel& channel, unsigned int dwCode) {
  const std::int64_t nCode = dwCode < 8 ? dwCode : std::int64_t{dwCode} - 16;
  const std::int64_t nPrediction =
      (std::int64_t{channel.nSample1} * channel.coefficients.nFirst +
       std::int64_t{channel.nSample2} * channel.coefficients.nSecond) >>
      8;
  const std::int64_t nSample = nPrediction + channel.nDelta * nCode;
  const std::int64_t nDelta = std::int64_t{channel.nDelta} * kMSAdpcmAdaptation[dwCode] >> 8;
  channel.nDelta = static_cast<int>(std::clamp(nDelta, kMinDelta, kMaxDelta));
  channel.nSample2 = channel.nSample1;
  channel.nSample1 = static_cast<short>(std::clamp<std::int64_t>(nSample, -32768, 32767));
  return channel.nSample1;
}

// The two codes of a byte, as NextSample uses them.
struct S_Codes {
  struct S_Code {
    std::int16_t nCode = 0;
    std::int16_t nAdaptation = 0;
  };
  S_Code high;
  S_Code low;
};
constexpr auto kCodes = [] {
  std::array<S_Codes, 256> codes{};
  const auto half = [](std::size_t nHalf) {
    const auto nCode = static_cast<int>(nHalf < 8 ? nHalf : nHalf - 16);
    return S_Codes::S_Code{static_cast<std::int16_t>(nCode),
                           static_cast<std::int16_t>(kMSAdpcmAdaptation[nHalf])};
  };
  for (std::size_t i = 0; i < codes.size(); ++i) codes[i] = {half(i >> 4U), half(i & 15U)};
  return codes;
}();

// A channel whose values stay in registers.
struct S_FastChannel {
  explicit S_FastChannel(const S_Channel& channel)
      : nFirst(channel.coefficients.nFirst),
        nSecond(channel.coefficients.nSecond),
        nDelta(channel.nDelta),
        nSample1(channel.nSample1),
        nSample2(channel.nSample2) {}

  // Does what NextSample does. Clamping is rare.
  std::int16_t Next(std::int64_t nCode, std::int64_t nAdaptation) {
    std::int64_t nSample = ((nSample1 * nFirst + nSample2 * nSecond) >> 8) + nDelta * nCode;
    if (nSample != static_cast<std::int16_t>(nSample)) [[unlikely]] {
      nSample = nSample < 0 ? -32768 : 32767;
    }
    nDelta = nDelta * nAdaptation >> 8;
    if (static_cast<std::uint64_t>(nDelta - kMinDelta) > kMaxDelta - kMinDelta) [[unlikely]] {
      nDelta = nDelta < kMinDelta ? kMinDelta : kMaxDelta;
    }
    nSample2 = nSample1;
    nSample1 = nSample;
    return samplebytes::LittleEndian(static_cast<std::int16_t>(nSample));
  }
  void Put(S_Channel& channel) const {
    channel.nDelta = static_cast<int>(nDelta);
    channel.nSample1 = static_cast<short>(nSample1);
    channel.nSample2 = static_cast<short>(nSample2);
  }

  std::int64_t nFirst;
  std::int64_t nSecond;
  std::int64_t nDelta;
  std::int64_t nSample1;
  std::int64_t nSample2;
};

// Decodes bytes of which each holds a code of every channel, or two codes of the only one.
[[gnu::noinline]] void DecodeBytes(std::span<S_Channel> channels,
                                   std::span<const unsigned char> bytes, short* pSamples) {
  S_FastChannel left(channels.front());
  if (channels.size() == 1) {
    for (const unsigned char byCodes : bytes) {
      pSamples[0] = left.Next(kCodes[byCodes].high.nCode, kCodes[byCodes].high.nAdaptation);
      pSamples[1] = left.Next(kCodes[byCodes].low.nCode, kCodes[byCodes].low.nAdaptation);
      pSamples += 2;
    }
  } else {
    S_FastChannel right(channels.back());
    for (const unsigned char byCodes : bytes) {
      pSamples[0] = left.Next(kCodes[byCodes].high.nCode, kCodes[byCodes].high.nAdaptation);
      pSamples[1] = right.Next(kCodes[byCodes].low.nCode, kCodes[byCodes].low.nAdaptation);
      pSamples += 2;
    }
    right.Put(channels.back());
  }
  left.Put(channels.front());
}

std::vector<S_Channel> ReadHeader(C_Buffer& block, const C_WavFileCodecInfo& codecInfo,
                                  unsigned int dwChannels) {
  std::vector<S_Channel> channels(dwChannels);
  for (S_Channel& channel : channels) {
    channel.coefficients = codecInfo.GetMSADPCMCoefficients(block.GetByte());
  }
  for (S_Channel& channel : channels) channel.nDelta = block.GetShort();
  for (S_Channel& channel : channels) channel.nSample1 = block.GetShort();
  for (S_Channel& channel : channels) channel.nSample2 = block.GetShort();
  return channels;
}

}  // namespace

std::optional<unsigned int> C_MSAdpcmCodec::GetDecodedSize(const C_WavFileCodecInfo& codecInfo,
                                                           unsigned int dwEncodedBytes) {
  return GetAdpcmSize(codecInfo, dwEncodedBytes, 2, 1);
}

// Kept: what is left after the whole blocks counts as one more block, however short it is, even a
// single byte. A sound that ends within a block plays up to its end. Pinned by
// OneByteAfterWholeBlocks_IsABlockOfItsOwn.
bool C_MSAdpcmCodec::Decode(const C_WavFileCodecInfo& codecInfo, const unsigned char* pbyEncoded,
                            unsigned int dwEncodedBytes, short* pSamples, unsigned int dwCapacity) {
  const S_PcmFormatRecord pcm = codecInfo.GetPCMWAVEFORMAT();
  if (pcm.wBlockAlign == 0 || pcm.wChannels == 0) return true;
  const std::uint64_t qwBlockOutput =
      std::uint64_t{2} * codecInfo.GetSamplesPerBlock() * pcm.wChannels;
  for (; dwEncodedBytes >= pcm.wBlockAlign; dwEncodedBytes -= pcm.wBlockAlign) {
    const auto dwOutput =
        static_cast<unsigned int>(std::min<std::uint64_t>(qwBlockOutput, dwCapacity));
    DecodeBlock(codecInfo, pbyEncoded, pSamples, pcm.wBlockAlign, dwOutput);
    pbyEncoded += pcm.wBlockAlign;
    pSamples += dwOutput / sizeof(short);
    dwCapacity -= dwOutput;
  }
  if (dwEncodedBytes > 0) DecodeBlock(codecInfo, pbyEncoded, pSamples, dwEncodedBytes, dwCapacity);
  return true;
}

bool C_MSAdpcmCodec::DecodeBlock(const C_WavFileCodecInfo& codecInfo, const unsigned char* pbyBlock,
                                 short* pSamples, unsigned int dwBlockBytes,
                                 unsigned int dwCapacity) {
  const unsigned int dwChannels = codecInfo.GetPCMWAVEFORMAT().wChannels;
  if (dwChannels == 0 || dwBlockBytes < kHeaderBytes * dwChannels) return true;
  C_Buffer block(pbyBlock, dwBlockBytes);
  C_Buffer output(reinterpret_cast<unsigned char*>(pSamples), dwCapacity);
  std::vector<S_Channel> channels = ReadHeader(block, codecInfo, dwChannels);
  for (const S_Channel& channel : channels) output.SetShort(channel.nSample2);
  for (const S_Channel& channel : channels) output.SetShort(channel.nSample1);
  if (dwChannels <= 2 && pSamples != nullptr) {
    const std::size_t cbDone = block.GetPos();
    const std::size_t cbBytes = std::min<std::size_t>(
        dwBlockBytes - cbDone, (dwCapacity - output.GetPos()) / (2 * sizeof(short)));
    DecodeBytes(channels, {pbyBlock + cbDone, cbBytes}, pSamples + output.GetPos() / sizeof(short));
    block.Skip(cbBytes);
    output.Skip(cbBytes * 2 * sizeof(short));
  }
  for (std::size_t i = 0; !block.EOB() && !output.EOB(); i = (i + 1) % dwChannels) {
    output.SetShort(NextSample(channels[i], block.GetNibbleHighFirst()));
  }
  return true;
}

std::optional<unsigned int> C_MSAdpcmCodec::GetAdpcmSize(const C_WavFileCodecInfo& codecInfo,
                                                         unsigned int dwEncodedBytes, int nSamples,
                                                         int nBytes) {
  const S_PcmFormatRecord pcm = codecInfo.GetPCMWAVEFORMAT();
  if (pcm.wBlockAlign == 0 || pcm.wChannels == 0) return 0;
  // The product fits in 64 bits even when all factors are at their largest. A product above this
  // limit gives a size that does not fit in 32 bits in any case.
  constexpr std::uint64_t kPlenty = std::uint64_t{1} << 40;
  const std::uint64_t qwBlocks = dwEncodedBytes / pcm.wBlockAlign;
  const std::uint64_t qwWhole = qwBlocks * codecInfo.GetSamplesPerBlock() * pcm.wChannels;
  auto nTotal = static_cast<std::int64_t>(std::min(qwWhole, kPlenty));
  const std::int64_t nRest = dwEncodedBytes % pcm.wBlockAlign;
  if (nRest != 0) nTotal += (nRest - kCountedHeader * pcm.wChannels) * nSamples / nBytes;
  return vcm::CheckedBytes(static_cast<std::uint64_t>(std::max<std::int64_t>(nTotal, 0)),
                           sizeof(short));
}
