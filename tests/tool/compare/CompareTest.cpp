// SPDX-License-Identifier: Apache-2.0
//
// `voxtool compare`, run as a user runs it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "FolderTest.h"
#include "OtherPrograms.h"
#include "ToolSounds.h"

namespace {

using testing::HasSubstr;

using C_Samples = std::vector<std::int16_t>;

class Compare : public C_FolderTest {
 protected:
  int Run(C_Program::Texts arguments) {
    arguments.insert(arguments.begin(), "compare");
    m_run = m_program.Run(arguments);
    return m_run.nExit;
  }
  // Compares a.wav and b.wav. The result is in m_json.
  int CompareBoth(const C_Program::Texts& options = {}) {
    C_Program::Texts arguments = {Path("a.wav"), Path("b.wav"), "--json"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const int nExit = Run(arguments);
    m_json = nlohmann::json::parse(m_run.strOut, nullptr, false);
    return nExit;
  }

  const C_Program m_program{VOXTOOL};
  S_Run m_run;
  nlohmann::json m_json;
};

// The samples with dNoise added and taken away in turn.
C_Samples WithSquare(C_Samples samples, int nNoise) {
  for (std::size_t n = 0; n < samples.size(); ++n) {
    samples[n] = static_cast<std::int16_t>(samples[n] + (n % 2 == 0 ? nNoise : -nNoise));
  }
  return samples;
}

C_Samples Later(const C_Samples& samples, std::size_t nFrames) {
  C_Samples later(nFrames);
  later.insert(later.end(), samples.begin(), samples.end());
  return later;
}

TEST_F(Compare, EqualSounds_EndWithZero) {
  WriteWav(Path("a.wav"), NoiseSamples(20000, 10000));
  WriteWav(Path("b.wav"), NoiseSamples(20000, 10000));
  EXPECT_EQ(CompareBoth(), 0);
  EXPECT_EQ(m_json["equal"], true);
  EXPECT_EQ(m_json["lag_frames"], 0);
  EXPECT_EQ(m_json["together"]["differing_samples"], 0);
  EXPECT_TRUE(m_json["together"]["snr_db"].is_null());
  EXPECT_TRUE(m_json["first_differing_frame"].is_null());
  EXPECT_EQ(Run({Path("a.wav"), Path("b.wav")}), 0);
  EXPECT_THAT(m_run.strOut, HasSubstr("result   equal\n"));
}

TEST_F(Compare, FloatingPointOf64Bits_IsComparedExactly) {
  const C_TempFolder folder;
  RunIn(folder,
        "ffmpeg -loglevel error -y -f lavfi -i aevalsrc=0.5:s=8000:d=0.1 -c:a pcm_f64be -f au " +
            Path("a.wav"));
  // Nearer to 0.5 than any other number of 32 bits is.
  RunIn(folder,
        "ffmpeg -loglevel error -y -f lavfi -i aevalsrc=0.5+0.000000000001:s=8000:d=0.1 "
        "-c:a pcm_f64be -f au " +
            Path("b.wav"));
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_EQ(m_json["equal"], false);
  EXPECT_EQ(m_json["together"]["differing_samples"], 800);
  EXPECT_EQ(m_run.strErr, "");
}

TEST_F(Compare, FloatingPointOf64BitsInWav_IsToldToBeNarrower) {
  const C_TempFolder folder;
  RunIn(folder, "ffmpeg -loglevel error -y -f lavfi -i aevalsrc=0.5:s=8000:d=0.1 -c:a pcm_f64le " +
                    Path("a.wav"));
  EXPECT_EQ(Run({Path("a.wav"), Path("a.wav")}), 0);
  const std::string strLine =
      Path("a.wav") + ": its floating point of 64 bits is compared as that of 32 bits\n";
  EXPECT_EQ(m_run.strErr, strLine + strLine);
}

TEST_F(Compare, KnownNoise_GivesItsSnr) {
  // A sine of 16384 has a mean square of 2^27, and the noise has one of 1600: 49.24 dB.
  const C_Samples sine = SineSamples(16000, 1000, 16000, 16384);
  WriteWav(Path("a.wav"), sine);
  WriteWav(Path("b.wav"), WithSquare(sine, 40));
  EXPECT_EQ(CompareBoth(), 1);
  const auto& together = m_json["together"];
  EXPECT_NEAR(together["snr_db"].get<double>(), 10 * std::log10(134217728.0 / 1600), 0.001);
  EXPECT_EQ(together["segmental_snr_db"], 35.0);
  EXPECT_EQ(together["segments"], 50);
  EXPECT_EQ(together["differing_samples"], 16000);
  EXPECT_DOUBLE_EQ(together["greatest_difference"].get<double>(), 40.0 / 32768);
  EXPECT_NEAR(together["first_rms_dbfs"].get<double>(), 20 * std::log10(0.5) - 3.0103, 0.001);
  EXPECT_NEAR(together["first_peak_dbfs"].get<double>(), 20 * std::log10(0.5), 0.001);
  EXPECT_EQ(m_json["first_differing_frame"], 0);
}

TEST_F(Compare, SegmentalSnr_IsTheMeanOfSegmentsThatAreNotSilent) {
  // Of 50 segments, 25 have 14.22 dB, 15 are without noise, and 10 are silent.
  const C_Samples sine = SineSamples(16000, 1000, 16000, 16384);
  C_Samples first = sine;
  std::fill(first.begin() + 40 * 320, first.end(), std::int16_t{39});
  C_Samples second = WithSquare(first, 2000);
  std::copy(first.begin() + 25 * 320, first.begin() + 40 * 320, second.begin() + 25 * 320);
  WriteWav(Path("a.wav"), first);
  WriteWav(Path("b.wav"), second);
  ASSERT_EQ(CompareBoth({"--max-lag", "0"}), 1);
  const double dNoisy = 10 * std::log10(134217728.0 / 4000000);
  EXPECT_EQ(m_json["together"]["segments"], 40);
  EXPECT_NEAR(m_json["together"]["segmental_snr_db"].get<double>(), (25 * dNoisy + 15 * 35.0) / 40,
              0.001);
}

TEST_F(Compare, VeryBadSegments_CountAsMinusTenDecibels) {
  const C_Samples sine = SineSamples(16000, 1000, 16000, 100);
  WriteWav(Path("a.wav"), sine);
  WriteWav(Path("b.wav"), WithSquare(sine, 10000));
  ASSERT_EQ(CompareBoth({"--max-lag", "0"}), 1);
  EXPECT_EQ(m_json["together"]["segmental_snr_db"], -10.0);
}

TEST_F(Compare, FirstDifference_IsFoundInItsChannel) {
  C_Samples samples = NoiseSamples(40000, 10000);
  WriteWav(Path("a.wav"), samples, 16000, 2);
  samples[2 * 12345 + 1] = static_cast<std::int16_t>(samples[2 * 12345 + 1] ^ 1);
  WriteWav(Path("b.wav"), samples, 16000, 2);
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_EQ(m_json["first_differing_frame"], 12345);
  EXPECT_EQ(m_json["channels"][0]["differing_samples"], 0);
  EXPECT_EQ(m_json["channels"][1]["differing_samples"], 1);
  EXPECT_EQ(m_json["together"]["samples"], 40000);
}

TEST_F(Compare, LagOfNoise_IsFoundExactly) {
  const C_Samples noise = NoiseSamples(30000, 8000);
  WriteWav(Path("a.wav"), noise);
  for (const std::size_t nLag : {1U, 7U, 320U, 5000U, 15999U, 16000U}) {
    WriteWav(Path("b.wav"), Later(noise, nLag));
    EXPECT_EQ(CompareBoth(), 1) << nLag;
    EXPECT_EQ(m_json["together"]["differing_samples"], 0);
    EXPECT_EQ(m_json["lag_frames"], nLag);
    EXPECT_EQ(m_json["frames"], 30000);
    EXPECT_EQ(m_json["second"]["frames_alone_before"], nLag);
  }
}

TEST_F(Compare, EarlierSound_HasANegativeLag) {
  const C_Samples noise = NoiseSamples(30000, 8000);
  WriteWav(Path("b.wav"), noise);
  WriteWav(Path("a.wav"), Later(noise, 777));
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_EQ(m_json["together"]["differing_samples"], 0);
  EXPECT_EQ(m_json["lag_frames"], -777);
}

TEST_F(Compare, LagOfAQuietNoisyCopy_IsFoundExactly) {
  const C_Samples noise = NoiseSamples(50000, 8000, 5);
  const C_Samples other = NoiseSamples(50000, 4000, 99);
  C_Samples copy = noise;
  for (std::size_t n = 0; n < copy.size(); ++n) {
    copy[n] = static_cast<std::int16_t>(noise[n] / 4 + other[n] / 4);
  }
  WriteWav(Path("a.wav"), noise);
  WriteWav(Path("b.wav"), Later(copy, 1234));
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_EQ(m_json["lag_frames"], 1234);
}

TEST_F(Compare, LagOfALowTone_IsFoundExactly) {
  C_Samples tone = SineSamples(48000, 50, 48000, 20000);
  for (std::size_t n = 0; n < tone.size(); ++n) {
    const double dRise = static_cast<double>(std::min(n, tone.size() - n)) / 24000;
    tone[n] = static_cast<std::int16_t>(tone[n] * dRise);
  }
  WriteWav(Path("a.wav"), tone, 48000);
  WriteWav(Path("b.wav"), Later(tone, 3), 48000);
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_EQ(m_json["together"]["differing_samples"], 0);
  EXPECT_EQ(m_json["lag_frames"], 3);
}

TEST_F(Compare, SteadyTone_HasNoLag) {
  const C_Samples tone = SineSamples(32000, 1000, 16000, 20000);
  WriteWav(Path("a.wav"), tone);
  WriteWav(Path("b.wav"), WithSquare(tone, 3));
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_EQ(m_json["lag_frames"], 0);
}

TEST_F(Compare, ToneThatIsPartOfALongerOne_HasNoLag) {
  const C_Samples tone = SineSamples(8000, 300, 8000, 20000);
  WriteWav(Path("b.wav"), tone, 8000);
  for (const std::ptrdiff_t nFrames : {6000, 7920, 100}) {
    WriteWav(Path("a.wav"), C_Samples(tone.begin(), tone.begin() + nFrames), 8000);
    EXPECT_EQ(CompareBoth(), 1);
    EXPECT_EQ(m_json["lag_frames"], 0) << nFrames;
    EXPECT_EQ(m_json["together"]["differing_samples"], 0) << nFrames;
  }
}

TEST_F(Compare, OtherSound_HasNoLag) {
  WriteWav(Path("a.wav"), NoiseSamples(30000, 8000, 1));
  WriteWav(Path("b.wav"), NoiseSamples(30000, 8000, 77));
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_EQ(m_json["lag_frames"], 0);
}

TEST_F(Compare, SoundThatBeginsLate_HasItsLagFoundAllTheSame) {
  const C_Samples late = Later(NoiseSamples(30000, 8000), 400000);
  WriteWav(Path("a.wav"), late);
  WriteWav(Path("b.wav"), Later(late, 55));
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_EQ(m_json["together"]["differing_samples"], 0);
  EXPECT_EQ(m_json["lag_frames"], 55);
}

TEST_F(Compare, LagBeyondTheLimit_IsNotLookedFor) {
  const C_Samples noise = NoiseSamples(30000, 8000);
  WriteWav(Path("a.wav"), noise);
  WriteWav(Path("b.wav"), Later(noise, 200));
  EXPECT_EQ(CompareBoth({"--max-lag", "0.01"}), 1);
  EXPECT_EQ(m_json["lag_frames"], 0);
  EXPECT_EQ(CompareBoth({"--max-lag", "0.0125"}), 1);
  EXPECT_EQ(m_json["lag_frames"], 200);
}

TEST_F(Compare, SoundThatIsCutShort_Differs) {
  const C_Samples noise = NoiseSamples(30000, 8000);
  WriteWav(Path("a.wav"), noise);
  WriteWav(Path("b.wav"), C_Samples(noise.begin(), noise.end() - 1));
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_EQ(m_json["equal"], false);
  EXPECT_EQ(m_json["together"]["differing_samples"], 0);
  EXPECT_EQ(m_json["first"]["frames_alone_after"], 1);
  EXPECT_EQ(m_json["first"]["alone_is_silent"], false);
}

TEST_F(Compare, SilenceThatIsLost_IsADifferenceAndCounted) {
  C_Samples noise = NoiseSamples(30000, 8000);
  WriteWav(Path("b.wav"), noise);
  noise.resize(30320);
  WriteWav(Path("a.wav"), noise);
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_EQ(m_json["equal"], false);
  EXPECT_EQ(m_json["first"]["frames_alone_after"], 320);
  EXPECT_EQ(m_json["first"]["alone_is_silent"], true);
  EXPECT_EQ(Run({Path("a.wav"), Path("b.wav")}), 1);
  EXPECT_THAT(m_run.strOut, HasSubstr("result   different: the second sound lacks 320 frames; "
                                      "the frames that both have are equal\n"));
  EXPECT_EQ(Run({Path("b.wav"), Path("a.wav")}), 1);
  EXPECT_THAT(m_run.strOut, HasSubstr("the second sound has 320 frames more; "));
}

TEST_F(Compare, SamplesOf24And16Bits_AreComparedExactly) {
  const C_Samples noise = NoiseSamples(5000, 8000);
  WriteWav(Path("a.wav"), noise);
  std::vector<std::int32_t> wide;
  for (const std::int16_t nSample : noise) wide.push_back(nSample * 65536);
  const auto write = [&] {
    voxplay::Writer writer(Path("b.wav"), FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 24));
    writer.write(std::span(wide));
    writer.finish();
  };
  write();
  EXPECT_EQ(CompareBoth(), 0);
  wide[100] += 256;
  write();
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_EQ(m_json["first_differing_frame"], 100);
}

TEST_F(Compare, SamplesOfFloatingPoint_AreComparedExactly) {
  const auto write = [&](const std::string& strName, const std::vector<float>& samples) {
    voxplay::Writer writer(Path(strName), FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_FLOAT, 32));
    writer.write(std::span(samples));
    writer.finish();
  };
  const float fNone = std::nanf("");
  write("a.wav", {0.5F, fNone, 3.5F, 0.25F});
  write("b.wav", {0.5F, fNone, 3.5F, 0.25F});
  EXPECT_EQ(CompareBoth(), 0);
  write("b.wav", {0.5F, 0.0F, 3.5F, std::nextafter(0.25F, 1.0F)});
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_EQ(m_json["first_differing_frame"], 1);
  EXPECT_EQ(m_json["together"]["differing_samples"], 2);
}

