// SPDX-License-Identifier: Apache-2.0
#include "kestrel/Transform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "VectorFiles.h"

namespace kestrel {
namespace {

using test::C_Stages;
using test::FrameOf;
using test::ReadSamples;

constexpr int kDetailFrame = 31;

S_Frame Filled(std::int16_t nValue) {
  S_Frame frame;
  frame.fill(nValue);
  return frame;
}

TEST(ForwardTransform, FramesOfSpeech_GiveTheirCoefficientsAndShift) {
  const C_Stages stages(16000);
  const auto speech = ReadSamples("speech.pcm");
  for (const int nFrame : stages.Frames()) {
    S_Frame history = FrameOf(speech, nFrame - 1);
    S_Frame coefficients{};
    const S_Frame samples = FrameOf(speech, nFrame);
    EXPECT_EQ(ForwardTransform(history, samples, coefficients), stages.Value(nFrame, "mag_shift"));
    EXPECT_EQ(coefficients, stages.Frame(nFrame, "mlt")) << nFrame;
    EXPECT_EQ(history, samples) << nFrame;
  }
}

TEST(ForwardTransform, EveryStep_GivesItsValues) {
  const C_Stages stages(16000);
  const auto speech = ReadSamples("speech.pcm");
  S_Frame values =
      ApplyAnalysisWindow(FrameOf(speech, kDetailFrame - 1), FrameOf(speech, kDetailFrame));
  EXPECT_EQ(values, stages.Frame(kDetailFrame, "forward_windowed"));
  ScaleUp(values, MagnitudeShift(values));
  EXPECT_EQ(values, stages.Frame(kDetailFrame, "forward_shifted"));
  values = ForwardButterflies(values);
  EXPECT_EQ(values, stages.Frame(kDetailFrame, "forward_after_butterflies"));
  values = ForwardKernels(values);
  EXPECT_EQ(values, stages.Frame(kDetailFrame, "forward_after_kernels"));
  EXPECT_EQ(ForwardRotations(values), stages.Frame(kDetailFrame, "mlt"));
}

class InverseTransformAtRate : public testing::TestWithParam<std::uint32_t> {};

TEST_P(InverseTransformAtRate, EveryStep_GivesItsValues) {
  const C_Stages stages(GetParam());
  const auto frame = [&](const char* pszName) { return stages.Frame(kDetailFrame, pszName); };
  S_Frame values = InverseButterflies(frame("decoded_mlt"));
  EXPECT_EQ(values, frame("inverse_after_butterflies"));
  values = InverseKernels(values);
  EXPECT_EQ(values, frame("inverse_after_kernels"));
  values = InverseRotations(values);
  EXPECT_EQ(values, frame("inverse_after_rotations"));
  AddSynthesisBias(values);
  ScaleDown(values, stages.Value(kDetailFrame, "decoded_mag_shift"));
  EXPECT_EQ(values, frame("inverse_scaled"));
  auto overlap = stages.As<S_Overlap>(kDetailFrame, "overlap_history_before");
  S_Frame samples{};
  OverlapAdd(overlap, values, samples);
  EXPECT_EQ(samples, frame("pcm"));
  EXPECT_TRUE(std::equal(overlap.begin(), overlap.end(), values.begin() + 160));
}

TEST_P(InverseTransformAtRate, WholeFrame_GivesItsSamples) {
  const C_Stages stages(GetParam());
  auto overlap = stages.As<S_Overlap>(kDetailFrame, "overlap_history_before");
  S_Frame samples{};
  InverseTransform(overlap, stages.Frame(kDetailFrame, "decoded_mlt"),
                   stages.Value(kDetailFrame, "decoded_mag_shift"), samples);
  EXPECT_EQ(samples, stages.Frame(kDetailFrame, "pcm"));
}

INSTANTIATE_TEST_SUITE_P(Rates, InverseTransformAtRate, testing::ValuesIn(test::kStageRates));

TEST(MagnitudeShift, Shift_FollowsTheLargestMagnitude) {
  const auto shiftOf = [](std::int16_t nPeak) {
    S_Frame frame{};
    frame[7] = nPeak;
    return MagnitudeShift(frame);
  };
  EXPECT_EQ(shiftOf(0), 9);
  EXPECT_EQ(shiftOf(13999), 1);
  EXPECT_EQ(shiftOf(14000), 0);
  EXPECT_EQ(shiftOf(32767), 0);
  EXPECT_EQ(shiftOf(-32768), 0);
  EXPECT_EQ(shiftOf(1), 9);
  EXPECT_EQ(shiftOf(53), 9);
  EXPECT_EQ(shiftOf(54), 8);
  EXPECT_EQ(shiftOf(-100), 8);
  EXPECT_EQ(shiftOf(6999), 2);
  EXPECT_EQ(shiftOf(7000), 1);
  // 437 counts as 438, so both fall on the same side of the step.
  EXPECT_EQ(shiftOf(436), 6);
  EXPECT_EQ(shiftOf(437), 5);
  EXPECT_EQ(shiftOf(438), 5);
}

TEST(MagnitudeShift, LoudThroughout_LosesOneBit) {
  EXPECT_EQ(MagnitudeShift(Filled(20000)), -1);
  EXPECT_EQ(MagnitudeShift(Filled(-32768)), -1);
  S_Frame half{};
  std::fill_n(half.begin(), 127, std::int16_t{20000});
  EXPECT_EQ(MagnitudeShift(half), 0);
  // The comparison is strict: a 128th of the sum of 128 equal values equals their own magnitude.
  half[127] = 20000;
  EXPECT_EQ(MagnitudeShift(half), 0);
  half[128] = 20000;
  EXPECT_EQ(MagnitudeShift(half), -1);
}

TEST(ScaleUp, ScaleUp_ShiftsLeftHalvesOrKeeps) {
  S_Frame frame = Filled(-3);
  ScaleUp(frame, 0);
  EXPECT_EQ(frame, Filled(-3));
  ScaleUp(frame, 4);
  EXPECT_EQ(frame, Filled(-48));
  frame = Filled(-3);
  ScaleUp(frame, -1);
  EXPECT_EQ(frame, Filled(-2));
}

TEST(ScaleDown, ScaleDown_ShiftsRightDoublesOrKeeps) {
  S_Frame frame = Filled(-5);
  ScaleDown(frame, 0);
  EXPECT_EQ(frame, Filled(-5));
  ScaleDown(frame, 2);
  EXPECT_EQ(frame, Filled(-2));
  frame = Filled(20000);
  ScaleDown(frame, -1);
  EXPECT_EQ(frame, Filled(32767));
}

TEST(InverseButterflies, TheDifference_AddsTheLimitedNegative) {
  // The first pass makes -1 and -32768 neighbours. Their difference then is -1 + 32767, not the
  // 32767 that a plain subtraction gives.
  S_Frame in{};
  in[0] = in[1] = -1;
  in[2] = in[3] = -32768;
  const S_Frame out = InverseButterflies(in);
  EXPECT_NE(std::find(out.begin(), out.end(), 32766), out.end());
}

TEST(Transform, ThereAndBack_RestoresASineOneFrameLater) {
  S_Frame history{};
  S_Overlap overlap{};
  S_Frame before{};
  for (int nFrame = 0; nFrame < 5; ++nFrame) {
    S_Frame samples;
    for (std::size_t i = 0; i < samples.size(); ++i) {
      samples[i] =
          static_cast<std::int16_t>(8000 * std::sin(0.1 * static_cast<double>(i) + 32.0 * nFrame));
    }
    S_Frame coefficients;
    const int nShift = ForwardTransform(history, samples, coefficients);
    S_Frame decoded;
    InverseTransform(overlap, coefficients, nShift, decoded);
    for (std::size_t i = 0; nFrame > 0 && i < samples.size(); ++i) {
      EXPECT_NEAR(decoded[i], before[i], 40) << nFrame << ' ' << i;
    }
    before = samples;
  }
}

TEST(Transform, Silence_StaysWithinTwo) {
  S_Frame history{};
  S_Overlap overlap{};
  S_Frame coefficients;
  S_Frame decoded;
  EXPECT_EQ(ForwardTransform(history, Filled(0), coefficients), 9);
  InverseTransform(overlap, coefficients, 9, decoded);
  for (const std::int16_t nSample : decoded) EXPECT_LE(std::abs(nSample), 2);
}

}  // namespace
}  // namespace kestrel
