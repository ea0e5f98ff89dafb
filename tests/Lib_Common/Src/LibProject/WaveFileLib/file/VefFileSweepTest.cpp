// SPDX-License-Identifier: Apache-2.0
//
// VEF containers that are cut at every byte or damaged in every place. Whatever loads must also be
// writable and load again.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "OpenFiles.h"
#include "RiffLayout.h"
#include "SweepFile.h"
#include "VefBytes.h"
#include "WavFileFormat.h"
#include "WavFileObject.h"
#include "file/KestrelFile.h"
#include "file/VefFile.h"

namespace {

// Every kind of chunk, with labels of events, labels of the user and labels of WAV files.
C_Bytes RichContainer() {
  C_RiffBytes riff = MonoVef(8);
  riff.Chunk("cue ", CueBytes({{1, 3, 3}, {2, 10, 10}}))
      .Chunk("smpl", SmplBytes(3, 20))
      .Chunk("LIST", AdtlBytes({LtxtBytes(2, 5), LablBytes(1, "(65538,7)"), LablBytes(2, "Verse"),
                                LablBytes(9, "u_1_2")}))
      .Chunk("vafm", VafmBytes(14))
      .Chunk("vdat", C_KestrelBytes(7200).Voice(1).Take())
      .Chunk("vevt", RampBytes(9));
  return riff.Take();
}

struct S_Outcome {
  bool bStored = false;   // the PCM loads as stored
  bool bDecoded = false;  // the stream loads decoded

  friend bool operator==(const S_Outcome&, const S_Outcome&) = default;
};

// How a container that is cut to cb bytes must load.
S_Outcome OutcomeWhenCutTo(std::size_t cb, const std::vector<S_ChunkPlace>& layout) {
  S_Outcome outcome;
  for (const S_ChunkPlace& chunk : layout) {
    if (cb < chunk.nPayload) break;  // without its header the chunk is not listed
    const bool bWhole = cb >= chunk.nEnd;
    if (chunk.strName == "fmt ") outcome.bStored = bWhole;
    if (chunk.strName == "vdat") outcome.bDecoded = outcome.bStored && bWhole;
  }
  return outcome;
}

bool LoadsDecoded(const std::string& strPath) {
  C_KestrelFile file;
  return file.LoadByName(strPath.c_str(), false, nullptr, nullptr);
}

// Loads, writes and loads again. True when the container loads.
bool RoundTrip(const std::string& strPath, const C_SweepFile& target) {
  C_VefFile file;
  if (!file.LoadByName(strPath.c_str(), true, nullptr, nullptr)) return false;
  // A false length may be just small enough to be accepted. The sound has then loaded, but is too
  // big to copy around.
  if (file.GetWavData()->GetBufferLength() > 1u << 20) return true;
  // The writer refuses only widths that no conversion supports.
  if (!Write(file, target.Path())) {
    EXPECT_EQ(file.GetWavInfo()->GetBitsPerSample(), 12);
    return true;
  }
  C_VefFile again;
  EXPECT_TRUE(again.LoadByName(target.Path().c_str(), true, nullptr, nullptr));
  EXPECT_EQ(PcmOf(again), PcmOf(file));
  EXPECT_EQ(VefEventsOf(again), VefEventsOf(file));
  EXPECT_EQ(LabelsOf(again), LabelsOf(file));
  return true;
}

TEST(VefFileSweep, ContainerCutAtEveryByte_LoadsAsFarAsItGoes) {
  const C_Bytes bytes = RichContainer();
  const std::vector<S_ChunkPlace> layout = LayoutOf(bytes);
  ASSERT_EQ(layout.size(), 8u);
  const C_SweepFile file(bytes);
  const C_SweepFile target({});
  const std::ptrdiff_t nOpen = CountOpenFiles();
  std::size_t nStored = 0;
  std::size_t nDecoded = 0;
  for (std::size_t cb = bytes.size() + 1; cb-- > 0;) {
    file.CutTo(cb);
    const S_Outcome outcome{RoundTrip(file.Path(), target), LoadsDecoded(file.Path())};
    ASSERT_EQ(outcome, OutcomeWhenCutTo(cb, layout)) << cb;
    nStored += outcome.bStored ? 1u : 0u;
    nDecoded += outcome.bDecoded ? 1u : 0u;
  }
  EXPECT_GT(nStored, 70u);
  EXPECT_EQ(nDecoded, 18u);
  EXPECT_EQ(CountOpenFiles(), nOpen);
}

TEST(VefFileSweep, EveryValueInEveryByteBeforeTheStream_IsSurvived) {
  const C_Bytes bytes = RichContainer();
  const C_SweepFile file(bytes);
  const C_SweepFile target({});
  const std::ptrdiff_t nOpen = CountOpenFiles();
  std::size_t nLoaded = 0;
  const std::size_t nStream = LayoutOf(bytes)[6].nPayload;
  for (std::size_t nAt = 0; nAt < nStream; ++nAt) {
    for (std::uint32_t dwValue = 0; dwValue < 256; dwValue += 17) {
      file.PutNumber(nAt, 1, dwValue);
      nLoaded += RoundTrip(file.Path(), target) ? 1u : 0u;
      if (testing::Test::HasFailure()) FAIL() << "byte " << nAt << " = " << dwValue;
    }
    file.Repair(nAt, 1);
  }
  EXPECT_GT(nLoaded, 300u);
  EXPECT_EQ(CountOpenFiles(), nOpen);
}

TEST(VefFileSweep, RandomDamage_IsSurvivedByTheFactory) {
  const C_Bytes bytes = RichContainer();
  const C_SweepFile file(bytes);
  const std::ptrdiff_t nOpen = CountOpenFiles();
  std::mt19937 random(1);
  C_WavFileFormat format;
  std::size_t nLoaded = 0;
  for (int i = 0; i < 3000; ++i) {
    const std::size_t nChanges = 1 + random() % 4;
    for (std::size_t k = 0; k < nChanges; ++k) {
      file.PutNumber(12 + random() % (bytes.size() - 12), 1, random() % 256);
    }
    const C_WavFilePtr loaded(
        format.CreateWavFile(file.Path().c_str(), true, i % 2 == 0, nullptr, nullptr));
    if (loaded) ++nLoaded;
    file.Repair(0, bytes.size());
  }
  EXPECT_GT(nLoaded, 300u);
  EXPECT_LT(nLoaded, 3000u);
  EXPECT_EQ(CountOpenFiles(), nOpen);
}

TEST(VefFileSweep, SizesNextToTheTruth_AreSurvived) {
  const C_SweepFile file(RichContainer());
  const C_SweepFile target({});
  for (const S_ChunkPlace& chunk : LayoutOf(file.Bytes())) {
    const auto dwSize = static_cast<std::uint32_t>(chunk.nEnd - chunk.nPayload);
    for (std::uint32_t dwClaimed = 0; dwClaimed < 2 * dwSize + 16; ++dwClaimed) {
      file.PutNumber(chunk.nPayload - 4, 4, dwClaimed);
      RoundTrip(file.Path(), target);
      LoadsDecoded(file.Path());
      if (testing::Test::HasFailure()) FAIL() << chunk.strName << " = " << dwClaimed;
    }
    file.Repair(chunk.nPayload - 4, 4);
  }
}

}  // namespace
