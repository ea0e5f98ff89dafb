// SPDX-License-Identifier: Apache-2.0
#include "compressed/MSAdpcmCodec.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <typeinfo>
#include <vector>

#include "CheckedSize.h"
#include "Processor.h"
#include "compressed/CodecBuffer.h"
#include "compressed/MSAdpcmAvx2.h"
#include "compressed/SampleBytes.h"
#include "compressed/TablesAdpcm.h"
#include "compressed/WavFileCodecInfo.h"

namespace {

using msadpcm::S_Channel;

constexpr unsigned int kHeaderBytes = 7;   // per channel
constexpr unsigned int kHeaderFrames = 2;  // that it holds
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

// Puts the next sample of a channel. Clamping is rare, so the sample is stored before it is
// checked.
inline void PutNext(S_Channel& channel, std::int64_t nFactor, std::int64_t nAdaptation,
                    std::int16_t* pSample) {
  const std::int64_t nSample =
      ((channel.nSample1 * channel.nFirst + channel.nSample2 * channel.nSecond) >> 8) +
      channel.nDelta * nFactor;
  channel.nSample2 = channel.nSample1;
  channel.nSample1 = static_cast<std::int16_t>(nSample);
  *pSample = samplebytes::LittleEndian(static_cast<std::int16_t>(nSample));
  if (channel.nSample1 != nSample) [[unlikely]] {
    channel.nSample1 = nSample < 0 ? -32768 : 32767;
    *pSample = samplebytes::LittleEndian(static_cast<std::int16_t>(channel.nSample1));
  }
  channel.nDelta = channel.nDelta * nAdaptation >> 8;
  if (static_cast<std::uint64_t>(channel.nDelta - kMinDelta) > kMaxDelta - kMinDelta) [[unlikely]] {
    channel.nDelta = channel.nDelta < kMinDelta ? kMinDelta : kMaxDelta;
  }
}

// Decodes bytes of which each holds two codes of the only channel, or one code of each of two.
// Works on copies of the channels, which stay in registers.
[[gnu::noinline]] void DecodeBytes(std::span<S_Channel> channels,
                                   std::span<const unsigned char> bytes, short* pSamples) {
  S_Channel left = channels.front();
  if (channels.size() == 1) {
    for (const unsigned char byCodes : bytes) {
      PutNext(left, kCodes[byCodes].high.nFactor, kCodes[byCodes].high.nAdaptation, pSamples);
      PutNext(left, kCodes[byCodes].low.nFactor, kCodes[byCodes].low.nAdaptation, pSamples + 1);
      pSamples += 2;
    }
  } else {
    S_Channel right = channels.back();
    for (const unsigned char byCodes : bytes) {
      PutNext(left, kCodes[byCodes].high.nFactor, kCodes[byCodes].high.nAdaptation, pSamples);
      PutNext(right, kCodes[byCodes].low.nFactor, kCodes[byCodes].low.nAdaptation, pSamples + 1);
      pSamples += 2;
    }
    channels.back() = right;
  }
  channels.front() = left;
}

void ReadHeader(std::span<S_Channel> channels, C_Buffer& block,
                const C_WavFileCodecInfo& codecInfo) {
  for (S_Channel& channel : channels) {
    const auto coefficients = codecInfo.GetMSADPCMCoefficients(block.GetByte());
    channel.nFirst = coefficients.nFirst;
    channel.nSecond = coefficients.nSecond;
  }
  for (S_Channel& channel : channels) channel.nDelta = block.GetShort();
  for (S_Channel& channel : channels) channel.nSample1 = block.GetShort();
  for (S_Channel& channel : channels) channel.nSample2 = block.GetShort();
}

void PutHeaderSamples(std::span<const S_Channel> channels, C_Buffer& output) {
  for (const S_Channel& channel : channels) output.SetShort(static_cast<short>(channel.nSample2));
  for (const S_Channel& channel : channels) output.SetShort(static_cast<short>(channel.nSample1));
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
  while (dwEncodedBytes >= pcm.wBlockAlign) {
    const std::uint64_t qwRoom = qwBlockOutput == 0 ? 0 : dwCapacity / qwBlockOutput;
    const auto dwWithRoom = static_cast<unsigned int>(
        std::min<std::uint64_t>(qwRoom, dwEncodedBytes / pcm.wBlockAlign));
    const unsigned int dwAtOnce = DecodeBlocks(codecInfo, pbyEncoded, pSamples, dwWithRoom);
    const unsigned int dwBlocks = std::max(dwAtOnce, 1U);
    const auto dwOutput =
        static_cast<unsigned int>(std::min<std::uint64_t>(qwBlockOutput * dwBlocks, dwCapacity));
    if (dwAtOnce == 0) DecodeBlock(codecInfo, pbyEncoded, pSamples, pcm.wBlockAlign, dwOutput);
    pbyEncoded += std::size_t{pcm.wBlockAlign} * dwBlocks;
    dwEncodedBytes -= pcm.wBlockAlign * dwBlocks;
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
  std::vector<S_Channel> channels(dwChannels);
  ReadHeader(channels, block, codecInfo);
  PutHeaderSamples(channels, output);
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
    PutNext(channels[i], code.nFactor, code.nAdaptation, &nSample);
    output.SetShort(samplebytes::LittleEndian(nSample));
  }
  return true;
}

unsigned int C_MSAdpcmCodec::DecodeBlocks(const C_WavFileCodecInfo& codecInfo,
                                          const unsigned char* pbyBlocks, short* pSamples,
                                          unsigned int dwBlocks) {
  const S_PcmFormatRecord pcm = codecInfo.GetPCMWAVEFORMAT();
  const std::size_t nChannels = pcm.wChannels;
  const std::size_t cbHeader = kHeaderBytes * nChannels;
  // A class derived from this one decodes other blocks.
  if (typeid(*this) != typeid(C_MSAdpcmCodec)) return 0;
  if (vcm::UsableInstructions() < vcm::tagInstructions::kAvx2 || nChannels > 2 ||
      pcm.wBlockAlign < cbHeader || pbyBlocks == nullptr || pSamples == nullptr) {
    return 0;
  }
  const std::size_t nBlocks = std::min<std::size_t>(dwBlocks, msadpcm::kLanes / nChannels);
  const std::size_t nRoom = std::size_t{codecInfo.GetSamplesPerBlock()};  // frames
  const std::size_t nHeld = kHeaderFrames + 2 * (pcm.wBlockAlign - cbHeader) / nChannels;
  const std::size_t nFrames = std::min(nRoom, nHeld);
  // A few channels, and short blocks, take less time one by one.
  if (nBlocks * nChannels < msadpcm::kLanes / 2 || nFrames < 2 * msadpcm::kLanes) return 0;
  std::array<msadpcm::S_Block, msadpcm::kLanes> blocks;
  for (std::size_t i = 0; i < nBlocks; ++i) {
    const unsigned char* const pbyBlock = pbyBlocks + i * pcm.wBlockAlign;
    short* const pBlockSamples = pSamples + i * nRoom * nChannels;
    const auto channels = std::span(blocks[i].channels).first(nChannels);
    C_Buffer block(pbyBlock, cbHeader);
    C_Buffer output(reinterpret_cast<unsigned char*>(pBlockSamples),
                    kHeaderFrames * nChannels * sizeof(short));
    ReadHeader(channels, block, codecInfo);
    if (!std::ranges::all_of(channels, &msadpcm::FitsLane)) return 0;
    PutHeaderSamples(channels, output);
    blocks[i].pbyCodes = pbyBlock + cbHeader;
    blocks[i].pSamples = pBlockSamples + kHeaderFrames * nChannels;
  }
  msadpcm::DecodeAvx2(std::span(blocks).first(nBlocks), nChannels, nFrames - kHeaderFrames);
  return static_cast<unsigned int>(nBlocks);
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
