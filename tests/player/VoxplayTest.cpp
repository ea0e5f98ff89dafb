// SPDX-License-Identifier: Apache-2.0
#include "Voxplay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "RunModes.h"
#include "VTable.h"
#include "VoxplayFixture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;
using Lines = std::vector<std::string>;

static_assert(!std::has_virtual_destructor_v<I_Voxplay>);
static_assert(std::is_final_v<C_Voxplay>);

// --- Before anything is opened

TEST_F(Voxplay, ConstructingAPlayer_CreatesNoFileAndCallsNothing) {
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
  EXPECT_THAT(m_toolbox.Log(), IsEmpty());
  EXPECT_THAT(m_library.Log(), IsEmpty());
}

TEST_F(Voxplay, ReservedOperations_GiveZeroAndDoNothing) {
  EXPECT_EQ(m_pPlayer->Reserved5(), 0);
  EXPECT_EQ(m_pPlayer->Reserved6(), 0);
  EXPECT_EQ(m_pPlayer->Reserved7(), 0);
  EXPECT_EQ(m_pPlayer->Reserved8(), 0);
  EXPECT_EQ(m_pPlayer->Reserved9(), 0);
  EXPECT_EQ(m_pPlayer->Reserved10(), 0);
  EXPECT_THAT(m_toolbox.Log(), IsEmpty());
}

TEST_F(Voxplay, Play_WithNothingOpened_IsTrueAndStartsNothing) {
  EXPECT_TRUE(m_pPlayer->Play());
  EXPECT_THAT(m_toolbox.Log(), IsEmpty());
}

TEST_F(Voxplay, Pause_WithoutAGraph_StillCountsAsPaused) {
  EXPECT_TRUE(m_pPlayer->Pause());
  EXPECT_TRUE(m_pPlayer->Play());
  EXPECT_THAT(m_toolbox.Log(), IsEmpty());
}

TEST_F(Voxplay, Stop_WithoutAGraph_IsTrueAndCallsNothing) {
  EXPECT_TRUE(m_pPlayer->Stop());
  EXPECT_TRUE(m_pPlayer->Play());
  EXPECT_THAT(m_toolbox.Log(), IsEmpty());
}

TEST_F(Voxplay, Release_WithNothingOpened_CallsNothing) {
  Release();
  EXPECT_THAT(m_toolbox.Log(), IsEmpty());
}

TEST_F(Voxplay, SetNotify_WithoutAGraph_StoresNothingAndSucceeds) {
  EXPECT_TRUE(m_pPlayer->SetNotify(OnState, 1));
  EXPECT_TRUE(m_pPlayer->SetNotify(nullptr, 1));
  m_pPlayer->Pause();
  m_pPlayer->Stop();
  EXPECT_EQ(Open("x.wav"), 0);
  m_pPlayer->Play();
  EXPECT_THAT(g_notified, IsEmpty());
}

TEST_F(Voxplay, QueriesBeforeOpen_AreTrueAndZero) {
  int nDuration = -1;
  int nDurationMs = -1;
  float fProgress = -1;
  EXPECT_TRUE(m_pPlayer->GetDuration(&nDuration));
  EXPECT_TRUE(m_pPlayer->GetDurationMs(&nDurationMs));
  EXPECT_TRUE(m_pPlayer->GetProgress(&fProgress));
  EXPECT_EQ(nDuration, 0);
  EXPECT_EQ(nDurationMs, 0);
  EXPECT_TRUE(std::isnan(fProgress));
  EXPECT_EQ(Position(), 0);
  EXPECT_EQ(PositionMs(), 0);
}

