// SPDX-License-Identifier: Apache-2.0
#include "RealTimePlayer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "FakeToolbox.h"
#include "I_Voxplay.h"
#include "KeptForProcess.h"
#include "PcmQueue.h"
#include "PrivateTemp.h"
#include "RunModes.h"
#include "TempFolder.h"
#include "fakelib/FakeLibrary.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Lines = std::vector<std::string>;

class RealTimePlayer : public ::testing::Test {
 protected:
  RealTimePlayer() {
    m_toolbox.Reset();
    m_library.Reset();
  }
  ~RealTimePlayer() override {
    m_toolbox.Reset();
    m_library.Reset();
  }
  int Play(const std::string& strPath) { return PlayRealTime(this, &m_decoder, strPath.c_str()); }
  // The probe succeeds, and then the decoder delivers the bytes in pieces.
  void DecodesTo(const std::vector<UInt8>& bytes, unsigned int cbPiece) {
    m_library.onCreate = [bytes, cbPiece](const char* /*pszPath*/, PFN_DecodedData pfnData) {
      if (pfnData == nullptr) return;
      for (std::size_t i = 0; i < bytes.size(); i += cbPiece) {
        std::vector<UInt8> piece(
            bytes.begin() + static_cast<std::ptrdiff_t>(i),
            bytes.begin() + static_cast<std::ptrdiff_t>(std::min(bytes.size(), i + cbPiece)));
        pfnData(piece.data(), static_cast<unsigned int>(piece.size()));
      }
    };
  }
  // Makes the head start last until the decoder has finished, for ten seconds at most. The fake
  // toolbox shortens the pause; the real half second would be long enough.
  void WaitForTheDecoderInTheHeadStart() {
    m_toolbox.onPause = [this] {
      if (m_toolbox.Log().back() != "usleep(500000)" || m_toolbox.Find("AudioOutputUnit") >= 0) {
        return;
      }
      const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
      while (m_decoder.byFinished.load() == 0 && std::chrono::steady_clock::now() < end) {
        std::this_thread::yield();
      }
      EXPECT_EQ(m_decoder.byFinished.load(), 1) << "the decoder works during the head start";
    };
  }
  // The library's calls, without the end of the decoder's format object: that happens on the
  // decoder's own thread, at any time.
  Lines LibraryCalls() {
    Lines lines = m_library.Log();
    std::erase(lines, "~C_WavFileFormat");
    return lines;
  }

  C_FakeToolbox& m_toolbox = C_FakeToolbox::Get();
  C_FakeLibrary& m_library = C_FakeLibrary::Get();
  C_PrivateTemp m_temp;
  C_TempFolder m_folder;
  // The decoder's thread is never joined and may still be leaving when a test ends.
  S_RealTimeDecoder& m_decoder = *MakeDecoder();

 private:
  static S_RealTimeDecoder* MakeDecoder() {
    static std::vector<std::unique_ptr<S_RealTimeDecoder>> decoders;
    decoders.push_back(std::make_unique<S_RealTimeDecoder>());
    return decoders.back().get();
  }
};

const Lines kSetUp = {
    "AudioComponentFindNext(null, 'auou' 'def ' 'appl' 0 0)",
    "AudioComponentInstanceNew(component)",
    "AudioUnitSetProperty(outputUnit, 8, scope 1, element 0, 16000.0 'lpcm' 12 2 1 2 1 16)",
    "AudioUnitSetProperty(outputUnit, 23, scope 1, element 0, 16 bytes)",
    "AudioUnitInitialize(outputUnit)"};

TEST_F(RealTimePlayer, Run_CallsTheToolboxInThisOrder) {
  EXPECT_EQ(Play("speech.kst"), 0);
  Lines expected = kSetUp;
  for (const char* pszCall :
       {"usleep(500000)", "AudioOutputUnitStart(outputUnit)", "usleep(10000)", "usleep(500000)",
        "AudioOutputUnitStop(outputUnit)", "AudioUnitUninitialize(outputUnit)"}) {
    expected.emplace_back(pszCall);
  }
  EXPECT_EQ(m_toolbox.Log(), expected);
}

TEST_F(RealTimePlayer, RenderCallback_IsGivenThePlayer) {
  Play("speech.kst");
  EXPECT_EQ(m_toolbox.renderCallback.inputProc, &RenderPcm);
  EXPECT_EQ(m_toolbox.renderCallback.inputProcRefCon, this);
}

