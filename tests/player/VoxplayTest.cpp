// SPDX-License-Identifier: Apache-2.0
#include "Voxplay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "CAXException.h"
#include "FakeToolbox.h"
#include "PrivateTemp.h"
#include "RunModes.h"
#include "TempFolder.h"
#include "VTable.h"
#include "fakelib/FakeLibrary.h"

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;
using Lines = std::vector<std::string>;

static_assert(!std::has_virtual_destructor_v<I_Voxplay>);
static_assert(std::is_final_v<C_Voxplay>);

std::vector<std::pair<int, unsigned int>> g_notified;
int OnState(int nState, unsigned int dwUserData) {
  g_notified.emplace_back(nState, dwUserData);
  return 12345;
}
int OtherOnState(int /*nState*/, unsigned int /*dwUserData*/) { return 0; }

class Voxplay : public ::testing::Test {
 protected:
  Voxplay() {
    m_toolbox.Reset();
    m_library.Reset();
    m_library.onConvert = [](const char* pszPath) { std::ofstream(pszPath) << "RIFF"; };
    g_notified.clear();
    EXPECT_EQ(CreateVoxplay(&m_pPlayer), 0);
  }
  ~Voxplay() override {
    m_toolbox.Reset();
    m_library.Reset();
    if (m_pPlayer != nullptr) m_pPlayer->Release();
  }

  // Opens an existing file of that name; what was printed goes to m_strOutput.
  int Open(const std::string& strName) {
    const std::string strPath = m_folder.Write(strName, {1});
    CaptureStdout();
    const int nResult = m_pPlayer->Open(strPath.c_str());
    m_strOutput = GetCapturedStdout();
    return nResult;
  }
  void OpenWithCallback() {
    ASSERT_EQ(Open("x.wav"), 0);
    ASSERT_TRUE(m_pPlayer->SetNotify(OnState, 77));
    m_toolbox.ClearLog();
  }
  int PositionMs() {
    int nPosition = -1;
    EXPECT_TRUE(m_pPlayer->GetPositionMs(&nPosition));
    return nPosition;
  }
  int Position() {
    int nPosition = -1;
    EXPECT_TRUE(m_pPlayer->GetPosition(&nPosition));
    return nPosition;
  }
  void Release() {
    m_pPlayer->Release();
    m_pPlayer = nullptr;
  }
  template <typename Work>
  static std::string Thrown(Work work) {
    try {
      work();
    } catch (const CAXException& failure) {
      return failure.Operation();
    }
    return "nothing";
  }

  C_FakeToolbox& m_toolbox = C_FakeToolbox::Get();
  C_FakeLibrary& m_library = C_FakeLibrary::Get();
  C_PrivateTemp m_temp;
  C_TempFolder m_folder;
  I_Voxplay* m_pPlayer = nullptr;
  std::string m_strOutput;
};

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
  for (std::size_t i = 0; i < 4; ++i)
    EXPECT_TRUE((CallSlot<bool, int*>(m_pPlayer, 14 + i, &anValues[i])));
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

// --- Decoding

TEST_F(Voxplay, Open_OfAKnownCodecFile_ConvertsItAndPlaysTheResult) {
  EXPECT_EQ(Open("x.kst"), 0);
  EXPECT_THAT(m_library.Log(),
              ElementsAre("CreateWavFile(" + m_folder.Path("x.kst") + ", true, true, null, null)",
                          "file::Convert(32769, <temporary>.wav, true, false, null, false, 0)",
                          "file::Release", "~C_WavFileFormat"));
  ASSERT_EQ(m_temp.NewFiles().size(), 1U);
  const std::string strWav = std::string(P_tmpdir) + "/" + m_temp.NewFiles().front();
  EXPECT_EQ(ShortName(strWav.c_str()), "<temporary>.wav");
  EXPECT_EQ(m_toolbox.Count("AudioFileOpenURL(" + strWav + ", 1, 0)"), 1);
}

TEST_F(Voxplay, DecodedFile_StaysInTheTemporaryDirectory) {
  EXPECT_EQ(Open("x.kst"), 0);
  Release();
  EXPECT_EQ(m_temp.NewFiles().size(), 1U);
}