TEST_F(Voxplay, Slots_StandInTheirOrder) {
  EXPECT_EQ(Open("x.wav"), 0);
  m_toolbox.ClearLog();
  float fProgress = -1;
  int anValues[4] = {-1, -1, -1, -1};
  EXPECT_TRUE((CallSlot<bool>(m_pPlayer, 0)));
  EXPECT_EQ(m_toolbox.Log().back(), "AUGraphStart(graph1)");
  EXPECT_TRUE((CallSlot<bool>(m_pPlayer, 1)));
  EXPECT_EQ(m_toolbox.Log().back(), "AudioFileReadPacketData(file, 0, packet 31999, 1)");
  EXPECT_TRUE((CallSlot<bool>(m_pPlayer, 2)));
  EXPECT_EQ(m_toolbox.Log().back(), "AUGraphStop(graph1)");
  for (std::size_t nSlot = 4; nSlot < 10; ++nSlot) EXPECT_EQ((CallSlot<int>(m_pPlayer, nSlot)), 0);
  m_toolbox.Fail("AudioComponentFindNext", 1);
  EXPECT_EQ((CallSlot<int, const char*>(m_pPlayer, 10, "none")), 1);
  EXPECT_EQ((CallSlot<int, const char*>(m_pPlayer, 11, "none")), 3);
  EXPECT_FALSE((CallSlot<bool, PFN_VoxplayNotify, unsigned int>(m_pPlayer, 12, nullptr, 0U)));
  EXPECT_TRUE((CallSlot<bool, float*>(m_pPlayer, 13, &fProgress)));
  EXPECT_EQ(fProgress, 0.0F);
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_TRUE((CallSlot<bool, int*>(m_pPlayer, 14 + i, &anValues[i])));
  }
  EXPECT_THAT(anValues, ElementsAre(2, 2000, 0, 0));
  CallSlot<void>(m_pPlayer, 3);
  m_pPlayer = nullptr;
  EXPECT_EQ(m_toolbox.Log().back(), "AUGraphClose(graph1)");
}

// --- Open

TEST_F(Voxplay, Open_OfAMissingFileOrUnknownKind_IsThree) {
  EXPECT_EQ(m_pPlayer->Open(m_folder.Path("missing.wav").c_str()), 3);
  EXPECT_EQ(m_pPlayer->Open(m_folder.Path("missing.kst").c_str()), 3);
  EXPECT_EQ(m_pPlayer->Open(""), 3);
  EXPECT_EQ(m_pPlayer->Open(nullptr), 3);
  EXPECT_EQ(Open("x.vef"), 3);
  EXPECT_EQ(m_strOutput, "");
  EXPECT_THAT(m_toolbox.Log(), IsEmpty());
  EXPECT_THAT(m_library.Log(), IsEmpty());
}