TEST_F(RealTimePlayer, FileThatTheLibraryKnows_IsProbedAndDecodedWhereItIs) {
  EXPECT_EQ(Play("speech.kst"), 0);
  EXPECT_THAT(LibraryCalls(), ElementsAre("CreateWavFile(speech.kst, false, true, null, null)",
                                          "CreateWavFile(speech.kst, true, true, null, callback)"));
  EXPECT_STREQ(m_decoder.szPath, "speech.kst");
  EXPECT_EQ(m_decoder.byFinished.load(), 1);
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(RealTimePlayer, Output_IsSetUpBeforeTheFileIsProbed) {
  m_library.onCreate = [this](const char* /*pszPath*/, PFN_DecodedData pfnData) {
    if (pfnData == nullptr) {
      EXPECT_EQ(m_toolbox.Log(), kSetUp);
    }
  };
  EXPECT_EQ(Play("speech.kst"), 0);
}

TEST_F(RealTimePlayer, FailingSetUp_ReturnsOneAndDisposesOfNothing) {
  for (const char* pszCall : {"AudioComponentFindNext", "AudioComponentInstanceNew",
                              "AudioUnitSetProperty", "AudioUnitInitialize"}) {
    for (const int nOccurrence : {1, 2}) {
      if (nOccurrence == 2 && std::string(pszCall) != "AudioUnitSetProperty") continue;
      for (const OSStatus nStatus : {1, -1}) {
        m_toolbox.Reset();
        m_toolbox.Fail(pszCall, nStatus, nOccurrence);
        EXPECT_EQ(Play("speech.kst"), 1) << pszCall;
        EXPECT_TRUE(m_toolbox.Log().back().starts_with(pszCall));
      }
    }
  }
  EXPECT_THAT(m_library.Log(), IsEmpty()) << "not even probed";
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(RealTimePlayer, DecodedSamples_ArePlayedWholeAndInOrder) {
  std::vector<UInt8> bytes(64000);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<UInt8>(1 + i * 5 % 251);
  DecodesTo(bytes, 640);
  WaitForTheDecoderInTheHeadStart();
  m_toolbox.cbSlice = 3000;
  m_toolbox.bySliceFill = 0;
  EXPECT_EQ(Play("speech.kst"), 0);
  std::vector<UInt8> played = m_toolbox.Pulled();
  ASSERT_GE(played.size(), bytes.size());
  EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), played.begin()));
  EXPECT_TRUE(std::all_of(played.begin() + 64000, played.end(), [](UInt8 by) { return by == 0; }));
}

TEST_F(RealTimePlayer, Decoding_GoesOnAfterTheHeadStart) {
  m_library.onCreate = [this](const char* /*pszPath*/, PFN_DecodedData pfnData) {
    if (pfnData == nullptr) return;
    char szPiece[] = "early";
    pfnData(szPiece, 5);
    while (m_toolbox.Count("usleep(10000)") == 0) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    char szLate[] = "late!";
    pfnData(szLate, 5);
  };
  m_toolbox.cbSlice = 10;
  EXPECT_EQ(Play("speech.kst"), 0);
  const std::vector<UInt8> played = m_toolbox.Pulled();
  std::string strPlayed;
  for (const UInt8 by : played) {
    if (by != 0) strPlayed += static_cast<char>(by);
  }
  EXPECT_EQ(strPlayed, "earlylate!");
}

TEST_F(RealTimePlayer, Run_EndsOnlyWhenTheQueueIsEmpty) {
  DecodesTo(std::vector<UInt8>(6400, 9), 640);
  m_toolbox.cbSlice = 64;
  EXPECT_EQ(Play("speech.kst"), 0);
  EXPECT_EQ(g_pcmQueue.GetCount(), 0U);
  EXPECT_GE(m_toolbox.Pulled().size(), 6400U);
}

// The queue must become empty all the same, or the run would never end.
TEST_F(RealTimePlayer, OutputThatDoesNotStart_LetsThePlayerTakeTheSound) {
  DecodesTo(std::vector<UInt8>(300000, 9), 640);
  WaitForTheDecoderInTheHeadStart();
  m_toolbox.Fail("AudioOutputUnitStart", kAudio_MemFullError);
  EXPECT_EQ(Play("speech.kst"), 0);
  EXPECT_EQ(g_pcmQueue.GetCount(), 0U);
  EXPECT_TRUE(m_toolbox.Pulled().empty());
}

TEST_F(RealTimePlayer, UnknownFile_IsCopiedGivenAHeaderAndLeft) {
  const std::string strPath = m_folder.Write("bare.xyz", std::vector<std::uint8_t>(100, 3));
  m_library.creates = {false, false, true};
  EXPECT_EQ(Play(strPath), 0);
  ASSERT_EQ(m_temp.NewFiles().size(), 1U);
  const std::string strCopy = std::string(P_tmpdir) + "/" + m_temp.NewFiles().front();
  EXPECT_EQ(ShortName(strCopy.c_str()), "<temporary>.kst");
  EXPECT_EQ(std::filesystem::file_size(strCopy), 148U);
  EXPECT_EQ(m_decoder.szPath, strCopy);
  EXPECT_THAT(LibraryCalls(),
              ElementsAre("CreateWavFile(" + strPath + ", false, true, null, null)",
                          "CreateWavFile(<temporary>.kst, false, true, null, null)",
                          "CreateWavFile(<temporary>.kst, true, true, null, callback)"));
}

