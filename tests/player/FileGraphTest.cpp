// SPDX-License-Identifier: Apache-2.0
#include "FileGraph.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "CAXException.h"
#include "FakeToolbox.h"
#include "KeptForProcess.h"

namespace {

using ::testing::ElementsAre;

constexpr AudioStreamBasicDescription kStereo = {44100.0, kAudioFormatLinearPCM, 41, 4, 1, 4, 2, 32,
                                                 0};

static_assert(kPlaybackFormat.mSampleRate == kStereo.mSampleRate &&
              kPlaybackFormat.mFormatID == kStereo.mFormatID &&
              kPlaybackFormat.mFormatFlags == kStereo.mFormatFlags &&
              kPlaybackFormat.mBytesPerPacket == kStereo.mBytesPerPacket &&
              kPlaybackFormat.mFramesPerPacket == kStereo.mFramesPerPacket &&
              kPlaybackFormat.mBytesPerFrame == kStereo.mBytesPerFrame &&
              kPlaybackFormat.mChannelsPerFrame == kStereo.mChannelsPerFrame &&
              kPlaybackFormat.mBitsPerChannel == kStereo.mBitsPerChannel &&
              kPlaybackFormat.mReserved == 0);

AudioStreamBasicDescription Surround() {
  AudioStreamBasicDescription format = kStereo;
  format.mChannelsPerFrame = 6;
  return format;
}

class FileGraph : public ::testing::Test {
 protected:
  FileGraph() {
    m_toolbox.Reset();
    AudioFileOpenURL(nullptr, kAudioFileReadPermission, 0, &m_file);
    m_toolbox.ClearLog();
  }
  void Make(const AudioStreamBasicDescription& format = kStereo) {
    MakeFileGraph(&m_graph, &m_unit, format, m_file);
  }
  double Prepare(const AudioStreamBasicDescription& format = kStereo) {
    return PrepareFileUnit(&m_schedule, m_unit, format, m_file);
  }
  // The text and the status of the exception that the work throws.
  template <typename Work>
  static std::pair<std::string, OSStatus> Thrown(Work work) {
    try {
      work();
    } catch (const CAXException& failure) {
      return {failure.Operation(), failure.Error()};
    }
    return {"nothing", 0};
  }

