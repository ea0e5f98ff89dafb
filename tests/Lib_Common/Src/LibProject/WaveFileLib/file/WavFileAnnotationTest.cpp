// SPDX-License-Identifier: Apache-2.0
//
// Loading RIFF sound files: the events, silence segments and regions that their labels become.
#include <time.h>  // NOLINT(modernize-deprecated-headers): clock_gettime

#include <algorithm>
#include <limits>

#include "ByteReader.h"
#include "WavFileLoadFixture.h"
#include "sound/WavData.h"

TEST_F(WavFileLoad, EventLabels_BecomeEvents) {
  EXPECT_EQ(EventsOf(*Load(OneLabel("u_3_7"))), (std::vector<S_EventSeen>{{3, 7, 4800}}));
  EXPECT_EQ(EventsOf(*Load(OneLabel("e_196615"))), (std::vector<S_EventSeen>{{3, 7, 4800}}));
  EXPECT_EQ(EventsOf(*Load(OneLabel("Queue_1_2"))), (std::vector<S_EventSeen>{{1, 2, 4800}}));
  EXPECT_TRUE(EventsOf(*Load(OneLabel("(65538,7)"))).empty());
}

TEST_F(WavFileLoad, Event_StandsAtTheCuePointsPositionNotItsOffset) {
  C_RiffBytes riff = MonoWav(64);
  riff.Chunk("cue ", CueBytes({{1, 10, 20}}))
      .Chunk("LIST", AdtlBytes({LablBytes(1, "u_1_2"), LablBytes(1, "VX_PCM"), LtxtBytes(1, 5)}));
  const C_WavObjectPtr file = Load(riff);
  EXPECT_EQ(EventsOf(*file), (std::vector<S_EventSeen>{{1, 2, 10}}));
  EXPECT_EQ(RegionsOf(*file), (C_RangesSeen{{10, 14}}));
}

TEST_F(WavFileLoad, Event_HasNoDescriptionAndNoData) {
  const C_WavObjectPtr file = Load(OneLabel("u_3_7"));
  I_EventTag& event = *file->GetWavData()->GetEventTagMgr()->GetEventList()->GetItemByIndex(0);
  EXPECT_STREQ(event.GetDescription(), "");
  EXPECT_EQ(event.GetData(), 0u);
  EXPECT_EQ(event.GetTime(), 300u);
}

TEST_F(WavFileLoad, Events_AreOrderedByPositionAndThenByLabel) {
  C_RiffBytes riff = MonoWav(64);
  riff.Chunk("cue ", CueBytes({{1, 300, 0}, {2, 100, 0}, {3, 200, 0}, {4, 100, 0}}))
      .Chunk("LIST", AdtlBytes({LablBytes(1, "u_1_0"), LablBytes(2, "u_2_0"), LablBytes(3, "u_3_0"),
                                LablBytes(4, "u_4_0"), LablBytes(2, "u_5_0")}));
  EXPECT_EQ(
      EventsOf(*Load(riff)),
      (std::vector<S_EventSeen>{{2, 0, 100}, {4, 0, 100}, {5, 0, 100}, {3, 0, 200}, {1, 0, 300}}));
}

TEST_F(WavFileLoad, SeveralCuePointsWithOneIdentifier_CountAsTheFirst) {
  C_RiffBytes riff = MonoWav(64);
  riff.Chunk("cue ", CueBytes({{5, 77, 0}, {5, 88, 0}}))
      .Chunk("LIST", AdtlBytes({LablBytes(5, "u_1_2")}));
  EXPECT_EQ(EventsOf(*Load(riff)), (std::vector<S_EventSeen>{{1, 2, 77}}));
}

// Enough entries to reveal a sort that does not keep the order of equal entries.
TEST_F(WavFileLoad, VeryManyEqualIdentifiers_CountAsTheFirst) {
  std::vector<S_CueBytes> cues;
  C_Bytes labels = LablBytes(5, "VX_PCM");
  for (std::uint32_t i = 0; i < 100; ++i) {
    cues.push_back({5 + i % 2, 1000 + i, 0});
    labels = Join({labels, LtxtBytes(5 + i % 2, 1 + i)});
  }
  const C_WavObjectPtr file =
      Load(MonoWav(64).Chunk("cue ", CueBytes(cues)).Chunk("LIST", AdtlBytes({labels})));
  EXPECT_EQ(RegionsOf(*file), (C_RangesSeen{{1000, 1000}}));
}

TEST_F(WavFileLoad, VeryManyEventsAtOneSample_KeepTheOrderOfTheirLabels) {
  std::vector<S_EventSeen> expected;
  C_Bytes labels;
  for (unsigned int i = 0; i < 100; ++i) {
    labels = Join({labels, LablBytes(1, "u_" + std::to_string(i) + "_0")});
    expected.push_back({i, 0, 77});
  }
  const C_WavObjectPtr file =
      Load(MonoWav(64).Chunk("cue ", CueBytes({{1, 77, 0}})).Chunk("LIST", AdtlBytes({labels})));
  EXPECT_EQ(EventsOf(*file), expected);
}

