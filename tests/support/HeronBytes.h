// SPDX-License-Identifier: Apache-2.0
//
// Builds Heron streams with whatever false claim a test needs, also from the blocks of a sound.
// Also encodes and decodes with the codec, and with the bare frame coder as the reference for the
// codec.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "ByteReader.h"
#include "TestSound.h"
#include "TestVoice.h"
#include "codec/HeronCodec.h"
#include "heron/Block.h"
#include "heron/Decoder.h"
#include "heron/SampleCount.h"
#include "heron/SoundCoder.h"

namespace heron::test {

using Bytes = std::vector<std::uint8_t>;

struct S_Kind {
  tagAudioFileType eType;
  int nBitDepth;
  std::uint8_t byMode;
};
constexpr std::array<S_Kind, 5> kKinds = {{{AUDIO_FILE_HERON_4BIT, 4, 1},
                                           {AUDIO_FILE_HERON_5BIT, 5, 2},
                                           {AUDIO_FILE_HERON_6BIT, 6, 3},
                                           {AUDIO_FILE_HERON_2BIT, 2, 4},
                                           {AUDIO_FILE_HERON_3BIT, 3, 5}}};
inline std::string NameOf(const testing::TestParamInfo<S_Kind>& info) {
  return "Heron" + std::to_string(info.param.nBitDepth) + "Bit";
}

// The samples as the frame coder encodes them, without the head.
inline Bytes Coded(const std::vector<short>& samples, int nSampleRate, int nBitDepth) {
  Bytes coded;
  EXPECT_TRUE(heron::EncodeSamples(samples, nSampleRate, nBitDepth, &coded, {}));
  return coded;
}

// The stream that the codec encodes a sound to; empty when it refuses.
inline std::optional<Bytes> Encoded(I_WavData& sound, unsigned int dwTypeCode,
                                    PFN_CodecProgress pfnProgress = nullptr) {
  C_HeronCodec codec;
  unsigned char* pbyStream = nullptr;
  unsigned int dwLength = 0;
  if (!codec.Encode(&sound, dwTypeCode, sound.GetAudioCodecParam(), pfnProgress, &pbyStream,
                    &dwLength)) {
    EXPECT_EQ(pbyStream, nullptr);
    EXPECT_EQ(dwLength, 0u);
    return std::nullopt;
  }
  const std::unique_ptr<unsigned char[]> owner(pbyStream);
  return Bytes(pbyStream, pbyStream + dwLength);
}

// The most bytes that the stream of so many samples may take without its events. Below 128 bytes,
// 16 bytes and 2 bits per sample are always allowed.
inline std::size_t MostBytes(std::size_t nSamples, int nBitDepth) {
  const std::size_t cbShort = std::min<std::size_t>(16 + nSamples * 2 / 8, 128);
  return std::max(nSamples * static_cast<std::size_t>(nBitDepth) / 8, cbShort);
}

// The coded audio of a sound of several blocks, taken apart.
struct S_Pieces {
  std::uint64_t qwCount = 0;   // of samples
  std::vector<Bytes> between;  // whole blocks, or whatever a test puts in their places

  // Appends a block that holds this run.
  void Add(std::size_t nNumber, std::span<const std::uint8_t> run) {
    heron::AppendBlock(between.emplace_back(), nNumber, run);
  }
  [[nodiscard]] Bytes Joined() const {
    Bytes coded;
    heron::AppendCount(coded, static_cast<std::size_t>(qwCount));
    for (const Bytes& piece : between) coded.insert(coded.end(), piece.begin(), piece.end());
    return coded;
  }
};

inline S_Pieces PiecesOf(const Bytes& coded, int nSampleRate) {
  S_Pieces pieces;
  const auto decoder = heron::C_Decoder::Open(coded, nSampleRate);
  if (!decoder) return pieces;
  pieces.qwCount = decoder->SampleCount();
  for (std::size_t n = 0; n < decoder->BlockCount(); ++n) pieces.Add(n, *decoder->Run(n));
  return pieces;
}

// The samples of a stream; empty when the codec refuses it.
inline std::optional<std::vector<short>> Decoded(const Bytes& stream, unsigned int dwSampleRate) {
  const C_SoundPtr sound(new C_WavData);
  sound->SetWavInfoData(dwSampleRate, 0, 1, 16, 16, true);
  C_HeronCodec codec;
  if (!codec.Decode(stream.data(), static_cast<unsigned int>(stream.size()), sound.get())) {
    return std::nullopt;
  }
  return SamplesOf(sound.get());
}

}  // namespace heron::test

class C_HeronBytes {
 public:
  using Bytes = std::vector<std::uint8_t>;

  C_HeronBytes(const heron::test::S_Kind& kind, const std::vector<short>& samples, int nSampleRate)
      : m_byMode(kind.byMode), m_coded(heron::test::Coded(samples, nSampleRate, kind.nBitDepth)) {}

  C_HeronBytes& Mode(std::uint8_t byMode) { return m_byMode = byMode, *this; }
  C_HeronBytes& Coded(const Bytes& coded) { return m_coded = coded, *this; }
  // The events follow the audio. The head says where they begin, unless Offset is called
  // afterwards.
  C_HeronBytes& Events(const Bytes& events) {
    m_events = events;
    return Offset(static_cast<std::uint32_t>(4 + m_coded.size()));
  }
  // Makes the head claim this offset instead of the true one.
  C_HeronBytes& Offset(std::uint32_t dwOffset) { return m_dwOffset = dwOffset, *this; }

  [[nodiscard]] Bytes Take() const {
    vcm::C_ByteWriter writer;
    writer.U32(m_byMode | m_dwOffset << 8);
    writer.Bytes(m_coded);
    writer.Bytes(m_events);
    return writer.Take();
  }
  // The first cbSize bytes.
  [[nodiscard]] Bytes Take(std::size_t cbSize) const {
    Bytes bytes = Take();
    bytes.resize(cbSize);
    return bytes;
  }

 private:
  std::uint8_t m_byMode;
  std::uint32_t m_dwOffset = 0;
  Bytes m_coded;
  Bytes m_events;
};
