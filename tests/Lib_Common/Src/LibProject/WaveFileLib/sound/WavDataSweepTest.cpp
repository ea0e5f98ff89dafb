// SPDX-License-Identifier: Apache-2.0
//
// The operations work on many samples at a time, and the slow model on one. Both must give the same
// bytes in every format, for lengths around those of a block and of a vector, and for values at the
// limits.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "SampleValues.h"
#include "SlowSound.h"

namespace {

using slow::S_Sound;

enum class tagContents { kRandom, kExtreme, kQuiet };

struct S_Length {
  std::uint32_t dwFrames;
  std::uint32_t cbMore;     // bytes after the last frame
  std::int32_t nUnclaimed;  // bytes that the format leaves out; negative where it claims more
};

// Bytes that make the lowest, the highest and small values in all widths.
constexpr std::uint8_t kExtremes[] = {0x00, 0x80, 0xFF, 0x7F, 0x00, 0x00, 0xFF, 0xFF, 0x01, 0x80};

slow::Bytes PcmOf(tagContents eContents, std::size_t cbPcm) {
  slow::Bytes pcm(cbPcm);
  C_Random random(static_cast<unsigned int>(cbPcm) * 4 + 1);
  for (std::size_t i = 0; i < cbPcm; ++i) {
    const unsigned int dwRandom = random() >> 8;
    pcm[i] = static_cast<std::uint8_t>(dwRandom);
    if (eContents == tagContents::kExtreme) pcm[i] = kExtremes[dwRandom % std::size(kExtremes)];
    const bool bQuiet = eContents == tagContents::kQuiet && (i >> 6) % 3 != 0;
    if (bQuiet) pcm[i] = dwRandom % 2 != 0 ? 0 : 0xFF;
  }
  return pcm;
}

S_Sound ModelOf(const S_Format& format, const S_Length& length, tagContents eContents) {
  S_Sound model;
  model.dwRate = format.dwRate;
  model.wChannels = format.wChannels;
  model.wBits = format.wBits;
  model.wStore = format.wStoreBits;
  model.bSigned = format.bSigned;
  model.pcm =
      PcmOf(eContents, std::size_t{length.dwFrames} * format.wChannels * (format.wStoreBits / 8U) +
                           length.cbMore);
  model.dwClaimed = static_cast<std::uint32_t>(
      std::max<std::int64_t>(0, std::ssize(model.pcm) - length.nUnclaimed));
  model.bHeld = true;
  return model;
}

C_WavDataPtr SoundOf(const S_Sound& model) {
  C_WavDataPtr sound(new C_WavData);
  sound->SetBuffer(model.pcm.data(), static_cast<unsigned int>(model.pcm.size()));
  sound->SetWavInfoData(model.dwRate, model.dwClaimed, model.wChannels, model.wBits, model.wStore,
                        model.bSigned);
  return sound;
}

bool IsLike(I_WavData& sound, const S_Sound& model) {
  I_WavInfo& info = *sound.GetWavInfo();
  return info.GetByteLength() == model.dwClaimed && info.GetChannels() == model.wChannels &&
         info.GetBitsPerSample() == model.wBits && info.GetStoreBitsPerSample() == model.wStore &&
         info.IsValueSigned() == model.bSigned &&
         std::equal(model.pcm.begin(), model.pcm.end(), sound.GetBuffer());
}

bool IsLike(I_WavData* pMade, const std::optional<S_Sound>& expected) {
  const C_WavDataPtr made(pMade);
  return made && expected ? IsLike(*made, *expected) : !made && !expected;
}

class WavDataSweepTest : public testing::TestWithParam<S_Format> {
 protected:
  // Calls fnTest with many sounds of the format.
  template <typename Test>
  void ForEachSound(Test fnTest) {
    for (std::uint32_t dwFrames = 0; dwFrames <= 40; ++dwFrames) {
      Try({dwFrames, 0, 0}, static_cast<tagContents>(dwFrames % 3), fnTest);
    }
    Try({1023, 0, 0}, tagContents::kRandom, fnTest);
    Try({1024, 0, 0}, tagContents::kExtreme, fnTest);
    Try({1025, 0, 0}, tagContents::kQuiet, fnTest);
    Try({3100, 0, 0}, tagContents::kQuiet, fnTest);
    Try({2049, 1, 0}, tagContents::kExtreme, fnTest);
    Try({20, 3, 0}, tagContents::kRandom, fnTest);
    Try({1040, 1, 9}, tagContents::kRandom, fnTest);
    Try({1040, 0, -5000}, tagContents::kExtreme, fnTest);
  }