TEST_F(Compare, EmptySounds_AreEqual) {
  WriteWav(Path("a.wav"), {});
  WriteWav(Path("b.wav"), {});
  EXPECT_EQ(CompareBoth(), 0);
  WriteWav(Path("b.wav"), NoiseSamples(10, 100));
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_EQ(m_json["frames"], 0);
}

TEST_F(Compare, DecodedSpeech_IsInTimeWithItsSource) {
  const C_Samples noise = NoiseSamples(32000, 8000);
  WriteWav(Path("a.wav"), noise);
  voxplay::Writer writer(Path("b.wav"), FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 6));
  writer.write(std::span(noise));
  writer.finish();
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_EQ(m_json["lag_frames"], 0);
  EXPECT_GT(m_json["together"]["snr_db"].get<double>(), 25.0);
}

TEST_F(Compare, LongSounds_AreNeverInMemory) {
  WriteLongWav(Path("a.wav"));
  C_RunningProgram run = m_program.Start({"compare", Path("a.wav"), Path("a.wav")}, {},
                                         [] { LimitOwnMemory(40'000'000); });
  const S_Run ended = run.Wait();
  EXPECT_EQ(ended.nExit, 0) << ended.strErr;
  EXPECT_THAT(ended.strOut, HasSubstr("compared 40,000,000 frames\n"));
}

