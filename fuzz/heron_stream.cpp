// SPDX-License-Identifier: Apache-2.0
//
// Decodes any bytes as a Heron stream: through the codec, and after an SP header through the file
// class. The result must be what a slow search for blocks finds, each decoded by a decoder of its
// own with plain instructions. Most inputs would fail at the check of a block, so blocks with right
// checks are made of them, too.
//
//   scripts/fuzz.sh 60 heron_stream
//
// Input: what HeronStreams.h makes a stream of.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "ByteReader.h"
#include "FuzzFile.h"
#include "FuzzInput.h"
#include "HeronStreams.h"
#include "Processor.h"
#include "Require.h"
#include "codec/HeronCodec.h"
#include "codec/HeronStream.h"
#include "file/HeronFile.h"
#include "heron/Block.h"
#include "heron/BlockDecoder.h"
#include "heron/Configuration.h"
#include "heron/SampleCount.h"
#include "sound/WavData.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using Samples = std::vector<std::int16_t>;

// Some bytes may stand for a silence of seconds. Longer sounds take more time and show nothing new.
constexpr std::size_t kMostSamples = 6 * heron::BlockLength(4000);

// ---- the slow search

std::uint16_t SlowCrc(std::span<const std::uint8_t> bytes) {
  unsigned int nCrc = 0xFFFF;
  for (const std::uint8_t by : bytes) {
    nCrc ^= unsigned{by} << 8;
    for (int nBit = 0; nBit < 8; ++nBit) nCrc = nCrc << 1 ^ ((nCrc & 0x8000) != 0 ? 0x11021 : 0);
  }
  return static_cast<std::uint16_t>(nCrc);
}

struct S_Sound {
  std::size_t nSamples = 0;
  std::vector<std::optional<Bytes>> runs;  // of the blocks; empty where one is missing
};

std::size_t SlowSize(std::span<const std::uint8_t> block) {
  return block[2] + 256U * block[3] + 65536U * block[4];
}

// Whether the check of the block is right, which lies in the bytes as a whole.
bool IsRight(std::span<const std::uint8_t> block) {
  Bytes covered(block.begin() + 1, block.begin() + 5);
  covered.insert(covered.end(), block.begin() + 7,
                 block.begin() + static_cast<std::ptrdiff_t>(7 + SlowSize(block)));
  return SlowCrc(covered) == block[5] + 256U * block[6];
}

S_Sound FindSeveral(std::span<const std::uint8_t> bytes, std::size_t nCount, std::size_t nLength) {
  const std::size_t nBlocks = (nCount - 1) / nLength + 1;
  S_Sound sound;
  std::size_t nChecked = 0;
  for (std::size_t nAt = 0; nAt < bytes.size() && sound.runs.size() < nBlocks;) {
    const auto rest = bytes.subspan(nAt++);
    if (rest[0] != 0xB6 || rest.size() < 7 || SlowSize(rest) > rest.size() - 7) continue;
    if (!IsRight(rest)) {
      nChecked += 7 + SlowSize(rest);
      if (nChecked > 16 * bytes.size()) break;
      continue;
    }
    nAt += 6 + SlowSize(rest);
    const std::size_t nMissing = (rest[1] + 256 - sound.runs.size() % 256) % 256;
    if (nMissing > 127 || sound.runs.size() + nMissing >= nBlocks) continue;
    sound.runs.resize(sound.runs.size() + nMissing);
    const auto run = rest.subspan(7, SlowSize(rest));
    sound.runs.emplace_back(Bytes(run.begin(), run.end()));
  }
  sound.nSamples = std::min(nCount, sound.runs.size() * nLength);
  return sound;
}

S_Sound FindOne(std::span<const std::uint8_t> bytes, std::size_t nCount) {
  if (bytes.size() < 2 || SlowCrc(bytes.subspan(2)) != bytes[0] + 256U * bytes[1]) return {};
  return {nCount, {Bytes(bytes.begin() + 2, bytes.end())}};
}

S_Sound Find(std::span<const std::uint8_t> coded, int nRate) {
  const std::size_t nLength = std::size_t(nRate / 400) * 2 * 8 * 100;
  std::uint64_t qwCount = 0;
  std::size_t n = 0;
  do {
    if (n == std::min<std::size_t>(coded.size(), 5)) return {};
    qwCount |= std::uint64_t{coded[n] & 0x7FU} << 7 * n;
  } while (coded[n++] >= 0x80);
  if (qwCount == 0 || qwCount > 0xFFFFFFFF) return {};
  const auto nCount = static_cast<std::size_t>(qwCount);
  coded = coded.subspan(n);
  return nCount <= nLength ? FindOne(coded, nCount) : FindSeveral(coded, nCount, nLength);
}

