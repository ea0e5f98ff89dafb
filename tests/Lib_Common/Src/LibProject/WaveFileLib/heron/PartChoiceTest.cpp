// SPDX-License-Identifier: Apache-2.0
#include "heron/PartChoice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "Blocks.h"
#include "Signals.h"
#include "heron/Configuration.h"

namespace heron {
namespace {

using test::Padded;
using test::S_Divisions;
using test::S_Sound;

constexpr int kSlope = 16;
constexpr int kOffset = -1500;  // about that of 4 bits per sample

S_Divisions Choose(const S_Sound& sound, int nSampleRate, int nOffset = kOffset) {
  C_Transforms transforms(UnitLength(nSampleRate));
  return ChooseParts({Padded(sound, nSampleRate), sound.size(), kSlope, nOffset}, transforms);
}

// The parts of a division, in order. Plain units have a size of -1.
void AddSizes(const C_Division& division, std::size_t nNode, int nSize, std::vector<int>& sizes) {
  if (nSize == 0 || !division.IsMarked(nNode)) {
    sizes.push_back(division.IsMarked(nNode) ? -1 : nSize);
    return;
  }
  AddSizes(division, 2 * nNode, nSize - 1, sizes);
  AddSizes(division, 2 * nNode + 1, nSize - 1, sizes);
}
std::vector<int> SizesOf(const C_Division& division) {
  std::vector<int> sizes;
  AddSizes(division, 1, static_cast<int>(kPartSizes) - 1, sizes);
  return sizes;
}

// The size of the part that unit nUnit belongs to.
int SizeAt(const C_Division& division, std::size_t nUnit) {
  std::size_t nEnd = 0;
  for (const int nSize : SizesOf(division)) {
    nEnd += std::size_t{1} << std::max(nSize, 0);
    if (nUnit < nEnd) return nSize;
  }
  return -2;
}

S_Sound Tone(std::size_t nSamples, double dAmplitude, double dTurns) {
  S_Sound tone(nSamples);
  for (std::size_t n = 0; n < nSamples; ++n) {
    const double dAngle = 2 * std::numbers::pi * dTurns * static_cast<double>(n);
    tone[n] = static_cast<std::int16_t>(std::lround(dAmplitude * std::sin(dAngle)));
  }
  return tone;
}

// ---- divisions

TEST(HeronDivision, Marks_AreKeptByNode) {
  for (std::size_t nNode = 1; nNode < 16; ++nNode) {
    C_Division division;
    for (std::size_t n = 1; n < 16; ++n) EXPECT_FALSE(division.IsMarked(n)) << n;
    division.Mark(nNode);
    division.Mark(nNode);
    for (std::size_t n = 1; n < 16; ++n) EXPECT_EQ(division.IsMarked(n), n == nNode) << n;
  }
}

// ---- what they must be

TEST(HeronPartChoice, OfAnySound_DividesOnlyWhatIsSplitAndThere) {
  for (const int nSampleRate : {4000, 8000, 11025, 48000}) {
    const std::size_t nUnitLength = UnitLength(nSampleRate);
    for (std::size_t nSamples = 1; nSamples < 3 * SectionLength(nSampleRate);
         nSamples += nUnitLength - 3) {
      for (const auto& [strName, sound] : test::SoundsOf(nSamples)) {
        SCOPED_TRACE(strName);
        const S_Divisions divisions = Choose(sound, nSampleRate);
        ASSERT_EQ(divisions.size(), test::SectionsOf(nSamples, nSampleRate));
        for (std::size_t nNode = 2; nNode < 16; ++nNode) {
          for (std::size_t n = 0; n < divisions.size(); ++n) {
            if (!divisions[n].IsMarked(nNode)) continue;
            ASSERT_TRUE(divisions[n].IsMarked(nNode / 2)) << nNode;
            // The first unit of the node, which must have begun before the end of the sound.
            std::size_t nUnit = nNode;
            while (nUnit < kSectionUnits) nUnit *= 2;
            nUnit += n * kSectionUnits - kSectionUnits;
            ASSERT_LT(nUnit * nUnitLength, nSamples) << nNode;
          }
        }
      }
    }
  }
}

TEST(HeronPartChoice, TransformsUsedAgain_ChooseAsNewOnes) {
  const S_Sound first = test::Noise(3200);
  const S_Sound second = Padded(TestVoice(5000), 8000);
  C_Transforms used(UnitLength(8000));
  EXPECT_EQ(ChooseParts({first, first.size(), kSlope, kOffset}, used).size(), 10u);
  const S_Divisions divisions = ChooseParts({second, 5000, kSlope, kOffset}, used);
  const S_Divisions fresh = Choose(TestVoice(5000), 8000);
  ASSERT_EQ(divisions.size(), fresh.size());
  for (std::size_t n = 0; n < fresh.size(); ++n) {
    EXPECT_EQ(SizesOf(divisions[n]), SizesOf(fresh[n])) << n;
  }
}

TEST(HeronPartChoice, EachSection_IsSeenOnceAsOnePart) {
  const S_Sound sound = Padded(TestVoice(1700), 8000);
  const std::size_t nLength = SectionLength(8000);
  C_Transforms transforms(UnitLength(8000));
  std::size_t nAt = 0;
  ChooseParts({sound, 1700, kSlope, kOffset}, transforms,
              [&](std::span<const std::int16_t> samples, std::span<const std::int32_t> values) {
                ASSERT_EQ(samples.data(), sound.data() + nAt);
                ASSERT_EQ(samples.size(), nLength);
                const auto laps = transforms.Laps(kPartSizes - 1);
                S_Lapped lapped{nAt, nLength, laps, laps};
                if (nAt == 0) lapped.before = {};
                if (nAt + nLength == sound.size()) lapped.after = {};
                std::vector<std::int32_t> expected(nLength);
                Fold(sound, lapped, expected);
                C_Dct4(nLength).Transform(expected);
                EXPECT_TRUE(std::ranges::equal(values, expected)) << nAt;
                nAt += nLength;
              });
  EXPECT_EQ(nAt, sound.size());
}

TEST(HeronPartChoice, OffsetsFarOutside_AreNoHarm) {
  for (const int nOffset : {-100000, -13000, 19000, 100000}) {
    for (const auto& [strName, sound] : test::SoundsOf(1000)) {
      EXPECT_EQ(Choose(sound, 8000, nOffset).size(), 4u) << strName << ' ' << nOffset;
    }
  }
}

// ---- what they should be

TEST(HeronPartChoice, ASteadyTone_GetsTheLongestParts) {
  for (const double dTurns : {0.02, 0.0713, 0.21, 0.4}) {
    const S_Divisions divisions = Choose(Tone(3200, 9000, dTurns), 8000);
    // The first and the last section have no overlap at one of their ends.
    for (std::size_t n = 1; n + 1 < divisions.size(); ++n) {
      EXPECT_EQ(SizesOf(divisions[n]), std::vector<int>{3}) << dTurns << ' ' << n;
    }
  }
}

TEST(HeronPartChoice, Silence_GetsTheLongestParts) {
  for (const C_Division& division : Choose(S_Sound(3200), 8000)) {
    EXPECT_EQ(SizesOf(division), std::vector<int>{3});
  }
}

TEST(HeronPartChoice, AClickInSilence_GetsAPlainUnit) {
  for (std::size_t nAt = 640; nAt < 960; nAt += 7) {
    const S_Divisions divisions = Choose(test::Impulse(1600, nAt, 20000), 8000);
    EXPECT_EQ(SizeAt(divisions[2], (nAt - 640) / 40), -1) << nAt;
    // The other sections stay whole.
    EXPECT_EQ(SizesOf(divisions[0]), std::vector<int>{3}) << nAt;
    EXPECT_EQ(SizesOf(divisions[4]), std::vector<int>{3}) << nAt;
  }
}

TEST(HeronPartChoice, AnAttackAfterSilence_GetsShortParts) {
  // Noise begins in the middle of a section.
  S_Sound sound(1920);
  const S_Sound noise = test::Noise(1920);
  std::copy(noise.begin() + 800, noise.end(), sound.begin() + 800);
  const S_Divisions divisions = Choose(sound, 8000);
  EXPECT_LE(SizeAt(divisions[2], 3), 2);
  EXPECT_LE(SizeAt(divisions[2], 4), 2);
}

TEST(HeronPartChoice, AToneThatBeginsInASection_SplitsItThere) {
  S_Sound sound(1920);
  const S_Sound tone = Tone(1920, 12000, 0.31);
  std::copy(tone.begin() + 640 + 240, tone.end(), sound.begin() + 640 + 240);
  const S_Divisions divisions = Choose(sound, 8000);
  EXPECT_TRUE(divisions[2].IsMarked(1));
  EXPECT_EQ(SizesOf(divisions[0]), std::vector<int>{3});
  EXPECT_EQ(SizesOf(divisions[4]), std::vector<int>{3});
}

}  // namespace
}  // namespace heron
