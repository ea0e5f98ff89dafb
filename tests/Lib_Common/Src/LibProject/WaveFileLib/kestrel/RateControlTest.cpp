// SPDX-License-Identifier: Apache-2.0
#include "kestrel/RateControl.h"

#include <gtest/gtest.h>

#include "VectorFiles.h"

namespace kestrel {
namespace {

using test::C_Stages;

S_CodedFrame CodeFrame(const C_Stages& stages, int nFrame, int nAvailable) {
  const int nRegions = stages.Configuration().nRegions;
  const auto envelope = stages.As<S_Envelope>(nFrame, "power_index");
  S_Frame coefficients = stages.Frame(nFrame, "mlt");
  const auto entries =
      RescaleRegions(coefficients, envelope, stages.Value(nFrame, "mag_shift"), nRegions);
  const auto categorisation =
      Categorise(stages.Value(nFrame, "available_bits"), envelope, nRegions);
  return CodeRegions(coefficients, entries, categorisation, nAvailable, nRegions);
}

class RateControlAtRate : public testing::TestWithParam<std::uint32_t> {};

TEST_P(RateControlAtRate, FramesOfSpeech_GiveTheirControl) {
  const C_Stages stages(GetParam());
  for (const int nFrame : stages.Frames()) {
    const int nAvailable = stages.Value(nFrame, "available_bits");
    const S_CodedFrame coded = CodeFrame(stages, nFrame, nAvailable);
    EXPECT_EQ(coded.nControl, stages.Value(nFrame, "control")) << nFrame;
    int nBits = 0;
    for (const auto& region : coded.regions) nBits += region.nBits;
    EXPECT_EQ(coded.nBits, nBits);
    if (coded.nControl < 15) {
      EXPECT_LE(coded.nBits, nAvailable);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Rates, RateControlAtRate, testing::ValuesIn(test::kStageRates));

TEST(RateControl, TooFewBits_EndsAtTheLastControlAndExceedsTheBits) {
  const C_Stages stages(16000);
  const S_CodedFrame coded = CodeFrame(stages, 31, -11);
  EXPECT_EQ(coded.nControl, 15);
  EXPECT_GT(coded.nBits, 0);
}

TEST(RateControl, BitsToSpare_EndsAtControlZero) {
  const C_Stages stages(16000);
  EXPECT_EQ(CodeFrame(stages, 31, 10000).nControl, 0);
}

TEST(RateControl, CategoriesAboveTheNoiseCategory_CostNothingAndStepBackToIt) {
  // All balances apply to region 0, which starts as noise. Seven steps up and seven down make it
  // noise again. If the category did not count beyond noise, it would have become a coded one.
  S_Categorisation categorisation{};
  categorisation.categories.fill(7);
  S_Frame coefficients;
  coefficients.fill(1000);
  S_PowerEntries entries;
  entries.fill(40);
  const S_CodedFrame coded = CodeRegions(coefficients, entries, categorisation, 100, 8);
  EXPECT_EQ(coded.nControl, 0);
  EXPECT_EQ(coded.nBits, 0);
}

TEST(RescaleRegions, UncodedRegions_StayAsTheyAre) {
  S_Frame coefficients;
  coefficients.fill(20000);
  S_Envelope envelope;
  envelope.fill(24);
  const S_PowerEntries entries = RescaleRegions(coefficients, envelope, 0, 8);
  EXPECT_EQ(entries[7], 40);
  EXPECT_EQ(coefficients[159], 20000 >> 4);
  EXPECT_EQ(coefficients[160], 20000);
}

}  // namespace
}  // namespace kestrel