// The copy can be read, and shows that the file has a header of its own.
TEST_F(RealTimePlayer, FileThatOnlyCouldNotBeRead_IsNoBareStream) {
  const std::string strPath = m_folder.Write("x.kst", std::vector<std::uint8_t>(100, 3));
  m_library.creates = {false, true};
  EXPECT_EQ(Play(strPath), 0);
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
  EXPECT_STREQ(m_decoder.szPath, "");
}

TEST_F(RealTimePlayer, PathField_IsClearedAfterTheName) {
  std::memset(m_decoder.szPath, 'x', sizeof m_decoder.szPath);
  Play("speech.kst");
  EXPECT_STREQ(m_decoder.szPath, "speech.kst");
  for (std::size_t i = 10; i < sizeof m_decoder.szPath; ++i) EXPECT_EQ(m_decoder.szPath[i], 0);
}

TEST_F(RealTimePlayer, MissingFile_CreatesNothingAndEndsByItself) {
  m_library.creates = {false};
  EXPECT_EQ(Play(m_folder.Path("missing.kst")), 0);
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
  EXPECT_STREQ(m_decoder.szPath, "");
}

TEST_F(RealTimePlayer, NameThatDoesNotFit_IsRefusedNotCut) {
  EXPECT_EQ(Play(std::string(1023, 'n')), 0);
  EXPECT_EQ(m_decoder.szPath, std::string(1023, 'n'));
  EXPECT_EQ(Play(std::string(1024, 'n')), 0);
  EXPECT_STREQ(m_decoder.szPath, "");
  EXPECT_EQ(Play(std::string(5000, 'n')), 0);
  EXPECT_STREQ(m_decoder.szPath, "");
}

TEST_F(RealTimePlayer, BareStreamWhoseNameDoesNotFit_IsNotCopied) {
  m_folder.Write("bare.kst", {1});
  m_library.creates = {false};
  std::string strPath = m_folder.Path() + "/";
  while (strPath.size() < 1024) strPath += "./";
  ASSERT_TRUE(std::filesystem::exists(strPath + "bare.kst"));
  EXPECT_EQ(Play(strPath + "bare.kst"), 0);
  EXPECT_STREQ(m_decoder.szPath, "");
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(RealTimePlayer, NoName_IsAFileThatCannotBeDecoded) {
  m_library.creates = {false};
  EXPECT_EQ(PlayRealTime(this, &m_decoder, nullptr), 0);
  EXPECT_STREQ(m_decoder.szPath, "");
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

// The decoder thread may end after playback, when the data that it shares with the player may be
// gone. So the thread sets its finished flag before its format object ends.
TEST_F(RealTimePlayer, FinishedIsSet_BeforeTheDecodersFormatEnds) {
  std::atomic<std::thread::id> decoderThread;
  std::atomic<int> nFinished{-1};
  m_library.onCreate = [&](const char* /*pszPath*/, PFN_DecodedData pfnData) {
    if (pfnData != nullptr) decoderThread = std::this_thread::get_id();
  };
  m_library.onFormatEnd = [&] {
    if (std::this_thread::get_id() == decoderThread) nFinished = m_decoder.byFinished.load();
  };
  EXPECT_EQ(Play("speech.kst"), 0);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (nFinished.load() < 0 && std::chrono::steady_clock::now() < end) std::this_thread::yield();
  EXPECT_EQ(nFinished.load(), 1);
}

TEST_F(RealTimePlayer, ProbeThatThrows_CountsAsUnknown) {
  const std::string strPath = m_folder.Write("bare.kst", {1});
  m_library.creates = {false, true};
  m_library.onCreate = [&strPath](const char* pszPath, PFN_DecodedData /*pfnData*/) {
    if (strPath == pszPath) throw std::bad_alloc();
  };
  EXPECT_EQ(Play(strPath), 0);
  EXPECT_EQ(m_temp.NewFiles().size(), 1U);
}

TEST_F(RealTimePlayer, DecoderThatThrows_StillFinishes) {
  m_library.onCreate = [](const char* /*pszPath*/, PFN_DecodedData pfnData) {
    if (pfnData == nullptr) return;
    char szPiece[] = "part";
    pfnData(szPiece, 4);
    throw 42;  // NOLINT: anything may be thrown
  };
  WaitForTheDecoderInTheHeadStart();
  m_toolbox.cbSlice = 4;
  EXPECT_EQ(Play("speech.kst"), 0);
  const auto played = m_toolbox.Pulled();
  ASSERT_GE(played.size(), 4U);
  EXPECT_EQ(std::string(played.begin(), played.begin() + 4), "part");
}

TEST_F(RealTimePlayer, FailuresOfTheRunningOutput_AreIgnored) {
  m_toolbox.Fail("AudioOutputUnitStart", -1);
  m_toolbox.Fail("AudioOutputUnitStop", -1);
  m_toolbox.Fail("AudioUnitUninitialize", -1);
  EXPECT_EQ(Play("speech.kst"), 0);
}

TEST_F(RealTimePlayer, RealTimeMode_KeepsProbeUnitThreadAndDecodedFile) {
  const auto Count = [](const std::string& strStart) {
    int nCount = 0;
    for (const S_Kept* pKept = GetKeptForProcess(); pKept != nullptr; pKept = pKept->pNext) {
      if (std::string(pKept->pszReason).starts_with(strStart)) ++nCount;
    }
    return nCount;
  };
  const Lines reasons = {"probe of real-time mode", "output unit of real-time mode",
                         "decoder thread of real-time mode", "decoded file of real-time mode"};
  std::vector<int> before;
  for (const std::string& strReason : reasons) before.push_back(Count(strReason));
  Play("speech.kst");
  for (std::size_t i = 0; i < reasons.size(); ++i) {
    EXPECT_EQ(Count(reasons[i]), before[i] + 1) << reasons[i];
  }
  EXPECT_EQ(m_toolbox.Count("AudioComponentInstanceDispose"), 0);
  const Lines calls = LibraryCalls();
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "file::Release"), 0);
}

