// SPDX-License-Identifier: Apache-2.0
//
// Files that are cut at every byte or damaged in every place. Whatever loads must also be writable
// and load again.
#include <gtest/gtest.h>

#include "OpenFiles.h"
#include "RiffLayout.h"
#include "SweepFile.h"
#include "SweepRoundTrip.h"
#include "WavBytes.h"
#include "WavFileFormat.h"
#include "WavFileObject.h"

namespace {

// Every kind of chunk, with labels that mean something.
C_RiffBytes RichFile() {
  C_RiffBytes riff = MonoWav(100);
  riff.Chunk("bext", RampBytes(11))
      .Chunk("cue ", CueBytes({{1, 3, 3}, {2, 10, 10}, {3, 20, 20}}))
      .Chunk("smpl", SmplBytes(3, 20))
      .Chunk("LIST", AdtlBytes({LtxtBytes(2, 5), LtxtBytes(3, 6), LablBytes(1, "u_3_7"),
                                LablBytes(2, "VX_Silence"), LablBytes(3, "VX_PCM")}))
      .Chunk("junk", RampBytes(9));
  return riff;
}

// The same kinds of chunks, but short enough for the head to hold them all, and with a label that
// means nothing. A label that means something stops the program when damage takes its cue point
// away.
C_RiffBytes QuietFile() {
  C_RiffBytes riff = MonoWav(8);
  riff.Chunk("LIST", AdtlBytes({LtxtBytes(1, 5), LablBytes(1, "hello")}))
      .Chunk("cue ", CueBytes({{1, 3, 3}}))
      .Chunk("smpl", SmplBytes(3, 20))
      .Chunk("junk", RampBytes(9));
  return riff;
}

// Whether a file that is cut to cb bytes must load.
bool LoadsWhenCutTo(std::size_t cb, const std::vector<S_ChunkPlace>& layout) {
  bool bFormat = false;
  for (const S_ChunkPlace& chunk : layout) {
    if (cb < chunk.nPayload) break;  // without its header the chunk is not listed
    if (chunk.strName == "fmt ") bFormat = cb >= chunk.nEnd;
  }
  return bFormat;
}

// Runs the detection and the factory on the file; the results do not matter.
void AskAll(const std::string& strPath) {
  C_WavFileFormat format;
  static_cast<void>(format.GetFileFormat(strPath.c_str()));
  static_cast<void>(format.IsSupportedFormat(strPath.c_str()));
  const C_WavFilePtr file(format.OpenWavFile(strPath.c_str()));
}

const std::uint32_t kHostileValues[] = {0,          1,          2,          3,         7,
                                        8,          0x7FFF,     0x8000,     0xFFFF,    0x7FFFFFFF,
                                        0x80000000, 0xFFFFFFF7, 0xFFFFFFFE, 0xFFFFFFFF};

}  // namespace

TEST(WavFileSweep, FileCutAtEveryByte_LoadsAsFarAsItGoes) {
  const C_Bytes bytes = RichFile().Take();
  const std::vector<S_ChunkPlace> layout = LayoutOf(bytes);
  ASSERT_EQ(layout.size(), 7u);
  const C_SweepFile file(bytes);
  const C_SweepFile target({});
  const std::ptrdiff_t nOpen = CountOpenFiles();
  std::size_t nLoaded = 0;
  for (std::size_t cb = bytes.size() + 1; cb-- > 0;) {
    file.CutTo(cb);
    const bool bLoaded = RoundTrip(file.Path(), target);
    ASSERT_EQ(bLoaded, LoadsWhenCutTo(cb, layout)) << cb;
    nLoaded += bLoaded ? 1u : 0u;
    AskAll(file.Path());
  }
  EXPECT_GT(nLoaded, 100u);
  EXPECT_EQ(CountOpenFiles(), nOpen);
}