TEST_F(Compare, VeryManyChannels_TakeNoMoreMemory) {
  // The writer makes no such file: a header of one channel is changed to 65,535 of 8 bits.
  voxplay::Writer writer(Path("a.wav"), FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 8));
  const C_Samples samples(65535, 100);
  writer.write(std::span(samples));
  writer.finish();
  auto bytes = Content("a.wav");
  ASSERT_EQ(bytes[22], 1);
  std::fill(bytes.begin() + 22, bytes.begin() + 24, std::uint8_t{0xFF});
  std::fill(bytes.begin() + 32, bytes.begin() + 34, std::uint8_t{0xFF});
  Write("a.wav", bytes);
  C_RunningProgram run = m_program.Start({"compare", Path("a.wav"), Path("a.wav")}, {},
                                         [] { LimitOwnMemory(100'000'000); });
  const S_Run ended = run.Wait();
  EXPECT_EQ(ended.nExit, 0) << ended.strErr;
  EXPECT_THAT(ended.strOut, HasSubstr("compared 1 frame\n"));
}

TEST_F(Compare, OtherRate_IsRefusedWithAWayOut) {
  WriteWav(Path("a.wav"), NoiseSamples(1000, 100), 16000);
  WriteWav(Path("b.wav"), NoiseSamples(1000, 100), 8000);
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_EQ(m_run.strErr, Path("b.wav") + ": cannot be compared: it has 8000 Hz, and " +
                              Path("a.wav") +
                              " has 16000 Hz; make them equal with voxtool convert --rate\n");
  EXPECT_EQ(m_run.strOut, "");
}

