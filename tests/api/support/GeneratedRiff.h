// SPDX-License-Identifier: Apache-2.0
//
// RIFF files of all kinds by chance, but the same ones each time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>

#include "CompressedBytes.h"
#include "VefBytes.h"
#include "WavBytes.h"

namespace api::test {

class C_Random {
 public:
  explicit C_Random(std::uint32_t dwSeed) : m_engine(dwSeed) {}

  // 0 to nEnd - 1. (The distributions of the standard library differ between machines.)
  std::uint32_t Below(std::uint32_t nEnd) { return static_cast<std::uint32_t>(m_engine() % nEnd); }
  bool OneIn(std::uint32_t nTimes) { return Below(nTimes) == 0; }
  template <typename T, std::size_t nSize>
  T Of(const std::array<T, nSize>& choices) {
    return choices[Below(nSize)];
  }
  C_Bytes Bytes(std::size_t cbCount) {
    C_Bytes bytes(cbCount);
    for (std::uint8_t& byByte : bytes) byByte = static_cast<std::uint8_t>(m_engine());
    return bytes;
  }

 private:
  std::mt19937 m_engine;
};

// The format of a sound; mostly one that is read.
inline C_Bytes RandomFmt(C_Random& random) {
  const auto wChannels =
      static_cast<std::uint16_t>(random.OneIn(20) ? random.Below(70) : 1 + random.Below(3));
  constexpr std::array<std::uint16_t, 10> kBits = {8, 8, 16, 16, 16, 24, 32, 12, 20, 40};
  constexpr std::array<std::uint32_t, 4> kRates = {8000, 16000, 44100, 0};
  if (random.OneIn(3)) {
    S_Blocks blocks = OneOfEachKind()[random.Below(5)];
    if (random.OneIn(4)) blocks.wChannels = wChannels;
    if (random.OneIn(6)) blocks.wBits = static_cast<std::uint16_t>(random.Below(9));
    if (random.OneIn(6)) blocks.wBlockAlign = static_cast<std::uint16_t>(random.Below(40));
    if (random.OneIn(6)) blocks.wSamplesPerBlock = static_cast<std::uint16_t>(random.Below(70));
    return BlockFmt(blocks);
  }
  C_Bytes fmt = FmtBytes(1, wChannels, random.Of(kRates), random.Of(kBits));
  if (random.OneIn(15)) fmt[0] = static_cast<std::uint8_t>(random.Below(20));
  if (random.OneIn(8)) fmt = Join({fmt, U16(0)});
  if (random.OneIn(30)) fmt.resize(random.Below(16));
  return fmt;
}

inline C_Bytes RandomMarks(C_Random& random, C_RiffBytes& riff) {
  constexpr std::array<std::string_view, 5> kLabels = {"u_3_7", "VX_Silence", "VX_PCM", "here",
                                                       "(65538,7)"};
  std::vector<S_CueBytes> cues;
  C_Bytes list = Ascii("adtl");
  const std::uint32_t nCues = 1 + random.Below(4);
  for (std::uint32_t i = 1; i <= nCues; ++i) {
    cues.push_back({i, i * 10, i * 10});
    list = Join({list, LablBytes(i, random.Of(kLabels))});
    if (random.OneIn(2)) list = Join({list, LtxtBytes(i, random.Below(30))});
  }
  riff.Chunk("cue ", CueBytes(cues));
  return list;
}

// A file of one of our forms, with zeros, doubled and unknown chunks here and there.
inline C_Bytes RandomRiff(C_Random& random) {
  constexpr std::array<std::string_view, 4> kForms = {"WAVE", "WAVE", "VEMD", "VEFF"};
  C_RiffBytes riff(random.Of(kForms));
  if (random.OneIn(6)) riff.Chunk("JUNK", C_Bytes(random.Below(40)));
  if (!random.OneIn(30)) riff.Chunk("fmt ", RandomFmt(random));
  if (random.OneIn(40)) riff.Chunk("fmt ", RandomFmt(random));
  if (random.OneIn(8)) riff.Zeros(random.Below(30));
  if (!random.OneIn(20)) riff.Chunk("data", random.Bytes(random.Below(200)));
  if (random.OneIn(4)) riff.Zeros(random.Below(3));
  if (random.OneIn(3)) riff.Chunk("LIST", RandomMarks(random, riff));
  if (random.OneIn(6)) riff.Chunk("smpl", SmplBytes(random.Below(9), 20));
  if (random.OneIn(5)) {
    riff.Chunk("vafm", VafmBytes(static_cast<std::uint16_t>(10 + random.Below(30))));
  }
  if (random.OneIn(5)) riff.Chunk("bext", random.Bytes(random.Below(30)));
  if (random.OneIn(20)) riff.Chunk("data", random.Bytes(random.Below(50)));
  if (random.OneIn(10)) riff.Raw(random.Bytes(random.Below(20)));
  if (random.OneIn(8)) riff.RiffSize(random.Below(400));
  if (random.OneIn(40)) riff.RiffSize(0xFFFFFFFF);
  return riff.Take();
}

// The file cut, or with some bytes changed, or both.
inline C_Bytes Damaged(C_Bytes file, C_Random& random) {
  if (random.OneIn(2)) file.resize(random.Below(static_cast<std::uint32_t>(file.size()) + 1));
  const std::uint32_t nChanges = random.Below(4);
  for (std::uint32_t i = 0; i < nChanges && !file.empty(); ++i) {
    // Most of what matters is near the beginning.
    const auto nEnd = static_cast<std::uint32_t>(
        random.OneIn(2) ? file.size() : std::min<std::size_t>(file.size(), 60));
    constexpr std::array<std::uint8_t, 6> kValues = {0, 1, 0x7F, 0x80, 0xFF, 14};
    file[random.Below(nEnd)] =
        random.OneIn(2) ? random.Of(kValues) : static_cast<std::uint8_t>(random.Below(256));
  }
  return file;
}

}  // namespace api::test