TEST_F(WavFileLoad, RangeLabels_BecomeSegmentsAndRegions) {
  C_RiffBytes riff = MonoWav(64);
  riff.Chunk("cue ", CueBytes({{1, 100, 0}, {2, 500, 0}, {3, 100, 0}}))
      .Chunk("LIST", AdtlBytes({LtxtBytes(2, 20), LtxtBytes(1, 10), LtxtBytes(2, 99),
                                LtxtBytes(3, 1), LablBytes(1, "VX_Silence"), LablBytes(2, "VX_PCM"),
                                LablBytes(3, "VX_Silence")}));
  const C_WavObjectPtr file = Load(riff);
  EXPECT_EQ(SilenceOf(*file), (C_RangesSeen{{100, 109}, {100, 100}}));
  EXPECT_EQ(RegionsOf(*file), (C_RangesSeen{{500, 519}}));
}

TEST_F(WavFileLoad, RangeWithoutItsLabelledText_TakesTheLastOne) {
  C_RiffBytes riff = MonoWav(64);
  riff.Chunk("cue ", CueBytes({{1, 100, 0}, {2, 500, 0}}))
      .Chunk("LIST", AdtlBytes({LablBytes(1, "VX_Silence"), LtxtBytes(2, 20), LtxtBytes(9, 30)}));
  EXPECT_EQ(SilenceOf(*Load(riff)), (C_RangesSeen{{100, 129}}));
}

TEST_F(WavFileLoad, RangeWithoutAnyLabelledText_HasLengthZero) {
  EXPECT_EQ(SilenceOf(*Load(OneLabel("VX_Silence"))), (C_RangesSeen{{4800, 4799}}));
  EXPECT_EQ(RegionsOf(*Load(OneLabel("VX_PCM"))), (C_RangesSeen{{4800, 4799}}));
}

TEST_F(WavFileLoad, Ranges_WrapInsteadOfFailing) {
  C_RiffBytes riff = MonoWav(64);
  riff.Chunk("cue ", CueBytes({{1, 0, 0}, {2, 0xFFFFFFF0, 0}}))
      .Chunk("LIST", AdtlBytes({LtxtBytes(1, 0), LtxtBytes(2, 0x20), LablBytes(1, "VX_PCM"),
                                LablBytes(2, "VX_PCM")}));
  EXPECT_EQ(RegionsOf(*Load(riff)), (C_RangesSeen{{0, 0xFFFFFFFF}, {0xFFFFFFF0, 0xF}}));
}

TEST_F(WavFileLoad, UnknownLabels_MeanNothingAndStayInTheList) {
  const C_WavObjectPtr file = Load(OneLabel("hello"));
  EXPECT_TRUE(EventsOf(*file).empty());
  EXPECT_EQ(LabelsOf(*file).size(), 1u);
  EXPECT_EQ(LabelsOf(*file)[0].second, "hello");
}

TEST_F(WavFileLoad, UnknownLabels_NeedNoCuePoint) {
  const C_RiffBytes riff = MonoWav(64).Chunk(
      "LIST", AdtlBytes({LablBytes(1, "hello"), LablBytes(2, "VX_silence"), LablBytes(3, "")}));
  EXPECT_EQ(LabelsOf(*Load(riff)).size(), 3u);
}

using WavFileLoadDeathTest = WavFileLoad;

TEST_F(WavFileLoadDeathTest, LabelsThatMeanSomething_NeedTheirCuePoint) {
  for (const char* pszText : {"u_1_2", "e_5", "VX_Silence", "VX_PCM"}) {
    C_RiffBytes riff = MonoWav(64);
    riff.Chunk("cue ", CueBytes({{1, 0, 0}})).Chunk("LIST", AdtlBytes({LablBytes(2, pszText)}));
    const std::string strPath = File(riff);
    EXPECT_DEATH(static_cast<void>(Loads(strPath)), "WaveFileLib/WavFile.*NULL != pICuePoint")
        << pszText;
  }
}

TEST_F(WavFileLoad, AnnotationsOfTheSound_AreReplacedButEventsAreAdded) {
  C_RiffBytes riff = MonoWav(64);
  riff.Chunk("cue ", CueBytes({{1, 100, 0}, {2, 500, 0}, {3, 600, 0}}))
      .Chunk("LIST", AdtlBytes({LtxtBytes(2, 20), LtxtBytes(3, 30), LablBytes(1, "u_1_2"),
                                LablBytes(2, "VX_PCM"), LablBytes(3, "VX_Silence")}));
  const C_WavObjectPtr file = Load(riff);
  ASSERT_TRUE(file->LoadData(true, nullptr, nullptr));
  EXPECT_EQ(EventsOf(*file), (std::vector<S_EventSeen>{{1, 2, 100}, {1, 2, 100}}));
  EXPECT_EQ(SilenceOf(*file), (C_RangesSeen{{600, 629}}));
  EXPECT_EQ(RegionsOf(*file), (C_RangesSeen{{500, 519}}));
}