TEST_F(Compare, OtherNumberOfChannels_IsRefusedWithAWayOut) {
  WriteWav(Path("a.wav"), NoiseSamples(1000, 100), 16000, 1);
  WriteWav(Path("b.wav"), NoiseSamples(1000, 100), 16000, 2);
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_THAT(m_run.strErr, HasSubstr("voxtool convert --mono"));
}

TEST_F(Compare, TooGreatALag_IsRefusedWithTheGreatest) {
  WriteWav(Path("a.wav"), NoiseSamples(1000, 100), 192000);
  WriteWav(Path("b.wav"), NoiseSamples(1000, 100), 192000);
  EXPECT_EQ(CompareBoth({"--max-lag", "11"}), 2);
  EXPECT_THAT(m_run.strErr, HasSubstr("--max-lag: 11 is no lag: give 0 to 10 seconds\n"));
  EXPECT_EQ(CompareBoth({"--max-lag", "2.74"}), 2);
  EXPECT_EQ(m_run.strErr,
            "voxtool compare: --max-lag is too much for 192000 Hz: give at most 2.73 seconds\n"
            "Try \"voxtool compare --help\".\n");
  EXPECT_EQ(CompareBoth({"--max-lag", "2.73"}), 0);
}

TEST_F(Compare, WhatCannotBeMeant_IsAUsageError) {
  WriteWav(Path("a.wav"), NoiseSamples(1000, 100));
  EXPECT_EQ(Run({Path("a.wav")}), 2);
  EXPECT_EQ(Run({Path("a.wav"), Path("a.wav"), Path("a.wav")}), 2);
  EXPECT_EQ(Run({Path("a.wav"), Path("a.wav"), "--max-lag", "11"}), 2);
  EXPECT_EQ(Run({Path("a.wav"), Path("a.wav"), "--max-lag", "-1"}), 2);
  EXPECT_EQ(Run({"-", "-"}), 2);
}