// Such a sound is refused, whatever its blocks hold.
bool IsMostlyMissing(const S_Sound& sound, int nRate) {
  constexpr std::uint64_t kMostSamplesMissing = 32U << 20;
  const auto nMissing =
      std::ranges::count(sound.runs, false, [](const auto& run) { return run.has_value(); });
  const auto nMore = 2 * nMissing - std::ssize(sound.runs);
  return nMore > 0 &&
         static_cast<std::uint64_t>(nMore) * heron::BlockLength(nRate) > kMostSamplesMissing;
}

// Empty when no block can be decoded.
Samples SlowSamples(const S_Sound& sound, int nRate) {
  Samples samples;
  bool bAny = false;
  for (const auto& run : sound.runs) {
    Samples block(std::min(heron::BlockLength(nRate), sound.nSamples - samples.size()));
    const bool bGood = run && heron::C_BlockDecoder(nRate).Decode(*run, block);
    if (!bGood) std::ranges::fill(block, std::int16_t{0});
    bAny |= bGood;
    samples.insert(samples.end(), block.begin(), block.end());
  }
  return bAny ? samples : Samples{};
}

// ---- decoding

Samples PcmOf(I_WavData* pIWavData) {
  vcm::C_ByteReader reader({pIWavData->GetBuffer(), pIWavData->GetBufferLength()});
  Samples samples(pIWavData->GetBufferLength() / 2);
  for (std::int16_t& nSample : samples) nSample = reader.I16();
  return samples;
}

Bytes WithHeader(std::span<const std::uint8_t> stream, int nRate) {
  vcm::C_ByteWriter writer;
  writer.U32(0xFF00FF00);
  writer.Text("VOXELTRONIC SP", 16);
  writer.U8(254);
  writer.U8(2);
  writer.U16(AUDIO_FILE_HERON_4BIT);
  writer.U16(16);
  writer.U32(static_cast<std::uint32_t>(nRate));
  writer.Zeros(18);
  writer.Bytes(stream);
  return writer.Take();
}

// Sounds of other classes get their samples through AllocBuffer.
class C_DerivedSound : public C_WavData {};

void CheckCodec(const Bytes& stream, int nRate, bool bDerived, const Samples& expected) {
  const C_WavDataPtr sound(bDerived ? new C_DerivedSound : new C_WavData);
  sound->SetWavInfoData(static_cast<unsigned int>(nRate), 0, 1, 16, 16, true);
  C_HeronCodec codec;
  const bool bRet =
      codec.Decode(stream.data(), static_cast<unsigned int>(stream.size()), sound.get());
  Require(bRet == !expected.empty());
  Require(PcmOf(sound.get()) == expected);
}

void CheckFile(const Bytes& stream, int nRate, const Samples& expected) {
  const C_FuzzFile file(WithHeader(stream, nRate));
  C_Heron4BitFile heronFile;
  Require(heronFile.OpenByName(file.Path()));
  Require(heronFile.LoadData(false, nullptr, nullptr) == !expected.empty());
  if (!expected.empty()) Require(PcmOf(heronFile.GetWavData()) == expected);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  C_FuzzInput input(pData, cbData);
  const std::uint8_t byChoice = input.U8();
  const auto [nRate, stream] = heronstreams::Take(input, byChoice);
  const auto audio = heronstream::FindAudio(stream);
  const S_Sound sound = audio ? Find(audio->coded, nRate) : S_Sound{};
  const bool bMissing = IsMostlyMissing(sound, nRate);
  if (sound.nSamples > kMostSamples && !bMissing) return 0;
  const vcm::tagInstructions eUsable = vcm::UsableInstructions();
  vcm::LimitInstructions(vcm::tagInstructions::kPlain);
  const Samples expected = bMissing ? Samples{} : SlowSamples(sound, nRate);
  vcm::LimitInstructions(eUsable);
  CheckCodec(stream, nRate, byChoice >= 0x80, expected);
  if (byChoice % 2 == 0) CheckFile(stream, nRate, expected);
  return 0;
}