TEST_F(WavFileLoad, Kind_IsKnownEvenWhenTheFormatIsRefused) {
  const C_WavObjectPtr file = MakeWav();
  C_RiffBytes riff("VEMD");
  riff.Chunk("fmt ", FmtBytes(0x0011, 1, 8000, 4));
  EXPECT_FALSE(file->CheckFormat(File(riff).c_str(), false));
  EXPECT_EQ(file->GetFileFormat(), AUDIO_FILE_VEMD);
}

TEST_F(WavFileLoad, AttachedSound_PlacesEventsAtTheRateOfTheFile) {
  C_WavData data;
  data.SetWavInfoData(8000, 0, 1, 16, 16, true);
  C_WavFile file;
  file.AttachWavData(&data);
  ASSERT_TRUE(file.LoadByName(File(OneLabel("u_3_7")).c_str(), true, nullptr, nullptr));
  EXPECT_EQ(EventsOf(file), (std::vector<S_EventSeen>{{3, 7, 4800}}));
  EXPECT_EQ(data.GetEventTagMgr()->GetEventList()->GetItemByIndex(0)->GetTime(), 300u);
}

TEST_F(WavFileLoad, Events_JoinThoseOfTheSoundInOrder) {
  const C_WavObjectPtr file = MakeWav();
  ASSERT_TRUE(file->OpenByName(File(OneLabel("u_1_2")).c_str()));
  I_EventTagMgr& events = *file->GetWavData()->GetEventTagMgr();
  events.AddEventBySamplePos(8, 8, 9000, "", 0);
  events.AddEventBySamplePos(9, 9, 4800, "", 0);
  events.AddEventBySamplePos(7, 7, 10, "", 0);
  ASSERT_TRUE(file->LoadData(true, nullptr, nullptr));
  EXPECT_EQ(EventsOf(*file),
            (std::vector<S_EventSeen>{{7, 7, 10}, {9, 9, 4800}, {1, 2, 4800}, {8, 8, 9000}}));
}

TEST_F(WavFileLoad, SoundWithoutLabels_LosesTheAnnotationsItHad) {
  const C_WavObjectPtr file = MakeWav();
  file->GetAudioCodecParam();  // makes the sound
  file->GetWavData()->AddSilenceSegment(1, 2);
  file->GetWavData()->AddUncompressRegion(3, 4);
  ASSERT_TRUE(file->LoadByName(File(MonoWav(8)).c_str(), true, nullptr, nullptr));
  EXPECT_TRUE(SilenceOf(*file).empty());
  EXPECT_TRUE(RegionsOf(*file).empty());
}

// In this mode the standard library looks through a whole table before each search in it, so
// nothing is linear.
#ifndef _GLIBCXX_DEBUG

namespace {

double CpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// nLabels events in reverse order, each with a cue point and a labelled text of its own. The
// identifiers are far apart, so that a table indexed by their low bits would put them all in one
// place.
C_Bytes ManyLabels(std::uint32_t nLabels) {
  vcm::C_ByteWriter cue;
  vcm::C_ByteWriter list;
  cue.U32(nLabels);
  list.Text("adtl", 4);
  for (std::uint32_t i = 0; i < nLabels; ++i) {
    const std::uint32_t dwID = i * 0x8000u;
    cue.U32(dwID);
    cue.U32(nLabels - i);
    cue.Text("data", 4);
    cue.Zeros(12);
    list.Bytes(LablBytes(dwID, i % 2 == 0 ? "u_1_2" : "VX_PCM"));
    list.Bytes(LtxtBytes(dwID, 1));
  }
  return MonoWav(16).Chunk("cue ", cue.Data()).Chunk("LIST", list.Data()).Take();
}

}  // namespace

TEST_F(WavFileLoad, TenTimesTheLabels_CostAboutTenTimesTheWork) {
  const auto cost = [this](std::uint32_t nLabels) {
    const std::string strPath = File(ManyLabels(nLabels));
    double dBest = std::numeric_limits<double>::max();
    for (int i = 0; i < 3; ++i) {
      const double dStart = CpuSeconds();
      const C_WavObjectPtr file = LoadWav(strPath);
      EXPECT_TRUE(Write(*file, m_folder.Path("out.wav")));
      dBest = std::min(dBest, CpuSeconds() - dStart);
    }
    return dBest;
  };
  const double dSmall = cost(5'000);
  const double dLarge = cost(50'000);
  // A quadratic step would make it 100 times as much. The limit of 40 leaves room above 10 for
  // caches and for noise on the machine.
  EXPECT_LT(dLarge, 40 * dSmall) << dSmall << " s for 5000, " << dLarge << " s for 50000";
}

#endif