TEST_F(Voxplay, EveryPlayer_HasADecodedFileOfItsOwn) {
  EXPECT_EQ(Open("x.kst"), 0);
  Release();
  ASSERT_EQ(CreateVoxplay(&m_pPlayer), 0);
  EXPECT_EQ(Open("x.kst"), 0);
  EXPECT_EQ(m_temp.NewFiles().size(), 2U);
}

TEST_F(Voxplay, BareStreamWhoseDecodingThrows_LeavesNothing) {
  m_library.creates = {false, true};
  m_library.onConvert = [](const char* /*pszPath*/) { throw std::bad_alloc(); };
  EXPECT_EQ(Open("x.kst"), 1);
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(Voxplay, DecodedFile_IsReadableByItsOwnerAlone) {
  EXPECT_EQ(Open("x.kst"), 0);
  struct stat info {};
  ASSERT_EQ(stat((std::string(P_tmpdir) + "/" + m_temp.NewFiles().at(0)).c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777U, 0600U);
}

TEST_F(Voxplay, SecondDecode_ReplacesTheFirst) {
  EXPECT_EQ(Open("x.kst"), 0);
  const Lines first = m_temp.NewFiles();
  EXPECT_EQ(Open("y.adp"), 0);
  EXPECT_EQ(m_temp.NewFiles(), first);
}

// Whoever puts a link in the place of the decoded file between two runs gets nothing written
// through it.
TEST_F(Voxplay, LinkInThePlaceOfTheDecodedFile_IsReplacedAndNotFollowed) {
  EXPECT_EQ(Open("x.kst"), 0);
  const std::string strWav = std::string(P_tmpdir) + "/" + m_temp.NewFiles().at(0);
  m_folder.Write("victim", {1, 2, 3});
  std::filesystem::remove(strWav);
  std::filesystem::create_symlink(m_folder.Path("victim"), strWav);
  EXPECT_EQ(Open("x.kst"), 0);
  EXPECT_FALSE(std::filesystem::is_symlink(strWav));
  EXPECT_EQ(m_folder.Read("victim"), (std::vector<std::uint8_t>{1, 2, 3}));
}

TEST_F(Voxplay, FolderInThePlaceOfTheDecodedFile_IsADecodingFailure) {
  EXPECT_EQ(Open("x.kst"), 0);
  const std::string strWav = std::string(P_tmpdir) + "/" + m_temp.NewFiles().at(0);
  std::filesystem::remove(strWav);
  std::filesystem::create_directory(strWav);
  EXPECT_EQ(Open("x.kst"), 2);
  EXPECT_TRUE(std::filesystem::is_directory(strWav));
}

TEST_F(Voxplay, FailedConversion_IsTwoAndLeavesNothing) {
  m_library.converts = {false};
  EXPECT_EQ(Open("x.kst"), 2);
  EXPECT_EQ(m_strOutput, "");
  EXPECT_EQ(m_library.Log().at(2), "file::Release");
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
  EXPECT_THAT(m_toolbox.Log(), IsEmpty());
}

TEST_F(Voxplay, BareStream_IsWrittenTwice) {
  m_library.creates = {false, true};
  EXPECT_EQ(Open("x.kst"), 0);
  EXPECT_THAT(m_library.Log(),
              ElementsAre("CreateWavFile(" + m_folder.Path("x.kst") + ", true, true, null, null)",
                          "LoadByName(<temporary>.kst, true, null, null)",
                          "kestrel::Convert(32769, <temporary>.wav, true, false, null, false, 0)",
                          "CreateWavFile(<temporary>.kst, true, true, null, null)",
                          "file::Convert(32769, <temporary>.wav, true, false, null, false, 0)",
                          "file::Release", "~C_WavFileFormat"));
  ASSERT_EQ(m_temp.NewFiles().size(), 1U) << "the copy is gone";
  EXPECT_TRUE(m_temp.NewFiles().at(0).ends_with(".wav"));
}

TEST_F(Voxplay, BareStream_IsLoadedFromACopyWithAHeader) {
  m_library.creates = {false, true};
  std::vector<std::vector<char>> copies;
  m_library.onConvert = [&](const char* /*pszPath*/) {
    for (const auto& strName : m_temp.NewFiles()) {
      if (!strName.ends_with(".kst")) continue;
      std::ifstream file(std::string(P_tmpdir) + "/" + strName, std::ios::binary);
      copies.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
  };
  EXPECT_EQ(Open("x.kst"), 0);
  ASSERT_EQ(copies.size(), 2U);
  ASSERT_EQ(copies[0].size(), 49U) << "48 bytes of header and the one of the file";
  const auto Byte = [&](std::size_t i) { return static_cast<unsigned char>(copies[0][i]); };
  EXPECT_EQ(std::string(copies[0].data() + 4, 14), "VOXELTRONIC SP");
  EXPECT_EQ(Byte(20), 254);
  EXPECT_EQ(Byte(21), 2);
  EXPECT_EQ(Byte(22) | Byte(23) << 8, 14);
  EXPECT_EQ(Byte(26) | Byte(27) << 8 | Byte(28) << 16, 16000);
  EXPECT_EQ(Byte(48), 1);
}

TEST_F(Voxplay, BareStreamThatCannotBeLoaded_IsTwoAndTheCopyIsGone) {
  m_library.creates = {false};
  m_library.loads = {false};
  EXPECT_EQ(Open("x.kst"), 2);
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(Voxplay, BareStreamThatCannotBeWritten_IsTwoAndTheCopyIsGone) {
  m_library.creates = {false, true};
  m_library.converts = {false};
  EXPECT_EQ(Open("x.kst"), 2);
  EXPECT_EQ(m_library.Log().size(), 4U) << "not reopened";
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(Voxplay, BareStreamThatCannotBeReopened_IsOneAndTheCopyIsGone) {
  m_library.creates = {false, false};
  EXPECT_EQ(Open("x.kst"), 1);
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(Voxplay, BareStreamWhoseSecondWriteFails_IsTwoAndTheCopyIsGone) {
  m_library.creates = {false, true};
  m_library.converts = {true, false};
  EXPECT_EQ(Open("x.kst"), 2);
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(Voxplay, FolderNamedLikeACodecFile_IsTwoAndNothingIsCreated) {
  std::filesystem::create_directory(m_folder.Path("x.kst"));
  m_library.creates = {false};
  m_library.loads = {false};
  EXPECT_EQ(m_pPlayer->Open(m_folder.Path("x.kst").c_str()), 2);
  EXPECT_EQ(m_library.Log().at(1), "LoadByName(, true, null, null)");
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(Voxplay, EveryExceptionOutOfTheDecoder_IsOne) {
  m_library.onCreate = [](const char*, PFN_DecodedData) { throw std::bad_alloc(); };
  EXPECT_EQ(Open("x.kst"), 1);
  m_library.onCreate = [](const char*, PFN_DecodedData) { throw std::out_of_range("index"); };
  EXPECT_EQ(Open("x.kst"), 1);
  m_library.onCreate = [](const char*, PFN_DecodedData) { throw 42; };  // NOLINT: not an exception
  EXPECT_EQ(Open("x.kst"), 1);
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

// --- States

TEST_F(Voxplay, Play_StartsTheGraphAndTellsTheCallback) {
  OpenWithCallback();
  EXPECT_TRUE(m_pPlayer->Play());
  EXPECT_THAT(m_toolbox.Log(), ElementsAre("AUGraphStart(graph1)"));
  EXPECT_THAT(g_notified, ElementsAre(std::pair(2, 77U)));
}

TEST_F(Voxplay, Play_WhilePlaying_IsTrueAndDoesNothing) {
  OpenWithCallback();
  m_pPlayer->Play();
  EXPECT_TRUE(m_pPlayer->Play());
  EXPECT_EQ(m_toolbox.Count("AUGraphStart"), 1);
  EXPECT_EQ(g_notified.size(), 1U);
}

TEST_F(Voxplay, PauseAndPlay_ResumeWithoutSchedulingAgain) {
  OpenWithCallback();
  m_pPlayer->Play();
  EXPECT_TRUE(m_pPlayer->Pause());
  EXPECT_TRUE(m_pPlayer->Play());
  EXPECT_THAT(m_toolbox.Log(),
              ElementsAre("AUGraphStart(graph1)", "AUGraphStop(graph1)", "AUGraphStart(graph1)"));
  EXPECT_THAT(g_notified, ElementsAre(std::pair(2, 77U), std::pair(1, 77U), std::pair(2, 77U)));
}

TEST_F(Voxplay, Stop_TellsTheCallbackAndThenReadsTheLastPacket) {
  m_toolbox.qwPacketCount = 16016;
  OpenWithCallback();
  m_pPlayer->Play();
  m_toolbox.ClearLog();
  g_notified.clear();
  EXPECT_TRUE(m_pPlayer->SetNotify(
      [](int nState, unsigned int dwUserData) {
        g_notified.emplace_back(nState, dwUserData);
        EXPECT_EQ(C_FakeToolbox::Get().Count("AUGraphStop"), 1);
        EXPECT_EQ(C_FakeToolbox::Get().Count("AudioFileReadPacketData"), 0);
        return 0;
      },
      5));
  EXPECT_TRUE(m_pPlayer->Stop());
  EXPECT_THAT(m_toolbox.Log(), ElementsAre("AUGraphIsRunning(graph1)", "AUGraphStop(graph1)",
                                           "AudioFileReadPacketData(file, 0, packet 16015, 1)"));
  EXPECT_THAT(g_notified, ElementsAre(std::pair(0, 5U)));
}

TEST_F(Voxplay, Stop_IgnoresThatTheLastPacketCannotBeRead) {
  OpenWithCallback();
  m_toolbox.Fail("AudioFileReadPacketData", -39);
  EXPECT_TRUE(m_pPlayer->Stop());
}

TEST_F(Voxplay, StopAndPlay_StartWithoutSchedulingAgain) {
  OpenWithCallback();
  m_pPlayer->Play();
  m_pPlayer->Stop();
  m_pPlayer->Play();
  EXPECT_EQ(m_toolbox.Count("AUGraphStart"), 2);
  EXPECT_EQ(m_toolbox.Count("AudioUnitSetProperty"), 0);
}

TEST_F(Voxplay, SetNotify_WithNull_IsRefusedAndTheOldCallbackStays) {
  OpenWithCallback();
  EXPECT_FALSE(m_pPlayer->SetNotify(nullptr, 1));
  EXPECT_THAT(m_toolbox.Log(), IsEmpty());
  m_pPlayer->Play();
  EXPECT_THAT(g_notified, ElementsAre(std::pair(2, 77U)));
}

TEST_F(Voxplay, SetNotify_OfAGraphThatDoesNotRun_CountsAsStopped) {
  OpenWithCallback();
  m_pPlayer->Play();
  EXPECT_TRUE(m_pPlayer->SetNotify(OtherOnState, 1));
  EXPECT_TRUE(m_pPlayer->Play());
  EXPECT_EQ(m_toolbox.Count("AUGraphStart"), 2);
}

TEST_F(Voxplay, SetNotify_OfARunningGraph_LeavesTheState) {
  OpenWithCallback();
  m_pPlayer->Play();
  m_toolbox.bRunning = 1;
  EXPECT_TRUE(m_pPlayer->SetNotify(OtherOnState, 1));
  EXPECT_TRUE(m_pPlayer->Play());
  EXPECT_EQ(m_toolbox.Count("AUGraphStart"), 1);
}

TEST_F(Voxplay, Release_ClosesInThisOrderAndTellsNobody) {
  OpenWithCallback();
  m_pPlayer->Play();
  m_toolbox.ClearLog();
  g_notified.clear();
  Release();
  EXPECT_THAT(m_toolbox.Log(), ElementsAre("AUGraphStop(graph1)",
                                           "AudioFileReadPacketData(file, 0, packet 31999, 1)",
                                           "AUGraphStop(graph1)", "AUGraphUninitialize(graph1)",
                                           "AudioFileClose(file)", "AUGraphClose(graph1)"));
  EXPECT_THAT(g_notified, IsEmpty());
}

TEST_F(Voxplay, FailingPlatformCalls_PassToTheCaller) {
  OpenWithCallback();
  for (const OSStatus nStatus : {1, -1}) {
    m_toolbox.Fail("AUGraphStart", nStatus);
    EXPECT_EQ(Thrown([&] { m_pPlayer->Play(); }), "AUGraphStart");
    m_toolbox.Fail("AUGraphStop", nStatus);
    EXPECT_EQ(Thrown([&] { m_pPlayer->Pause(); }), "AUGraphStop");
    m_toolbox.Fail("AUGraphStop", nStatus);
    EXPECT_EQ(Thrown([&] { m_pPlayer->Stop(); }), "AUGraphStop");
    m_toolbox.Fail("AUGraphIsRunning", nStatus);
    EXPECT_EQ(Thrown([&] { m_pPlayer->SetNotify(OtherOnState, 1); }), "AUGraphIsRunning");
  }
  EXPECT_THAT(g_notified, IsEmpty());
  m_pPlayer->Play();
  EXPECT_THAT(g_notified, ElementsAre(std::pair(2, 77U))) << "the old callback";
}

TEST_F(Voxplay, EveryFailingStepOfRelease_ThrowsItsOwnName) {
  OpenWithCallback();
  for (const auto& [pszCall, nOccurrence] :
       std::vector<std::pair<const char*, int>>{{"AUGraphStop", 1},
                                                {"AUGraphStop", 2},
                                                {"AUGraphUninitialize", 1},
                                                {"AudioFileClose", 1},
                                                {"AUGraphClose", 1}}) {
    m_toolbox.ClearLog();
    m_toolbox.Fail(pszCall, -1, nOccurrence);
    EXPECT_EQ(Thrown([&] { m_pPlayer->Release(); }), pszCall);
    EXPECT_THAT(m_toolbox.Log().back(), StartsWith(pszCall));
  }
}

// --- Position

TEST_F(Voxplay, StartIsCaptured_OnlyFromAValidTimeOfZeroOrMore) {
  EXPECT_EQ(Open("x.wav"), 0);
  m_toolbox.Notify(8, 44100.0);
  EXPECT_EQ(PositionMs(), 1000) << "flags 0: not valid";
  m_toolbox.startStamp.mFlags = kAudioTimeStampSampleTimeValid;
  m_toolbox.startStamp.mSampleTime = -1.0;
  m_toolbox.Notify(8, 44100.0);
  EXPECT_EQ(PositionMs(), 1000) << "not started yet";
  m_toolbox.startStamp.mFlags = kAudioTimeStampHostTimeValid;
  m_toolbox.startStamp.mSampleTime = 22050.0;
  m_toolbox.Notify(8, 44100.0);
  EXPECT_EQ(PositionMs(), 1000) << "a host time is no sample time";
  m_toolbox.startStamp.mSampleTime = std::nan("");
  m_toolbox.startStamp.mFlags = kAudioTimeStampSampleTimeValid;
  m_toolbox.Notify(8, 44100.0);
  EXPECT_EQ(PositionMs(), 1000);
  m_toolbox.startStamp.mSampleTime = 22050.0;
  m_toolbox.Fail("AudioUnitGetProperty", -1);
  m_toolbox.Notify(8, 44100.0);
  EXPECT_EQ(PositionMs(), 1000) << "could not be read";
  m_toolbox.Notify(8, 44100.0);
  EXPECT_EQ(PositionMs(), 500);
}

TEST_F(Voxplay, Start_IsCapturedOnce) {
  EXPECT_EQ(Open("x.wav"), 0);
  m_toolbox.startStamp.mFlags = kAudioTimeStampSampleTimeValid;
  m_toolbox.startStamp.mSampleTime = 0.0;
  m_toolbox.ClearLog();
  m_toolbox.Notify(4, 0.0);
  m_toolbox.startStamp.mSampleTime = 22050.0;
  m_toolbox.Notify(8, 44100.0);
  EXPECT_EQ(PositionMs(), 1000);
  EXPECT_THAT(m_toolbox.Log(),
              ElementsAre("AudioUnitGetProperty(fileUnit, 3301, scope 0, element 0, 64)"));
}

TEST_F(Voxplay, OnlyFinishedCycles_MoveThePosition) {
  EXPECT_EQ(Open("x.wav"), 0);
  EXPECT_EQ(m_toolbox.Notify(4, 44100.0), noErr);
  EXPECT_EQ(PositionMs(), 0);
  EXPECT_EQ(m_toolbox.Notify(8, 44100.0), noErr);
  EXPECT_EQ(PositionMs(), 1000);
  m_toolbox.Notify(16, 88200.0);
  EXPECT_EQ(PositionMs(), 1000);
  m_toolbox.Notify(8 | 16, 88200.0);
  EXPECT_EQ(PositionMs(), 2000);
}

TEST_F(Voxplay, Position_IsTruncated) {
  EXPECT_EQ(Open("x.wav"), 0);
  const std::vector<std::pair<double, std::pair<int, int>>> positions = {
      {44100.0, {1, 1000}}, {66150.0, {1, 1500}}, {44099.0, {0, 999}},  {44.9, {0, 0}},
      {44.1, {0, 0}},       {45.0, {0, 1}},       {88199.9, {1, 1999}}, {88200.0, {2, 2000}}};
  for (const auto& [dTime, expected] : positions) {
    m_toolbox.Notify(8, dTime);
    EXPECT_EQ(std::pair(Position(), PositionMs()), expected) << dTime;
  }
}

TEST_F(Voxplay, PositionBeforeTheStartOrWithoutATime_IsZero) {
  EXPECT_EQ(Open("x.wav"), 0);
  m_toolbox.startStamp.mFlags = kAudioTimeStampSampleTimeValid;
  m_toolbox.startStamp.mSampleTime = 50000.0;
  for (const double dTime :
       {100.0, 49999.0, -1.0, -1e300, std::nan(""), -std::numeric_limits<double>::infinity()}) {
    m_toolbox.Notify(8, dTime);
    EXPECT_EQ(Position(), 0) << dTime;
    EXPECT_EQ(PositionMs(), 0) << dTime;
  }
}

TEST_F(Voxplay, PositionBeyondEveryInteger_IsTheLargest) {
  EXPECT_EQ(Open("x.wav"), 0);
  for (const double dTime : {1e18, 1e300, std::numeric_limits<double>::infinity()}) {
    m_toolbox.Notify(8, dTime);
    EXPECT_EQ(Position(), 2147483647) << dTime;
    EXPECT_EQ(PositionMs(), 2147483647) << dTime;
  }
}

TEST_F(Voxplay, Duration_IsTruncated) {
  const std::vector<std::pair<UInt64, std::pair<int, int>>> durations = {
      {88200, {5, 5512}}, {16016, {1, 1000}}, {32000, {2, 2000}}, {0, {0, 0}}, {15999, {0, 999}}};
  for (const auto& [qwPackets, expected] : durations) {
    m_toolbox.qwPacketCount = qwPackets;
    EXPECT_EQ(Open("x.wav"), 0);
    int nSeconds = -1;
    int nMilliseconds = -1;
    EXPECT_TRUE(m_pPlayer->GetDuration(&nSeconds));
    EXPECT_TRUE(m_pPlayer->GetDurationMs(&nMilliseconds));
    EXPECT_EQ(std::pair(nSeconds, nMilliseconds), expected) << qwPackets;
    m_toolbox.Reset();
  }
}

TEST_F(Voxplay, DurationBeyondEveryInteger_IsTheLargest) {
  m_toolbox.qwPacketCount = ~UInt64{0};
  EXPECT_EQ(Open("x.wav"), 0);
  int nValue = 0;
  m_pPlayer->GetDuration(&nValue);
  EXPECT_EQ(nValue, 2147483647);
  m_pPlayer->GetDurationMs(&nValue);
  EXPECT_EQ(nValue, 2147483647);
}

TEST_F(Voxplay, Progress_IsPositionByDuration) {
  EXPECT_EQ(Open("x.wav"), 0);
  float fProgress = -1;
  m_toolbox.Notify(8, 44100.0);
  EXPECT_TRUE(m_pPlayer->GetProgress(&fProgress));
  EXPECT_EQ(fProgress, 0.5F);
}

TEST_F(Voxplay, ProgressOfAnEmptySound_IsNoCrash) {
  m_toolbox.qwPacketCount = 0;
  EXPECT_EQ(Open("x.wav"), 0);
  EXPECT_EQ(m_strOutput, "file duration: 0.000000 secs\n");
  float fProgress = 0;
  EXPECT_TRUE(m_pPlayer->GetProgress(&fProgress));
  EXPECT_TRUE(std::isnan(fProgress));
  m_toolbox.Notify(8, 44100.0);
  EXPECT_TRUE(m_pPlayer->GetProgress(&fProgress));
  EXPECT_TRUE(std::isinf(fProgress));
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