  C_FakeToolbox& m_toolbox = C_FakeToolbox::Get();
  AudioFileID m_file = nullptr;
  AUGraph m_graph = nullptr;
  CAAudioUnit m_unit;
  S_FileSchedule m_schedule;
};

TEST_F(FileGraph, Make_CallsTheToolboxInThisOrder) {
  Make();
  EXPECT_THAT(
      m_toolbox.Log(),
      ElementsAre(
          "NewAUGraph()", "AUGraphAddNode(graph1, 'auou' 'def ' 'appl' 0 0)",
          "AUGraphAddNode(graph1, 'augn' 'afpl' 'appl' 0 0)", "AUGraphOpen(graph1)",
          "AUGraphNodeInfo(graph1, node 2)",
          "AudioUnitGetProperty(fileUnit, 8, scope 2, element 0, 40)",
          ::testing::StartsWith("AudioUnitSetProperty(fileUnit, 8, scope 2, element 0, "),
          "AudioUnitGetProperty(fileUnit, 8, scope 2, element 0, 40)",
          ::testing::StartsWith("AudioUnitSetProperty(fileUnit, 8, scope 2, element 0, 44100.0 "),
          "AudioUnitSetProperty(fileUnit, 3310, scope 0, element 0, file x1)",
          "AUGraphConnectNodeInput(graph1, node 2 output 0 to node 1 input 0)",
          "AUGraphInitialize(graph1)", "usleep(10000)"));
}

TEST_F(FileGraph, Make_SetsTheChannelsBeforeTheRate) {
  Make();
  const auto log = m_toolbox.Log();
  EXPECT_THAT(log.at(6), ::testing::EndsWith(" 2 0)")) << "channels, in a format all zero so far";
  EXPECT_THAT(log.at(6), ::testing::HasSubstr("element 0, 0.0 "));
  EXPECT_THAT(log.at(8), ::testing::HasSubstr("element 0, 44100.0 "));
}

TEST_F(FileGraph, Make_GivesGraphAndFilePlayer) {
  Make();
  ASSERT_NE(m_graph, nullptr);
  EXPECT_EQ(m_unit.GetAUNode(), 2);
  EXPECT_TRUE(m_unit.IsValid());
}

struct S_Step {
  const char* pszCall;
  int nOccurrence;
  const char* pszText;
};

TEST_F(FileGraph, EveryFailingStepOfMake_ThrowsItsTextAndTearsNothingDown) {
  const std::vector<S_Step> steps = {
      {"NewAUGraph", 1, "NewAUGraph"},
      {"AUGraphAddNode", 1, "AUGraphAddNode"},
      {"AUGraphAddNode", 2, "AUGraphAddNode"},
      {"AUGraphOpen", 1, "AUGraphOpen"},
      {"AUGraphNodeInfo", 1, "AUGraphNodeInfo"},
      {"AudioUnitGetProperty", 1, "SetNumberChannels"},
      {"AudioUnitSetProperty", 1, "SetNumberChannels"},
      {"AudioUnitGetProperty", 2, "SetSampleRate"},
      {"AudioUnitSetProperty", 2, "SetSampleRate"},
      {"AudioUnitSetProperty", 3, "SetScheduleFile"},
      {"AUGraphConnectNodeInput", 1, "AUGraphConnectNodeInput"},
      {"AUGraphInitialize", 1, "AUGraphInitialize"},
  };
  for (const S_Step& step : steps) {
    for (const OSStatus nStatus : {1, -1, -10868}) {
      m_toolbox.Reset();
      m_toolbox.Fail(step.pszCall, nStatus, step.nOccurrence);
      EXPECT_EQ(Thrown([&] { Make(); }), std::pair(std::string(step.pszText), nStatus));
      EXPECT_THAT(m_toolbox.Log().back(), ::testing::StartsWith(step.pszCall));
      for (const char* pszTearDown : {"AUGraphClose", "DisposeAUGraph", "AUGraphUninitialize",
                                      "AUGraphStop", "AudioFileClose"}) {
        EXPECT_EQ(m_toolbox.Count(pszTearDown), 0) << step.pszCall << " " << pszTearDown;
      }
    }
  }
}

TEST_F(FileGraph, ChannelLayout_GoesToTheOutputFromThreeChannelsOn) {
  m_toolbox.cbLayout = 32;
  AudioStreamBasicDescription format = kStereo;
  format.mChannelsPerFrame = 3;
  Make(format);
  const auto log = m_toolbox.Log();
  ASSERT_GE(log.size(), 5U);
  EXPECT_THAT(
      std::vector<std::string>(log.end() - 5, log.end()),
      ElementsAre("usleep(10000)", "AudioFileGetPropertyInfo(file, 'cmap')",
                  "AudioFileGetProperty(file, 'cmap', 32)", "AUGraphNodeInfo(graph1, node 1)",
                  "AudioUnitSetProperty(outputNodeUnit, 19, scope 1, element 0, 32 bytes)"));
}

TEST_F(FileGraph, ChannelLayout_IsNotAskedForBelowThreeChannels) {
  m_toolbox.cbLayout = 32;
  Make(kStereo);
  EXPECT_EQ(m_toolbox.Count("AudioFileGetPropertyInfo"), 0);
}

TEST_F(FileGraph, ChannelLayoutOfNoBytes_IsLeftOut) {
  m_toolbox.cbLayout = 0;
  Make(Surround());
  EXPECT_EQ(m_toolbox.Log().back(), "AudioFileGetPropertyInfo(file, 'cmap')");
}

int CountKeptLayouts() {
  int nCount = 0;
  for (const S_Kept* pKept = GetKeptForProcess(); pKept != nullptr; pKept = pKept->pNext) {
    if (std::string(pKept->pszReason) == "layout of a graph that failed") ++nCount;
  }
  return nCount;
}

TEST_F(FileGraph, ChannelLayout_IsKeptWhenALaterCallFails) {
  const std::vector<S_Step> steps = {
      {"AudioFileGetProperty", 1, "Get Layout From AudioFile"},
      {"AUGraphNodeInfo", 2, "AUGraphNodeInfo"},
      {"AudioUnitSetProperty", 4, "kAudioUnitProperty_AudioChannelLayout"},
  };
  for (const S_Step& step : steps) {
    m_toolbox.Reset();
    m_toolbox.cbLayout = 64;
    m_toolbox.Fail(step.pszCall, -50, step.nOccurrence);
    const int nKept = CountKeptLayouts();
    EXPECT_EQ(Thrown([&] { Make(Surround()); }), std::pair(std::string(step.pszText), -50));
    EXPECT_EQ(CountKeptLayouts(), nKept + 1) << step.pszText;
  }
}

TEST_F(FileGraph, ChannelLayout_IsFreedAfterUse) {
  m_toolbox.cbLayout = 64;
  const int nKept = CountKeptLayouts();
  Make(Surround());
  EXPECT_EQ(CountKeptLayouts(), nKept);
}

TEST_F(FileGraph, ChannelLayoutWhoseSizeCannotBeAsked_Throws) {
  m_toolbox.cbLayout = 64;
  m_toolbox.Fail("AudioFileGetPropertyInfo", -50);
  const int nKept = CountKeptLayouts();
  EXPECT_EQ(Thrown([&] { Make(Surround()); }),
            std::pair(std::string("kAudioFilePropertyChannelLayout"), -50));
  EXPECT_EQ(CountKeptLayouts(), nKept);
}

TEST_F(FileGraph, Prepare_CallsTheToolboxInThisOrder) {
  Make();
  m_toolbox.ClearLog();
  Prepare();
  EXPECT_THAT(
      m_toolbox.Log(),
      ElementsAre("AudioFileGetProperty(file, 'pcnt', 8)",
                  "AudioUnitSetProperty(fileUnit, 3311, scope 0, element 0, flags 1 time 0.0 file "
                  "file loop 0 start 0 frames 32000 completion null rest zero)",
                  "AudioUnitSetProperty(fileUnit, 3312, scope 0, element 0, 0)",
                  "AudioUnitSetProperty(fileUnit, 3301, scope 0, element 0, flags 1 time -1.0)"));
}

TEST_F(FileGraph, Prepare_StoresPacketsAndWhatTheDescriptionSays) {
  AudioStreamBasicDescription format = kStereo;
  format.mFramesPerPacket = 3;
  format.mSampleRate = 8000.0;
  m_toolbox.qwPacketCount = 1000;
  EXPECT_DOUBLE_EQ(Prepare(format), 0.1875);
  EXPECT_EQ(m_schedule.qwPacketCount, 1000U);
  EXPECT_EQ(m_schedule.dwFramesPerPacket, 3U);
  EXPECT_EQ(m_schedule.dSampleRate, 8000.0);
  EXPECT_EQ(m_toolbox.Count("AudioUnitSetProperty(null, 3311, scope 0, element 0, flags 1 time 0.0 "
                            "file file loop 0 start 0 frames 3000 "),
            1);
}

TEST_F(FileGraph, Duration_DividesBySixteenThousandForEveryRate) {
  const std::vector<std::pair<UInt64, double>> durations = {
      {0, 0.0},     {32000, 2.0},      {88200, 5.5125}, {96000, 6.0},
      {16000, 1.0}, {3829, 0.2393125}, {16016, 1.001},  {1, 0.0000625}};
  for (const auto& [qwPackets, dSeconds] : durations) {
    m_toolbox.qwPacketCount = qwPackets;
    EXPECT_DOUBLE_EQ(Prepare(), dSeconds) << qwPackets;
  }
}

TEST_F(FileGraph, PacketsBeyond32Bits_CountFullyInTheDurationAndLowInTheRegion) {
  m_toolbox.qwPacketCount = (UInt64{1} << 32) + 5;
  EXPECT_DOUBLE_EQ(Prepare(), 4294967301.0 / 16000.0);
  EXPECT_NE(m_toolbox.Log().at(1).find(" frames 5 "), std::string::npos);
}

TEST_F(FileGraph, EveryFailingStepOfPrepare_ThrowsItsText) {
  const std::vector<S_Step> steps = {
      {"AudioFileGetProperty", 1, "kAudioFilePropertyAudioDataPacketCount"},
      {"AudioUnitSetProperty", 1, "kAudioUnitProperty_ScheduledFileRegion"},
      {"AudioUnitSetProperty", 2, "kAudioUnitProperty_ScheduledFilePrime"},
      {"AudioUnitSetProperty", 3, "kAudioUnitProperty_ScheduleStartTimeStamp"},
  };
  for (const S_Step& step : steps) {
    for (const OSStatus nStatus : {1, -1}) {
      m_toolbox.Reset();
      m_toolbox.Fail(step.pszCall, nStatus, step.nOccurrence);
      EXPECT_EQ(Thrown([&] { Prepare(); }), std::pair(std::string(step.pszText), nStatus));
    }
  }
}

}  // namespace