TEST_F(Compare, InfiniteRatio_IsToldFromNone) {
  WriteWav(Path("a.wav"), NoiseSamples(1000, 1000));
  WriteWav(Path("b.wav"), NoiseSamples(1000, 1000));
  EXPECT_EQ(CompareBoth(), 0);
  EXPECT_TRUE(m_json["together"]["snr_db"].is_null());
  EXPECT_EQ(m_json["together"]["snr_is_infinite"], true);
  WriteWav(Path("a.wav"), C_Samples(1000));
  WriteWav(Path("b.wav"), C_Samples(1000));
  EXPECT_EQ(CompareBoth(), 0);
  EXPECT_TRUE(m_json["channels"][0]["snr_db"].is_null());
  EXPECT_EQ(m_json["channels"][0]["snr_is_infinite"], false);
}

TEST_F(Compare, CutAndDamagedFiles_AreTold) {
  WriteWav(Path("a.wav"), NoiseSamples(16000, 20000));
  auto bytes = Content("a.wav");
  bytes.resize(44 + 2 * 1000);
  Write("b.wav", bytes);
  EXPECT_EQ(CompareBoth(), 1);
  EXPECT_EQ(m_run.strErr,
            Path("b.wav") + ": the file is cut: 1,000 of 16,000 frames are there, and compared\n");
  bytes = WrittenBytes(FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL),
                       NoiseSamples(32000, 20000));
  Write("a.kst", bytes);
  std::fill_n(bytes.begin() + 48 + 10 * 40, 2 * 40, std::uint8_t{0xFF});
  Write("b.kst", bytes);
  EXPECT_EQ(Run({Path("a.kst"), Path("b.kst")}), 1);
  EXPECT_THAT(m_run.strErr,
              testing::MatchesRegex(".*/b.kst: [0-9,]+ of 32,000 frames are damaged\n"));
}

}  // namespace
