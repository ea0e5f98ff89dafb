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

// What a code of four bits says.
struct S_Code {
  std::int16_t nFactor = 0;  // the code as a signed number
  std::int16_t nAdaptation = 0;
};
constexpr S_Code CodeOf(unsigned int dwCode) {
  const auto nCode = static_cast<int>(dwCode);
  return {static_cast<std::int16_t>(nCode < 8 ? nCode : nCode - 16),
          static_cast<std::int16_t>(kMSAdpcmAdaptation[dwCode])};
}

// The two codes of each byte.
struct S_Codes {
  S_Code high;
  S_Code low;
};
constexpr auto kCodes = [] {
  std::array<S_Codes, 256> codes{};
  for (unsigned int i = 0; i < codes.size(); ++i) codes[i] = {CodeOf(i >> 4U), CodeOf(i & 15U)};
  return codes;
}();

// Everything is 64 bits wide: no product of what a file may hold leaves these.
struct S_Channel {
  std::int64_t nFirst = 0;  // the coefficients
  std::int64_t nSecond = 0;
  std::int64_t nDelta = 0;
  std::int64_t nSample1 = 0;  // the last sample
  std::int64_t nSample2 = 0;  // the sample before that

  // Puts the next sample. Clamping is rare, so the sample is stored before it is checked.
  void Next(std::int64_t nFactor, std::int64_t nAdaptation, std::int16_t* pSample) {
    const std::int64_t nSample = ((nSample1 * nFirst + nSample2 * nSecond) >> 8) + nDelta * nFactor;
    nSample2 = nSample1;
    nSample1 = static_cast<std::int16_t>(nSample);
    *pSample = samplebytes::LittleEndian(static_cast<std::int16_t>(nSample));
    if (nSample1 != nSample) [[unlikely]] {
      nSample1 = nSample < 0 ? -32768 : 32767;
      *pSample = samplebytes::LittleEndian(static_cast<std::int16_t>(nSample1));
    }
    nDelta = nDelta * nAdaptation >> 8;
    if (static_cast<std::uint64_t>(nDelta - kMinDelta) > kMaxDelta - kMinDelta) [[unlikely]] {
      nDelta = nDelta < kMinDelta ? kMinDelta : kMaxDelta;
    }
  }
};

// Decodes bytes of which each holds two codes of the only channel, or one code of each of two.
// Works on copies of the channels, which stay in registers.
[[gnu::noinline]] void DecodeBytes(std::span<S_Channel> channels,
                                   std::span<const unsigned char> bytes, short* pSamples) {
  S_Channel left = channels.front();
  if (channels.size() == 1) {
    for (const unsigned char byCodes : bytes) {
      left.Next(kCodes[byCodes].high.nFactor, kCodes[byCodes].high.nAdaptation, pSamples);
      left.Next(kCodes[byCodes].low.nFactor, kCodes[byCodes].low.nAdaptation, pSamples + 1);
      pSamples += 2;
    }
  } else {
    S_Channel right = channels.back();
    for (const unsigned char byCodes : bytes) {
      left.Next(kCodes[byCodes].high.nFactor, kCodes[byCodes].high.nAdaptation, pSamples);
      right.Next(kCodes[byCodes].low.nFactor, kCodes[byCodes].low.nAdaptation, pSamples + 1);
      pSamples += 2;
    }
    channels.back() = right;
  }
  channels.front() = left;
}

std::vector<S_Channel> ReadHeader(C_Buffer& block, const C_WavFileCodecInfo& codecInfo,
                                  unsigned int dwChannels) {
  std::vector<S_Channel> channels(dwChannels);
  for (S_Channel& channel : channels) {
    const auto coefficients = codecInfo.GetMSADPCMCoefficients(block.GetByte());
    channel.nFirst = coefficients.nFirst;
    channel.nSecond = coefficients.nSecond;
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
  for (const S_Channel& channel : channels) output.SetShort(static_cast<short>(channel.nSample2));
  for (const S_Channel& channel : channels) output.SetShort(static_cast<short>(channel.nSample1));
  if (dwChannels <= 2 && pSamples != nullptr) {
    const std::size_t cbDone = block.GetPos();
    const std::size_t cbBytes = std::min<std::size_t>(
        dwBlockBytes - cbDone, (dwCapacity - output.GetPos()) / (2 * sizeof(short)));
    DecodeBytes(channels, {pbyBlock + cbDone, cbBytes}, pSamples + output.GetPos() / sizeof(short));
    block.Skip(cbBytes);
    output.Skip(cbBytes * 2 * sizeof(short));
  }
  for (std::size_t i = 0; !block.EOB() && !output.EOB(); i = (i + 1) % dwChannels) {
    const S_Code code = CodeOf(block.GetNibbleHighFirst());
    std::int16_t nSample = 0;
    channels[i].Next(code.nFactor, code.nAdaptation, &nSample);
    output.SetShort(samplebytes::LittleEndian(nSample));
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