TEST(WavFileSweep, EveryValueInTheHead_AndEveryFifthInTheNextBytes_AreSurvived) {
  constexpr std::size_t kHead = 48;  // the form, the format chunk and the next chunk's name
  const C_SweepFile file(QuietFile().Take());
  ASSERT_GE(file.Bytes().size(), 200u);
  const C_SweepFile target({});
  const std::ptrdiff_t nOpen = CountOpenFiles();
  std::size_t nLoaded = 0;
  for (std::size_t nAt = 0; nAt < std::min<std::size_t>(256, file.Bytes().size()); ++nAt) {
    const std::uint32_t dwStep = nAt < kHead ? 1 : 5;
    for (std::uint32_t dwValue = 0; dwValue < 256; dwValue += dwStep) {
      file.PutNumber(nAt, 1, dwValue);
      // The whole round trip for some values of each byte, and only loading for the others.
      const bool bWholeWay = dwValue % 15 == 0;
      const bool bLoaded = bWholeWay ? RoundTrip(file.Path(), target) : Loads(file.Path());
      nLoaded += bLoaded ? 1u : 0u;
      if (testing::Test::HasFailure()) FAIL() << "byte " << nAt << " = " << dwValue;
      if (bWholeWay && nAt < 36) AskAll(file.Path());
    }
    file.Repair(nAt, 1);
  }
  EXPECT_GT(nLoaded, 256u);
  EXPECT_EQ(CountOpenFiles(), nOpen);
}

TEST(WavFileSweep, EveryField_SurvivesHostileNumbers) {
  const C_SweepFile file(QuietFile().Take());
  const C_SweepFile target({});
  for (const std::size_t cbField : {std::size_t{2}, std::size_t{4}}) {
    for (std::size_t nAt = 0; nAt + cbField <= file.Bytes().size(); ++nAt) {
      for (const std::uint32_t dwValue : kHostileValues) {
        file.PutNumber(nAt, cbField, dwValue);
        RoundTrip(file.Path(), target);
        if (testing::Test::HasFailure()) FAIL() << cbField << " at " << nAt << " = " << dwValue;
      }
      file.Repair(nAt, cbField);
    }
  }
}

TEST(WavFileSweep, SizesNextToTheTruth_AreSurvived) {
  const C_SweepFile file(QuietFile().Take());
  const C_SweepFile target({});
  for (const S_ChunkPlace& chunk : LayoutOf(file.Bytes())) {
    const auto dwSize = static_cast<std::uint32_t>(chunk.nEnd - chunk.nPayload);
    for (std::uint32_t dwClaimed = 0; dwClaimed < 2 * dwSize + 16; ++dwClaimed) {
      file.PutNumber(chunk.nPayload - 4, 4, dwClaimed);
      RoundTrip(file.Path(), target);
      if (testing::Test::HasFailure()) FAIL() << chunk.strName << " = " << dwClaimed;
    }
    file.Repair(chunk.nPayload - 4, 4);
  }
}

TEST(WavFileSweep, GeometryFields_SurviveEveryPairOfHostileNumbers) {
  struct S_Field {
    std::size_t nAt;
    std::size_t cb;
  };
  // Tag, channels, rate, block align, bits, data size.
  const S_Field fields[] = {{20, 2}, {22, 2}, {24, 4}, {32, 2}, {34, 2}, {40, 4}};
  const C_SweepFile file(QuietFile().Take());
  const C_SweepFile target({});
  for (const S_Field& first : fields) {
    for (const S_Field& second : fields) {
      for (const std::uint32_t dwFirst : kHostileValues) {
        for (const std::uint32_t dwSecond : kHostileValues) {
          file.PutNumber(first.nAt, first.cb, dwFirst);
          file.PutNumber(second.nAt, second.cb, dwSecond);
          RoundTrip(file.Path(), target);
        }
      }
      file.Repair(second.nAt, second.cb);
      ASSERT_FALSE(testing::Test::HasFailure()) << first.nAt << " and " << second.nAt;
    }
    file.Repair(first.nAt, first.cb);
  }
}
