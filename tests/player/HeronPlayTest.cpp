// SPDX-License-Identifier: Apache-2.0
//
// Heron files in the real program, without a sound server.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "FileBytes.h"
#include "HeronBytes.h"
#include "PrivateTemp.h"
#include "SpBytes.h"
#include "Speech.h"

namespace {

using heron::test::kKinds;
using heron::test::S_Kind;

constexpr std::size_t kSamples = 3200;
constexpr const char* kLength = "file duration: 0.200000 secs\nLength:0\n";
constexpr const char* kPlayed = "file duration: 0.200000 secs\nPlaying...Finished\n";
constexpr const char* kDecodeFailed = "Decode input file failed !!\n";

C_Bytes Stream(const S_Kind& kind) { return C_HeronBytes(kind, TestVoice(kSamples), 16000).Take(); }

C_Bytes PcmBytes(const std::vector<short>& samples) {
  vcm::C_ByteWriter writer;
  for (const short nSample : samples) writer.U16(static_cast<std::uint16_t>(nSample));
  return writer.Take();
}

class HeronPlay : public testing::TestWithParam<S_Kind> {
 protected:
  void ExpectRun(const std::string& strPath, const char* pszType, const char* pszOutput,
                 int nExit) {
    const S_Run run = m_player.Run({strPath, pszType});
    EXPECT_EQ(run.strOut, pszOutput);
    EXPECT_EQ(run.strErr, "");
    EXPECT_EQ(run.nExit, nExit);
  }
  // The bytes of the one file that the program left in the temporary directory.
  C_Bytes LeftFile() {
    const auto names = m_temp.NewFiles();
    EXPECT_EQ(names.size(), 1U);
    if (names.size() != 1) return {};
    EXPECT_TRUE(names.front().ends_with(".wav")) << names.front();
    return FileBytes(std::string(P_tmpdir) + "/" + names.front());
  }
  // A container that holds the stream and also the sound itself.
  std::string WriteVef(const S_Kind& kind) {
    std::string strPath = m_folder.Path("vef.hrn");
    EXPECT_TRUE(MonoSound(TestVoice(kSamples))
                    ->Convert(kind.eType, strPath.c_str(), false, false, nullptr, false, 0));
    return strPath;
  }

  C_Program m_player{VOXPLAY_PLAYER};
  C_PrivateTemp m_temp;
  C_TempFolder m_folder;
};
INSTANTIATE_TEST_SUITE_P(Kinds, HeronPlay, testing::ValuesIn(kKinds), heron::test::NameOf);

TEST_P(HeronPlay, FileAfterAnSpHeader_PlaysWithFourFiveOrSixBits) {
  const C_Bytes stream = Stream(GetParam());
  const auto wID = static_cast<std::uint16_t>(GetParam().eType);
  const std::string strPath =
      m_folder.Write("x.hrn", C_SpBytes().ID(wID).Freq(16000).Stream(stream).Take());
  if (wID > 34) {
    ExpectRun(strPath, "0", kDecodeFailed, 255);
    EXPECT_EQ(m_temp.NewFiles(), std::vector<std::string>{});
    return;
  }
  ExpectRun(strPath, "0", kPlayed, 0);
  EXPECT_EQ(LeftFile(), WavOf(16000, 1, PcmBytes(*heron::test::Decoded(stream, 16000))));
}

TEST_P(HeronPlay, Container_PlaysTheSoundThatItStores) {
  ExpectRun(WriteVef(GetParam()), "2", kLength, 0);
  EXPECT_EQ(LeftFile(), WavOf(16000, 1, PcmBytes(TestVoice(kSamples))));
}

TEST_P(HeronPlay, BareStream_IsADecodingFailure) {
  ExpectRun(m_folder.Write("x.hrn", Stream(GetParam())), "0", kDecodeFailed, 255);
  EXPECT_EQ(m_temp.NewFiles(), std::vector<std::string>{});
}

class HeronPlayOnce : public HeronPlay {};
INSTANTIATE_TEST_SUITE_P(FourBits, HeronPlayOnce, testing::Values(kKinds[0]), heron::test::NameOf);

TEST_P(HeronPlayOnce, RealTimeMode_IsASecondOfSilence) {
  const std::string strPath =
      m_folder.Write("x.hrn", C_SpBytes().ID(32).Freq(16000).Stream(Stream(GetParam())).Take());
  ExpectRun(strPath, "1", "Playing...Finished\n", 0);
  EXPECT_EQ(m_temp.NewFiles(), std::vector<std::string>{});
}

// A sound of three blocks of 4 s; the one in the middle is damaged.
TEST_P(HeronPlayOnce, DamagedBlock_IsSilenceInThePlayedSound) {
  constexpr std::size_t kBlock = heron::BlockLength(16000);
  C_Bytes stream = C_HeronBytes(GetParam(), TestVoice(10 * 16000), 16000).Take();
  auto expected = *heron::test::Decoded(stream, 16000);
  stream[stream.size() / 2] ^= 1;
  std::fill_n(expected.begin() + kBlock, kBlock, short{0});
  ExpectRun(m_folder.Write("x.hrn", C_SpBytes().ID(32).Freq(16000).Stream(stream).Take()), "2",
            "file duration: 10.000000 secs\nLength:10\n", 0);
  EXPECT_EQ(LeftFile(), WavOf(16000, 1, PcmBytes(expected)));
}

TEST_P(HeronPlayOnce, CutFile_PlaysItsWholeBlocks) {
  C_Bytes stream = C_HeronBytes(GetParam(), TestVoice(10 * 16000), 16000).Take();
  auto expected = *heron::test::Decoded(stream, 16000);
  stream.resize(stream.size() - 10);
  expected.resize(2 * heron::BlockLength(16000));
  ExpectRun(m_folder.Write("x.hrn", C_SpBytes().ID(32).Freq(16000).Stream(stream).Take()), "2",
            "file duration: 8.000000 secs\nLength:8\n", 0);
  EXPECT_EQ(LeftFile(), WavOf(16000, 1, PcmBytes(expected)));
}

TEST_P(HeronPlayOnce, StreamWithAWrongHead_IsADecodingFailure) {
  C_Bytes stream = Stream(GetParam());
  stream[0] = 9;
  ExpectRun(m_folder.Write("x.hrn", C_SpBytes().ID(32).Stream(stream).Take()), "2", "Length:-2\n",
            0);
}

}  // namespace