TEST_F(Voxplay, Open_OfAWavFile_PlaysTheFileItself) {
  EXPECT_EQ(Open("a name.wav"), 0);
  const std::string strPath = m_folder.Path("a name.wav");
  const auto log = m_toolbox.Log();
  EXPECT_THAT(Lines(log.begin(), log.begin() + 4),
              ElementsAre("CFURLCreateFromFileSystemRepresentation(default, " + strPath + ", " +
                              std::to_string(strPath.size()) + ", 0)",
                          "AudioFileOpenURL(" + strPath + ", 1, 0)", "CFRelease(url)",
                          "AudioFileGetProperty(file, 'dfmt', 40)"));
  EXPECT_THAT(m_library.Log(), IsEmpty());
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(Voxplay, Open_GivesTheGraphTheFixedFormatForEveryFile) {
  m_toolbox.fileFormat = {8000.0, kAudioFormatULaw, 3, 7, 8, 9, 6, 12, 1};
  EXPECT_EQ(Open("x.wav"), 0);
  EXPECT_EQ(m_toolbox.Count("AudioUnitSetProperty(fileUnit, 8, scope 2, element 0, 44100.0 "), 1);
  const int nChannels =
      m_toolbox.Find("AudioUnitSetProperty(fileUnit, 8, scope 2, element 0, 0.0 ");
  ASSERT_GE(nChannels, 0);
  EXPECT_THAT(m_toolbox.Log().at(static_cast<std::size_t>(nChannels)), EndsWith(" 2 0)"));
  EXPECT_EQ(m_toolbox.Count("AudioFileGetPropertyInfo"), 0) << "two channels, not six";
  EXPECT_EQ(m_toolbox.Count("AudioUnitSetProperty(fileUnit, 3311, scope 0, element 0, flags 1 time "
                            "0.0 file file loop 0 start 0 frames 32000 "),
            1)
      << "one frame per packet, not eight";
  m_pPlayer->Play();
  m_toolbox.Notify(8, 44100.0);
  EXPECT_EQ(PositionMs(), 1000) << "at 44100 Hz, not 8000";
}

TEST_F(Voxplay, Open_BuildsTheGraphThenAsksForNotifiesThenSchedules) {
  EXPECT_EQ(Open("x.wav"), 0);
  const int nInitialize = m_toolbox.Find("AUGraphInitialize");
  const int nNotify = m_toolbox.Find("AUGraphAddRenderNotify(graph1)");
  const int nCount = m_toolbox.Find("AudioFileGetProperty(file, 'pcnt'");
  EXPECT_LT(m_toolbox.Find("AudioFileGetProperty(file, 'dfmt'"), m_toolbox.Find("NewAUGraph"));
  EXPECT_LT(nInitialize, nNotify);
  EXPECT_LT(nNotify, nCount);
  EXPECT_EQ(m_toolbox.Count("AUGraphStart"), 0);
}

TEST_F(Voxplay, Open_PrintsTheDuration) {
  EXPECT_EQ(Open("x.wav"), 0);
  EXPECT_EQ(m_strOutput, "file duration: 2.000000 secs\n");
  m_toolbox.qwPacketCount = 88200;
  EXPECT_EQ(Open("x.wav"), 0);
  EXPECT_EQ(m_strOutput, "file duration: 5.512500 secs\n");
}

TEST_F(Voxplay, Open_WithoutRenderNotifies_StillSucceeds) {
  m_toolbox.Fail("AUGraphAddRenderNotify", -1);
  EXPECT_EQ(Open("x.wav"), 0);
}

TEST_F(Voxplay, EveryFailingPlatformCallOfOpen_IsOneAndPrintsNothing) {
  for (const char* pszCall :
       {"AudioFileOpenURL", "AudioFileGetProperty", "NewAUGraph", "AUGraphAddNode", "AUGraphOpen",
        "AUGraphNodeInfo", "AudioUnitGetProperty", "AudioUnitSetProperty",
        "AUGraphConnectNodeInput", "AUGraphInitialize"}) {
    for (const OSStatus nStatus : {1, -1}) {
      m_toolbox.Reset();
      m_toolbox.Fail(pszCall, nStatus);
      EXPECT_EQ(Open("x.wav"), 1) << pszCall;
      EXPECT_EQ(m_strOutput, "");
      m_toolbox.ClearLog();
      Release();
      EXPECT_EQ(m_toolbox.Count("AUGraphClose"), m_toolbox.Count("AudioFileClose")) << pszCall;
      EXPECT_EQ(CreateVoxplay(&m_pPlayer), 0);
    }
  }
}

TEST_F(Voxplay, Open_WhosePreparationFails_IsOneAndReleaseStillCloses) {
  m_toolbox.Fail("AudioFileGetProperty", -1, 2);
  EXPECT_EQ(Open("x.wav"), 1);
  m_toolbox.ClearLog();
  Release();
  EXPECT_THAT(m_toolbox.Log(),
              ElementsAre("AUGraphStop(graph1)", "AudioFileReadPacketData(file, 0, packet -1, 1)",
                          "AUGraphStop(graph1)", "AUGraphUninitialize(graph1)",
                          "AudioFileClose(file)", "AUGraphClose(graph1)"));
}

TEST_F(Voxplay, Open_ThatFailsBeforeTheGraph_LeavesAnUntouchedPlatform) {
  m_toolbox.Fail("AudioFileOpenURL", -43);
  EXPECT_EQ(Open("x.wav"), 1);
  EXPECT_EQ(m_toolbox.Log().back(), "CFRelease(url)");
  m_toolbox.ClearLog();
  EXPECT_TRUE(m_pPlayer->Play());
  Release();
  EXPECT_THAT(m_toolbox.Log(), IsEmpty());
}

TEST_F(Voxplay, Open_WhoseUrlCannotBeMade_IsNotReleased) {
  m_toolbox.Fail("CFURLCreateFromFileSystemRepresentation", 1);
  m_toolbox.Fail("AudioFileOpenURL", -50);
  EXPECT_EQ(Open("x.wav"), 1);
  EXPECT_EQ(m_toolbox.Count("AudioFileOpenURL(null, 1, 0)"), 1);
  EXPECT_EQ(m_toolbox.Count("CFRelease"), 0);
}

TEST_F(Voxplay, Open_ThatFails_LeavesThePlayerStopped) {
  EXPECT_EQ(Open("x.wav"), 0);
  m_pPlayer->Play();
  EXPECT_EQ(m_pPlayer->Open("missing.wav"), 3);
  m_pPlayer->Play();
  EXPECT_EQ(m_toolbox.Count("AUGraphStart"), 2) << "not taken for playing any more";
}

TEST_F(Voxplay, Open_StopsWhatIsOpenFirst) {
  OpenWithCallback();
  m_pPlayer->Play();
  m_toolbox.ClearLog();
  EXPECT_EQ(m_pPlayer->Open("missing.wav"), 3);
  EXPECT_THAT(m_toolbox.Log(), ElementsAre("AUGraphStop(graph1)",
                                           "AudioFileReadPacketData(file, 0, packet 31999, 1)"));
  EXPECT_THAT(g_notified, ElementsAre(std::pair(2, 77U), std::pair(0, 77U)));
}

TEST_F(Voxplay, Open_WhoseStopFails_IsOne) {
  EXPECT_EQ(Open("x.wav"), 0);
  m_toolbox.Fail("AUGraphStop", -1);
  EXPECT_EQ(Open("x.wav"), 1);
}

TEST_F(Voxplay, SecondOpen_PlaysTheSecondGraph) {
  EXPECT_EQ(Open("x.wav"), 0);
  EXPECT_EQ(Open("y.wav"), 0);
  m_pPlayer->Play();
  EXPECT_EQ(m_toolbox.Log().back(), "AUGraphStart(graph2)");
}

// --- The modes of the command line, on the real player

TEST_F(Voxplay, NormalMode_PollsWithoutAPause) {
  const std::string strPath = m_folder.Write("x.wav", {1});
  m_toolbox.onStart = [this] { m_toolbox.Notify(8, 88200.0); };
  VoxplayLoader loader;
  CaptureStdout();
  EXPECT_EQ(RunPlay(loader, strPath.c_str(), 0), 0);
  EXPECT_EQ(GetCapturedStdout(), "file duration: 2.000000 secs\nPlaying...Finished\n");
  const auto log = m_toolbox.Log();
  const int nStart = m_toolbox.Find("AUGraphStart");
  EXPECT_THAT(
      Lines(log.begin() + nStart, log.end()),
      ElementsAre("AUGraphStart(graph1)",
                  "AudioUnitGetProperty(fileUnit, 3301, scope 0, element 0, 64)",
                  "AUGraphStop(graph1)", "AudioFileReadPacketData(file, 0, packet 31999, 1)"));
  EXPECT_EQ(m_toolbox.Count("usleep"), 1) << "the one of the graph's set-up";
  loader.Release();
}

TEST_F(Voxplay, LengthQuery_BuildsAndPrimesTheGraphAndNeverStartsIt) {
  const std::string strPath = m_folder.Write("x.wav", {1});
  m_toolbox.qwPacketCount = 88200;
  VoxplayLoader loader;
  CaptureStdout();
  EXPECT_EQ(RunGetLength(loader, strPath.c_str()), 5);
  EXPECT_EQ(GetCapturedStdout(), "file duration: 5.512500 secs\n");
  EXPECT_EQ(m_toolbox.Count("AudioUnitSetProperty(fileUnit, 3312"), 1);
  EXPECT_EQ(m_toolbox.Count("AUGraphStart"), 0);
  EXPECT_EQ(m_toolbox.Count("AUGraphClose"), 0);
  loader.Release();
  EXPECT_EQ(m_toolbox.Count("AUGraphClose"), 1);
}

TEST_F(Voxplay, NormalModeOfAFileThatDoesNotDecode_ReleasesThePlayerOnce) {
  const std::string strPath = m_folder.Write("x.kst", {1});
  m_library.creates = {false};
  m_library.loads = {false};
  VoxplayLoader loader;
  EXPECT_EQ(RunPlay(loader, strPath.c_str(), 0), -2);
  loader.Release();
  EXPECT_THAT(m_toolbox.Log(), IsEmpty());
}

}  // namespace