 private:
  template <typename Test>
  void Try(const S_Length& length, tagContents eContents, Test fnTest) {
    if (HasFailure()) return;
    SCOPED_TRACE(std::to_string(length.dwFrames) + " frames, contents " +
                 std::to_string(static_cast<int>(eContents)));
    fnTest(ModelOf(GetParam(), length, eContents));
  }
};

TEST_P(WavDataSweepTest, Gains_AreThoseOfEachSample) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  constexpr double kGains[][2] = {{0.7, 0.7},         {-1.0, -1.0},    {1.9, 0.2},
                                  {32768.5, 32769.0}, {1e300, -1e300}, {1e-9, 1e-9},
                                  {kInfinity, 1.0},   {kNaN, kNaN}};
  ForEachSound([&](const S_Sound& before) {
    for (const auto& [dFrom, dTo] : kGains) {
      S_Sound model = before;
      const auto wLast = static_cast<std::uint16_t>(model.wChannels - 1);
      const bool bExpected = model.Gain(dFrom, dTo, 0, model.Frames() - 1, 0, wLast);
      const C_WavDataPtr sound = SoundOf(before);
      EXPECT_EQ(sound->ApplyGain(dFrom, dTo), bExpected);
      EXPECT_TRUE(IsLike(*sound, model)) << dFrom;
    }
  });
}

TEST_P(WavDataSweepTest, GainsOfAPart_LeaveTheRest) {
  ForEachSound([&](const S_Sound& before) {
    for (std::uint16_t wChannel = 0; wChannel < before.wChannels; ++wChannel) {
      S_Sound model = before;
      const std::uint32_t dwEnd = before.Frames() - 2;
      const bool bExpected = model.Gain(1.5, -3.0, 3, dwEnd, wChannel, wChannel);
      const C_WavDataPtr sound = SoundOf(before);
      EXPECT_EQ(sound->ApplyGainRange(1.5, -3.0, 3, dwEnd, wChannel, wChannel), bExpected);
      EXPECT_TRUE(IsLike(*sound, model)) << wChannel;
    }
  });
}

TEST_P(WavDataSweepTest, Peaks_AreThoseOfEachSample) {
  ForEachSound([&](const S_Sound& before) {
    const C_WavDataPtr sound = SoundOf(before);
    I_WavDataBuffer& buffer = *sound->GetIWaveDataBuffer();
    for (std::uint16_t wFirst = 0; wFirst < before.wChannels; ++wFirst) {
      const auto wLast = static_cast<std::uint16_t>(before.wChannels - 1);
      const std::uint32_t dwEnd = before.SampleSize() - 1;
      EXPECT_EQ(buffer.GetMaxAbsValue(1, dwEnd, wFirst, wLast),
                before.MaxAbs(1, dwEnd, wFirst, wLast));
    }
    S_Sound model = before;
    const auto wLast = static_cast<std::uint16_t>(model.wChannels - 1);
    EXPECT_EQ(sound->Normalize(), model.Normalize(0, model.Frames() - 1, 0, wLast));
    EXPECT_TRUE(IsLike(*sound, model));
  });
}

TEST_P(WavDataSweepTest, Offsets_AreThoseOfEachSample) {
  ForEachSound([&](const S_Sound& before) {
    S_Sound model = before;
    const C_WavDataPtr sound = SoundOf(before);
    EXPECT_EQ(sound->GetDCOffset(), model.Offset());
    sound->RemoveDCOffset();
    model.RemoveOffset();
    EXPECT_TRUE(IsLike(*sound, model));
  });
}

TEST_P(WavDataSweepTest, Silence_IsThatOfEachSample) {
  ForEachSound([&](const S_Sound& before) {
    for (const std::uint32_t dwThreshold : {0U, 1U, 100U, 2047U}) {
      for (const std::uint32_t dwMin : {0U, 5U, 64U}) {
        S_Sound model = before;
        C_WavData sound;
        sound.CopyWavData(SoundOf(before).get());
        if (!before.ClaimsWhatItHolds()) continue;
        const auto wLast = static_cast<std::uint16_t>(model.wChannels - 1);
        ASSERT_TRUE(model.Detect(dwThreshold, dwMin, 2, 3000, 0, wLast, false));
        auto* const pList = sound.DetectSilenceRange(dwThreshold, dwMin, 2, 3000, 0, wLast, false);
        ASSERT_EQ(pList->GetSize(), std::ssize(model.silence)) << dwThreshold << " " << dwMin;
        for (int i = 0; i < pList->GetSize(); ++i) {
          const slow::S_Range range = model.silence[static_cast<std::size_t>(i)];
          EXPECT_EQ(pList->GetItemByIndex(i)->GetStartSamplePos(), range.dwStart);
          EXPECT_EQ(pList->GetItemByIndex(i)->GetEndSamplePos(), range.dwEnd);
        }
        sound.MakeSilenceSegmentsMute();
        model.Mute();
        model.pcm.resize(model.dwClaimed);
        EXPECT_TRUE(IsLike(sound, model)) << dwThreshold;
      }
    }
  });
}