TEST_F(RealTimePlayer, RenderPcm_FillsOnlyTheFirstBufferByItsSize) {
  char szData[] = "abcdefgh";
  OnDecodedData(szData, 8);
  UInt8 abyFirst[4] = {0xAA, 0xAA, 0xAA, 0xAA};
  UInt8 abySecond[4] = {0xBB, 0xBB, 0xBB, 0xBB};
  struct S_TwoBuffers {
    AudioBufferList list;
    AudioBuffer second;
  } buffers = {{2, {{1, 4, abyFirst}}}, {1, 4, abySecond}};
  AudioUnitRenderActionFlags dwFlags = 0;
  const AudioTimeStamp stamp{};
  EXPECT_EQ(RenderPcm(nullptr, &dwFlags, &stamp, 0, 999, &buffers.list), noErr);
  EXPECT_EQ(std::memcmp(abyFirst, "abcd", 4), 0);
  EXPECT_THAT(abySecond, ElementsAre(0xBB, 0xBB, 0xBB, 0xBB));
  EXPECT_EQ(g_pcmQueue.GetCount(), 4U);
  EXPECT_EQ(RenderPcm(nullptr, &dwFlags, &stamp, 0, 0, &buffers.list), noErr);
  EXPECT_EQ(std::memcmp(abyFirst, "efgh", 4), 0);
}

TEST_F(RealTimePlayer, RenderPcm_LeavesWhatTheQueueCannotFill) {
  UInt8 abyData[4] = {0xAA, 0xAA, 0xAA, 0xAA};
  AudioBufferList list{1, {{1, 4, abyData}}};
  AudioUnitRenderActionFlags dwFlags = 0;
  const AudioTimeStamp stamp{};
  EXPECT_EQ(RenderPcm(nullptr, &dwFlags, &stamp, 0, 2, &list), noErr);
  EXPECT_THAT(abyData, ElementsAre(0xAA, 0xAA, 0xAA, 0xAA));
  char szData[] = "x";
  OnDecodedData(szData, 1);
  EXPECT_EQ(RenderPcm(nullptr, &dwFlags, &stamp, 0, 2, &list), noErr);
  EXPECT_THAT(abyData, ElementsAre('x', 0xAA, 0xAA, 0xAA));
}

TEST_F(RealTimePlayer, ThePlayersOperation_NeedsNeitherOpenNorAGraph) {
  I_Voxplay* pPlayer = nullptr;
  ASSERT_EQ(CreateVoxplay(&pPlayer), 0);
  EXPECT_EQ(pPlayer->PlayRealTime("speech.kst"), 0);
  EXPECT_EQ(m_toolbox.renderCallback.inputProcRefCon, pPlayer);
  EXPECT_EQ(m_toolbox.Find("NewAUGraph"), -1);
  EXPECT_EQ(m_toolbox.Find("AudioFileOpenURL"), -1);
  m_toolbox.Fail("AudioComponentFindNext", 1);
  EXPECT_EQ(pPlayer->PlayRealTime("speech.kst"), 1);
  pPlayer->Release();
}

}  // namespace
