// SPDX-License-Identifier: Apache-2.0
//
// Compressed files that are cut at every byte or damaged in every place. Whatever loads must also
// be writable and load again.
#include <gtest/gtest.h>

#include <algorithm>

#include "CompressedBytes.h"
#include "OpenFiles.h"
#include "SweepFile.h"
#include "SweepRoundTrip.h"
#include "WavFileObject.h"

namespace {

struct S_File {
  unsigned short wTag = 0;
  C_Bytes bytes;
  std::size_t nFormatEnd = 0;
};

// Two whole blocks and a remainder of 11 bytes.
std::vector<S_File> AllFiles() {
  std::vector<S_File> files;
  for (const S_Blocks& blocks : OneOfEachKind()) {
    const C_Bytes encoded = RampBytes(std::size_t{2} * blocks.wBlockAlign + 11);
    files.push_back(
        {blocks.wTag, CompressedWav(blocks, encoded).Take(), 20 + BlockFmt(blocks).size()});
  }
  return files;
}

unsigned int LengthOf(const C_SweepFile& file) {
  return LoadWav(file.Path())->GetWavData()->GetBufferLength();
}

}  // namespace

TEST(CompressedWavSweep, FileCutAtEveryByte_LoadsAsFarAsItGoes) {
  const C_SweepFile target({});
  for (const S_File& whole : AllFiles()) {
    const C_SweepFile file(whole.bytes);
    const std::ptrdiff_t nOpen = CountOpenFiles();
    EXPECT_GT(LengthOf(file), 20u);
    for (std::size_t cb = whole.bytes.size() + 1; cb-- > 0;) {
      file.CutTo(cb);
      ASSERT_EQ(RoundTrip(file.Path(), target), cb >= whole.nFormatEnd) << cb;
      if (cb == whole.nFormatEnd || cb == whole.nFormatEnd + 8) {
        EXPECT_EQ(LengthOf(file), 0u);
      }
    }
    EXPECT_EQ(CountOpenFiles(), nOpen);
  }
}

TEST(CompressedWavSweep, SomeValuesInEachByteOfTheHead_AreSurvived) {
  const C_SweepFile target({});
  for (const S_File& whole : AllFiles()) {
    const C_SweepFile file(whole.bytes);
    std::size_t nLoaded = 0;
    const std::size_t nEnd = std::min(whole.nFormatEnd + 8 + 14, whole.bytes.size());
    for (std::size_t nAt = 16; nAt < nEnd; ++nAt) {
      for (std::uint32_t dwValue = 0; dwValue < 256; dwValue += 15) {
        file.PutNumber(nAt, 1, dwValue);
        nLoaded += RoundTrip(file.Path(), target) ? 1u : 0u;
        if (testing::Test::HasFailure()) FAIL() << "byte " << nAt << " = " << dwValue;
      }
      file.Repair(nAt, 1);
    }
    EXPECT_GT(nLoaded, 100u);
  }
}

TEST(CompressedWavSweep, GeometryFields_SurviveEveryPairOfHostileNumbers) {
  struct S_Field {
    std::size_t nAt;
    std::size_t cb;
  };
  // Tag, channels, block align, bits, samples per block, coefficient count or data, data size.
  const S_Field fields[] = {{20, 2}, {22, 2}, {32, 2}, {34, 2}, {38, 2}, {40, 2}, {44, 4}};
  const C_SweepFile target({});
  for (const S_File& whole : AllFiles()) {
    if (!wavtags::Find(whole.wTag)->bBlocks) continue;
    const C_SweepFile file(whole.bytes);
    for (const S_Field& first : fields) {
      for (const S_Field& second : fields) {
        for (const std::uint32_t dwFirst : {0u, 1u, 2u, 3u, 7u, 11u, 0x7FFFu, 0xFFFFFFFFu}) {
          for (const std::uint32_t dwSecond : {0u, 1u, 2u, 3u, 7u, 11u, 0x7FFFu, 0xFFFFFFFFu}) {
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
}