TEST_P(WavDataSweepTest, Widths_AreThoseOfEachSample) {
  constexpr std::uint16_t kWidths[][2] = {{8, 8},   {1, 8},   {16, 16}, {12, 16}, {24, 32},
                                          {32, 32}, {31, 32}, {0, 32},  {24, 24}};
  ForEachSound([&](const S_Sound& before) {
    for (const auto& [wBits, wStore] : kWidths) {
      for (const int nFlags : {0, 1, 2, 3}) {
        const bool bSigned = nFlags / 2 != 0;
        const bool bExact = nFlags % 2 != 0;
        const C_WavDataPtr sound = SoundOf(before);
        EXPECT_TRUE(IsLike(sound->CreateBitsConvertedData(wBits, wStore, bSigned, bExact),
                           before.Converted(wBits, wStore, bSigned, bExact)))
            << wBits << " in " << wStore << ", " << nFlags;
      }
    }
  });
}

TEST_P(WavDataSweepTest, Channels_AreThoseOfEachSample) {
  ForEachSound([&](const S_Sound& before) {
    const std::uint32_t dwFrames = before.HeldFrames();
    for (std::uint16_t wChannel = 0; wChannel < before.wChannels; ++wChannel) {
      const C_WavDataPtr sound = SoundOf(before);
      EXPECT_TRUE(IsLike(sound->CreateChannelData(wChannel, 0, dwFrames),
                         before.Channel(wChannel, 0, dwFrames)));
      const auto half = before.Channel(wChannel, dwFrames / 2, dwFrames - dwFrames / 2);
      const C_WavDataPtr source(
          sound->CreateChannelData(wChannel, dwFrames / 2, dwFrames - dwFrames / 2));
      ASSERT_TRUE(IsLike(*source, *half));
      S_Sound model = before;
      EXPECT_EQ(sound->SetChannelData(source.get(), wChannel, 1, 0),
                model.PutChannel(half->pcm, wChannel, 1));
      EXPECT_TRUE(IsLike(*sound, model));
    }
  });
}

TEST_P(WavDataSweepTest, Mixes_AreThoseOfEachSample) {
  ForEachSound([&](const S_Sound& before) {
    S_Sound model = before;
    C_WavDataPtr sound = SoundOf(before);
    sound->ConvertToMono();
    model.ToMono();
    EXPECT_TRUE(IsLike(*sound, model));
    for (const int nSilentSide : {-1, 0, 1}) {
      model = before;
      sound = SoundOf(before);
      const int nSecond = model.SecondChannel();
      if (nSilentSide < 0 && model.wChannels == 2) continue;
      if (nSilentSide < 0) sound->ConvertToStereo();
      if (nSilentSide >= 0) sound->ConvertToStereoWithSilence(nSilentSide == 0 ? 1 : 0);
      model.ToStereo(nSilentSide == 0 ? -1 : 0, nSilentSide == 1 ? -1 : nSecond);
      EXPECT_TRUE(IsLike(*sound, model)) << nSilentSide;
    }
  });
}

std::string NameOf(const testing::TestParamInfo<S_Format>& info) {
  const S_Format& format = info.param;
  return "Bits" + std::to_string(format.wBits) + "In" + std::to_string(format.wStoreBits) +
         (format.bSigned ? "Signed" : "Unsigned") + "Of" + std::to_string(format.wChannels);
}

std::vector<S_Format> Formats() {
  constexpr S_Format kMono[] = {{1, 16, 16, true},  {1, 16, 16, false}, {1, 8, 8, false},
                                {1, 8, 8, true},    {1, 1, 8, true},    {1, 12, 16, true},
                                {1, 24, 32, true},  {1, 32, 32, true},  {1, 32, 32, false},
                                {1, 20, 32, false}, {1, 24, 24, true}};
  std::vector<S_Format> formats;
  for (unsigned short wChannels = 1; wChannels <= 5; ++wChannels) {
    for (S_Format format : kMono) {
      format.wChannels = wChannels;
      const bool bUsual = format.wBits == format.wStoreBits && format.bSigned == (format.wBits > 8);
      if (wChannels <= 2 || bUsual) formats.push_back(format);
    }
  }
  return formats;
}
INSTANTIATE_TEST_SUITE_P(All, WavDataSweepTest, testing::ValuesIn(Formats()), NameOf);

}  // namespace
