// SPDX-License-Identifier: Apache-2.0
//
// The real program, without a sound server: it plays silently in real time.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <future>
#include <span>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "CompressedBytes.h"
#include "FileBytes.h"
#include "PrivateTemp.h"
#include "Speech.h"
#include "TempFolder.h"

namespace {

const char* const kNotSupported = "The input file is not supported format !!\n";
const char* const kDecodeFailed = "Decode input file failed !!\n";
const char* const kPlayed = "Playing...Finished\n";

class CommandLine : public ::testing::Test {
 protected:
  // Every run ends by itself and says nothing on standard error.
  S_Run Run(const C_Program::Texts& arguments, const C_Program::Texts& environment = {}) {
    S_Run run = m_player.Run(arguments, environment);
    EXPECT_EQ(run.strErr, "") << arguments.at(0);
    EXPECT_EQ(run.nSignal, 0) << arguments.at(0);
    return run;
  }
  void ExpectRun(const C_Program::Texts& arguments, const std::string& strOut, int nExit) {
    const S_Run run = Run(arguments);
    EXPECT_EQ(run.strOut, strOut) << arguments.at(0) << " " << arguments.at(1);
    EXPECT_EQ(run.nExit, nExit) << arguments.at(0) << " " << arguments.at(1);
  }
  // Expects a file that cannot be played to fail in play types 0 and 2, and to leave no file.
  void ExpectFailure(const std::string& strPath, const char* pszMessage, int nLength) {
    ExpectRun({strPath, "0"}, pszMessage, 255);
    ExpectRun({strPath, "2"}, "Length:" + std::to_string(nLength) + "\n", 0);
    EXPECT_EQ(m_temp.NewFiles(), std::vector<std::string>{}) << strPath;
  }
  // The bytes of the one file that the program left in the temporary directory.
  C_Bytes LeftFile(const std::string& strSuffix) {
    const auto names = m_temp.NewFiles();
    EXPECT_EQ(names.size(), 1U);
    if (names.size() != 1) return {};
    EXPECT_TRUE(names.front().ends_with(strSuffix)) << names.front();
    EXPECT_TRUE(names.front().starts_with("file")) << names.front();
    return FileBytes(std::string(P_tmpdir) + "/" + names.front());
  }

  C_Program m_player{VOXPLAY_PLAYER};
  C_PrivateTemp m_temp;
  C_TempFolder m_folder;
};

C_Bytes Silence(std::size_t nFrames) { return C_Bytes(nFrames * 2); }

// --- What cannot be played

TEST_F(CommandLine, LengthOfAMissingFile_IsMinusOneWithExitCode0) {
  ExpectRun({m_folder.Path("missing.kst"), "2"}, "Length:-1\n", 0);
}

TEST_F(CommandLine, MissingFilesAndUnknownKinds_AreNotSupported) {
  for (const char* pszName : {"missing.kst", "missing.wav", "missing", "no/folder/x.kst"}) {
    ExpectFailure(m_folder.Path(pszName), kNotSupported, -1);
  }
  for (const char* pszName : {"x.vef", "x.txt", "x.flac", "speech", "speech.", "x.kst2"}) {
    ExpectFailure(m_folder.Write(pszName, SpeechOf(1).file), kNotSupported, -1);
  }
  ExpectFailure("", kNotSupported, -1);
}

TEST_F(CommandLine, KindsThatThePlatformDoesNotPlay_AreADecodingFailure) {
  for (const char* pszName : {"x.wma", "x.mid", "x.vea", "x.mp3", "x.wav"}) {
    ExpectFailure(m_folder.Write(pszName, Ascii("no sound at all, only text")), kDecodeFailed, -2);
  }
}

TEST_F(CommandLine, EmptyFiles_AreADecodingFailure) {
  for (const char* pszName : {"x.wav", "x.mp3", "x.kst", "x.hrn", "x.ref", "x.pcm"}) {
    ExpectFailure(m_folder.Write(pszName, {}), kDecodeFailed, -2);
  }
}

TEST_F(CommandLine, Folders_AreADecodingFailure) {
  for (const char* pszName : {"x.wav", "x.mp3", "x.kst"}) {
    std::filesystem::create_directory(m_folder.Path(pszName));
    ExpectFailure(m_folder.Path(pszName), kDecodeFailed, -2);
  }
}

TEST_F(CommandLine, TextNamedLikeSpeech_IsADecodingFailure) {
  ExpectFailure(m_folder.Write("x.kst", Ascii("Dear listener, this is a letter.\n")), kDecodeFailed,
                -2);
}

TEST_F(CommandLine, SpeechOfARateThatDoesNotExist_IsADecodingFailure) {
  const C_Bytes stream = Join({U32(2), U16(7300)});
  ExpectFailure(m_folder.Write("x.kst", C_SpBytes().Stream(stream).Take()), kDecodeFailed, -2);
  ExpectFailure(m_folder.Write("bare.kst", stream), kDecodeFailed, -2);
}

TEST_F(CommandLine, SpeechWithAPartialFrame_IsADecodingFailure) {
  C_Bytes stream = SpeechOf(3).stream;
  stream[0] = static_cast<std::uint8_t>(stream[0] + 2);
  stream.insert(stream.end(), 2, 0);
  ExpectFailure(m_folder.Write("x.kst", C_SpBytes().Stream(stream).Take()), kDecodeFailed, -2);
}

TEST_F(CommandLine, SpeechWithoutFrames_IsADecodingFailure) {
  const C_Bytes stream = Join({U32(2), U16(16000)});
  ExpectFailure(m_folder.Write("x.kst", C_SpBytes().Stream(stream).Take()), kDecodeFailed, -2);
}

TEST_F(CommandLine, OtherCodecAfterTheHeader_IsADecodingFailure) {
  ExpectFailure(m_folder.Write("x.kst", C_SpBytes().ID(99).Stream(SpeechOf(3).stream).Take()),
                kDecodeFailed, -2);
}

TEST_F(CommandLine, NamesThatDoNotFit_AreNotSupported) {
  std::string strPath = m_folder.Path() + "/";
  while (strPath.size() < 1100) strPath += "./";
  m_folder.Write("x.kst", SpeechOf(3).file);
  ExpectFailure(strPath + "x.kst", kNotSupported, -1);
  ExpectFailure(std::string(6000, 'n') + ".wav", kNotSupported, -1);
}

// --- Length

TEST_F(CommandLine, Length_IsCountedInFramesOfSixteenThousand) {
  struct S_Case {
    const char* pszName;
    std::uint32_t dwRate;
    std::uint16_t wChannels;
    std::size_t nFrames;
    const char* pszOutput;
  };
  const std::vector<S_Case> cases = {
      {"16k.wav", 16000, 1, 32000, "file duration: 2.000000 secs\nLength:2\n"},
      {"44k.wav", 44100, 1, 88200, "file duration: 5.512500 secs\nLength:5\n"},
      {"48k.wav", 48000, 1, 96000, "file duration: 6.000000 secs\nLength:6\n"},
      {"8k.wav", 8000, 1, 16000, "file duration: 1.000000 secs\nLength:1\n"},
      {"stereo.WAV", 16000, 2, 32000, "file duration: 2.000000 secs\nLength:2\n"},
      {"odd.wav", 16000, 1, 16016, "file duration: 1.001000 secs\nLength:1\n"},
      {"empty.wav", 16000, 1, 0, "file duration: 0.000000 secs\nLength:0\n"},
  };
  for (const S_Case& c : cases) {
    const C_Bytes wav = WavOf(c.dwRate, c.wChannels, Silence(c.nFrames * c.wChannels));
    ExpectRun({m_folder.Write(c.pszName, wav), "2"}, c.pszOutput, 0);
  }
  EXPECT_EQ(m_temp.NewFiles(), std::vector<std::string>{}) << "nothing was decoded";
}

TEST_F(CommandLine, LengthOfSpeech_DecodesItFirst) {
  const S_Speech speech = SpeechOf(75);
  ExpectRun({m_folder.Write("x.kst", speech.file), "2"}, "file duration: 1.500000 secs\nLength:1\n",
            0);
  const C_Bytes wav = LeftFile(".wav");
  ASSERT_EQ(wav.size(), 44U + 75 * 640);
  EXPECT_EQ(C_Bytes(wav.begin() + 44, wav.end()), speech.pcm);
}

TEST_F(CommandLine, Length_TakesNoTime) {
  const std::string strPath = m_folder.Write("x.wav", WavOf(16000, 1, Silence(16000 * 300)));
  const S_Run run = Run({strPath, "2"});
  EXPECT_EQ(run.strOut, "file duration: 300.000000 secs\nLength:300\n");
  EXPECT_LT(run.dSeconds, 150.0);
}

TEST_F(CommandLine, EverySpellingOfTwo_AsksForTheLength) {
  const std::string strPath = m_folder.Write("x.wav", WavOf(16000, 1, Silence(32000)));
  for (const char* pszType : {"2abc", " 2", "+2", "02", "2.9", "\t2"}) {
    ExpectRun({strPath, pszType}, "file duration: 2.000000 secs\nLength:2\n", 0);
  }
}

// --- Normal mode

TEST_F(CommandLine, NormalModeOfSpeech_TakesAsLongAsTheSound) {
  const S_Speech speech = SpeechOf(50);
  const S_Run run = Run({m_folder.Write("x.kst", speech.file), "0"});
  EXPECT_EQ(run.strOut, "file duration: 1.000000 secs\nPlaying...Finished\n");
  EXPECT_EQ(run.nExit, 0);
  EXPECT_GE(run.dSeconds, 1.0);
  EXPECT_GE(run.dSeconds - run.dFirstOutput, 0.9) << "\"Playing...\" shows before the end";
  const C_Bytes wav = LeftFile(".wav");
  ASSERT_EQ(wav.size(), 32044U);
  EXPECT_EQ(C_Bytes(wav.begin() + 44, wav.end()), speech.pcm);
}

TEST_F(CommandLine, DecodedFile_IsReadableByItsOwnerOnly) {
  ExpectRun({m_folder.Write("x.kst", SpeechOf(1).file), "2"},
            "file duration: 0.020000 secs\nLength:0\n", 0);
  ASSERT_EQ(m_temp.NewFiles().size(), 1U);
  struct stat info {};
  ASSERT_EQ(stat((std::string(P_tmpdir) + "/" + m_temp.NewFiles().at(0)).c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777U, 0600U);
}

TEST_F(CommandLine, NormalModeOfABareStream_PlaysItAndLeavesOnlyTheDecodedFile) {
  const S_Speech speech = SpeechOf(10);
  ExpectRun({m_folder.Write("bare.kst", speech.stream), "0"},
            "file duration: 0.200000 secs\nPlaying...Finished\n", 0);
  const C_Bytes wav = LeftFile(".wav");
  ASSERT_EQ(wav.size(), 44U + 6400);
  EXPECT_EQ(C_Bytes(wav.begin() + 44, wav.end()), speech.pcm);
  EXPECT_EQ(m_folder.Read("bare.kst"), speech.stream) << "the file itself is as it was";
}

TEST_F(CommandLine, NormalModeOfAWavFile_LeavesNothing) {
  const S_Run run = Run({m_folder.Write("x.wav", WavOf(16000, 1, Silence(8000))), "0"});
  EXPECT_EQ(run.strOut, "file duration: 0.500000 secs\nPlaying...Finished\n");
  EXPECT_EQ(run.nExit, 0);
  EXPECT_GE(run.dSeconds, 0.5);
  EXPECT_EQ(m_temp.NewFiles(), std::vector<std::string>{});
}

TEST_F(CommandLine, HalfASecondAt44100_IsPolledForNearlyThreeTimesAsLong) {
  const S_Run run = Run({m_folder.Write("x.wav", WavOf(44100, 1, Silence(22050))), "0"});
  EXPECT_EQ(run.strOut, "file duration: 1.378125 secs\nPlaying...Finished\n");
  EXPECT_GE(run.dSeconds, 1.3);
}

TEST_F(CommandLine, NormalModeOfAnEmptySound_EndsAtOnce) {
  ExpectRun({m_folder.Write("x.wav", WavOf(16000, 1, {})), "0"},
            "file duration: 0.000000 secs\nPlaying...Finished\n", 0);
}

TEST_F(CommandLine, EverySpellingOfZero_IsNormalMode) {
  const std::string strPath = m_folder.Write("x.wav", WavOf(16000, 1, Silence(160)));
  for (const char* pszType : {"0", "abc", "", "0x2", "-0"}) {
    ExpectRun({strPath, pszType}, "file duration: 0.010000 secs\nPlaying...Finished\n", 0);
  }
}

TEST_F(CommandLine, OtherKindsOfNames_HoldSpeechToo) {
  const S_Speech speech = SpeechOf(2);
  for (const char* pszName : {"x.plv", "x.HRN", "x.nv4", "x.adp", "x.ref", "x.PCM", ".kst"}) {
    ExpectRun({m_folder.Write(pszName, speech.file), "0"},
              "file duration: 0.040000 secs\nPlaying...Finished\n", 0);
  }
}

TEST_F(CommandLine, WavFileNamedLikeSpeech_IsDecodedLikeSpeech) {
  ExpectRun({m_folder.Write("x.kst", WavOf(16000, 1, Silence(1600))), "0"},
            "file duration: 0.100000 secs\nPlaying...Finished\n", 0);
  EXPECT_EQ(LeftFile(".wav").size(), 44U + 3200);
}

TEST_F(CommandLine, CompressedWavNamedLikeSpeech_IsDecoded) {
  const C_Bytes file =
      CompressedWav({WAVE_TAG_MULAW, 1, 1, 0, 8, 16000}, C_Bytes(160, 0xFF)).Take();
  ExpectRun({m_folder.Write("x.adp", file), "0"},
            "file duration: 0.010000 secs\nPlaying...Finished\n", 0);
  EXPECT_EQ(LeftFile(".wav"), WavOf(16000, 1, Silence(160)));
}

TEST_F(CommandLine, CompressedWavOfEveryKind_LeavesItsLinearSound) {
  for (const S_Blocks& blocks : OneOfEachKind()) {
    const C_Bytes file =
        CompressedWav(blocks, RampBytes(std::size_t{5} * blocks.wBlockAlign)).Take();
    const std::string strPath = m_folder.Write("x.adp", file);
    const S_Run run = Run({strPath, "2"});
    EXPECT_TRUE(run.strOut.ends_with(" secs\nLength:0\n")) << blocks.wTag << ": " << run.strOut;
    C_WavFileFormat format;
    const C_WavFilePtr loaded(format.CreateWavFile(strPath.c_str(), true, true, nullptr, nullptr));
    ASSERT_NE(loaded, nullptr) << blocks.wTag;
    const std::span pcm(loaded->GetWavDataBuffer(), loaded->GetWavData()->GetBufferLength());
    ASSERT_GT(pcm.size(), 0U);
    EXPECT_EQ(LeftFile(".wav"), WavOf(8000, blocks.wChannels, C_Bytes(pcm.begin(), pcm.end())));
    ASSERT_EQ(m_temp.NewFiles().size(), 1U);
    std::filesystem::remove(std::string(P_tmpdir) + "/" + m_temp.NewFiles().front());
  }
}

TEST_F(CommandLine, ContainersNamedLikeSpeech_PlayTheirPcm) {
  const C_SoundPtr sound = ExampleSound({}, 3200);
  AddAnnotations(*sound);
  const std::string strPath = m_folder.Path("x.kst");
  ASSERT_TRUE(sound->Convert(AUDIO_FILE_KESTREL, strPath.c_str(), false, false, nullptr, true, 0));
  ExpectRun({strPath, "0"}, "file duration: 0.200000 secs\nPlaying...Finished\n", 0);
  const C_Bytes wav = LeftFile(".wav");
  ASSERT_GT(wav.size(), 44U + 6400);
  EXPECT_EQ(C_Bytes(wav.begin() + 44, wav.begin() + 44 + 6400), ExamplePcm({}, 3200));
}

TEST_F(CommandLine, ContainerWithoutAFormat_IsADecodingFailure) {
  ExpectFailure(m_folder.Write("x.kst", C_RiffBytes("VEFF").Chunk("data", Silence(8)).Take()),
                kDecodeFailed, -2);
}

TEST_F(CommandLine, NamesWithBlanksUmlautsAndManyCharacters_Work) {
  const C_Bytes wav = WavOf(16000, 1, Silence(160));
  const std::string strOutput = "file duration: 0.010000 secs\nPlaying...Finished\n";
  ExpectRun({m_folder.Write("a name with blanks.wav", wav), "0"}, strOutput, 0);
  ExpectRun({m_folder.Write("Gr\xC3\xBC\xC3\x9F"
                            "e \xE4\xBD\xA0\xE5\xA5\xBD.wav",
                            wav),
             "0"},
            strOutput, 0);
  std::string strDeep;
  for (int i = 0; i < 4; ++i) strDeep += std::string(210, static_cast<char>('a' + i)) + "/";
  std::filesystem::create_directories(m_folder.Path(strDeep));
  strDeep += std::string(900 - 4 - strDeep.size(), 'n') + ".wav";
  ASSERT_EQ(strDeep.size(), 900U);
  ExpectRun({m_folder.Write(strDeep, wav), "0"}, strOutput, 0);
  ExpectRun({m_folder.Write(strDeep.substr(0, 896) + ".kst", SpeechOf(2).file), "2"},
            "file duration: 0.040000 secs\nLength:0\n", 0);
}

TEST_F(CommandLine, TheEnvironment_SelectsNoOtherFolder) {
  const S_Run run =
      Run({m_folder.Write("x.kst", SpeechOf(1).file), "2"},
          {"TMPDIR=" + m_folder.Path(), "TMP=" + m_folder.Path(), "TEMP=" + m_folder.Path()});
  EXPECT_EQ(run.strOut, "file duration: 0.020000 secs\nLength:0\n");
  EXPECT_EQ(LeftFile(".wav").size(), 684U);
  EXPECT_TRUE(m_folder.Has("x.kst"));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder.Path()),
                          std::filesystem::directory_iterator()),
            1);
}

// --- Real-time mode

TEST_F(CommandLine, RealTimeMode_TakesASecondMoreThanTheSound) {
  const S_Run run = Run({m_folder.Write("x.kst", SpeechOf(50).file), "1"});
  EXPECT_EQ(run.strOut, kPlayed);
  EXPECT_EQ(run.nExit, 0);
  EXPECT_GE(run.dSeconds, 0.5 + 1.0 + 0.5);
  EXPECT_EQ(m_temp.NewFiles(), std::vector<std::string>{});
}

TEST_F(CommandLine, RealTimeModeOfABareStream_LeavesItsCopy) {
  const S_Speech speech = SpeechOf(25);
  const S_Run run = Run({m_folder.Write("bare.xyz", speech.stream), "1"});
  EXPECT_EQ(run.strOut, kPlayed);
  EXPECT_EQ(run.nExit, 0);
  EXPECT_GE(run.dSeconds, 0.5 + 0.5 + 0.5);
  const C_Bytes copy = LeftFile(".kst");
  ASSERT_EQ(copy.size(), speech.stream.size() + 48);
  EXPECT_EQ(copy, speech.file);
}

TEST_F(CommandLine, RealTimeMode_SaysPlayingFirst) {
  const S_Run run = Run({m_folder.Path("missing.kst"), "1"});
  EXPECT_EQ(run.strOut, kPlayed);
  EXPECT_GE(run.dSeconds - run.dFirstOutput, 1.0);
}

TEST_F(CommandLine, RealTimeModeOfAMissingFile_FinishesAndCreatesNothing) {
  const S_Run run = Run({m_folder.Path("missing.kst"), "1"});
  EXPECT_EQ(run.strOut, kPlayed);
  EXPECT_EQ(run.nExit, 0);
  EXPECT_GE(run.dSeconds, 1.0);
  EXPECT_EQ(m_temp.NewFiles(), std::vector<std::string>{});
}

TEST_F(CommandLine, RealTimeModeOfText_IsASecondOfSilence) {
  const S_Run run = Run({m_folder.Write("letter.txt", Ascii("Dear listener")), "1"});
  EXPECT_EQ(run.strOut, kPlayed);
  EXPECT_EQ(run.nExit, 0);
  EXPECT_GE(run.dSeconds, 1.0);
  EXPECT_EQ(LeftFile(".kst").size(), 13U + 48);
}

TEST_F(CommandLine, RealTimeModeOfAWavFile_IsASecondOfSilence) {
  const S_Run run = Run({m_folder.Write("x.wav", WavOf(16000, 1, Silence(1600000))), "1"});
  EXPECT_EQ(run.strOut, kPlayed);
  EXPECT_EQ(run.nExit, 0);
  EXPECT_GE(run.dSeconds, 1.0);
  EXPECT_LT(run.dSeconds, 100.0) << "the hundred seconds of the file are not played";
  EXPECT_EQ(m_temp.NewFiles(), std::vector<std::string>{});
}

TEST_F(CommandLine, RealTimeModeOfOddInputs_AlwaysFinishes) {
  std::filesystem::create_directory(m_folder.Path("folder.kst"));
  const std::vector<std::string> inputs = {"",
                                           m_folder.Path("folder.kst"),
                                           m_folder.Write("empty.kst", {}),
                                           std::string(2000, 'n'),
                                           m_folder.Write("other.kst", C_SpBytes().ID(99).Take()),
                                           m_folder.Write("x.vef", C_RiffBytes("VEFF").Take())};
  std::vector<std::future<S_Run>> runs;
  for (const std::string& strInput : inputs) {
    runs.push_back(std::async(std::launch::async, [this, strInput] {
      return Run({strInput, "1"});
    }));
  }
  for (auto& run : runs) {
    const S_Run result = run.get();
    EXPECT_EQ(result.strOut, kPlayed);
    EXPECT_EQ(result.nExit, 0);
  }
}

TEST_F(CommandLine, EveryOtherNumber_IsRealTimeMode) {
  std::vector<std::future<S_Run>> runs;
  for (const char* pszType : {"1", "3", "5", "7", "-1", "-2", "99999999999999999999", "4294967298",
                              "4294967296", "1abc"}) {
    runs.push_back(std::async(std::launch::async, [this, pszType] {
      return Run({m_folder.Path("missing.wav"), pszType});
    }));
  }
  for (auto& run : runs) {
    const S_Run result = run.get();
    EXPECT_EQ(result.strOut, kPlayed);
    EXPECT_EQ(result.nExit, 0);
  }
}

// --- Standard error, and what the program contains

TEST_F(CommandLine, WithoutADevice_ATerminalIsToldWhenPlaybackStarts) {
  const char* const kLine = "no output device; playing silently in real time\r\n";
  const std::string strWav = m_folder.Write("x.wav", WavOf(16000, 1, Silence(160)));
  const S_Run normal = m_player.RunOnTerminal({strWav, "0"});
  EXPECT_EQ(normal.strErr, kLine);
  EXPECT_EQ(normal.strOut, "file duration: 0.010000 secs\nPlaying...Finished\n");
  const S_Run realTime = m_player.RunOnTerminal({m_folder.Write("x.kst", SpeechOf(2).file), "1"});
  EXPECT_EQ(realTime.strErr, kLine);
  EXPECT_EQ(realTime.strOut, kPlayed);
  const S_Run length = m_player.RunOnTerminal({strWav, "2"});
  EXPECT_EQ(length.strErr, "");
}

TEST_F(CommandLine, WithoutADevice_AScreenIsToldInALineOfItsOwn) {
  const std::string strFile = m_folder.Write("x.kst", SpeechOf(5).file);
  const std::string strLine = "no output device; playing silently in real time\r\n";
  EXPECT_EQ(m_player.StartOnScreen({strFile, "0"}).Wait().strErr,
            "file duration: 0.100000 secs\r\n" + strLine + "Playing...Finished\r\n");
  EXPECT_EQ(m_player.StartOnScreen({strFile, "1"}).Wait().strErr,
            "Playing...\r\n" + strLine + "Finished\r\n");
}

TEST(Program, Executable_CarriesEveryMessageAndOperationText) {
  const C_Bytes program = FileBytes(VOXPLAY_PLAYER);
  for (const char* pszText : {"Play input file failed !!",
                              "Load Voxplay.dll failed !!",
                              "Decode input file failed !!",
                              "The input file is not supported format !!",
                              "NewAUGraph",
                              "AUGraphAddNode",
                              "AUGraphOpen",
                              "AUGraphNodeInfo",
                              "SetNumberChannels",
                              "SetSampleRate",
                              "SetScheduleFile",
                              "AUGraphConnectNodeInput",
                              "AUGraphInitialize",
                              "kAudioFilePropertyChannelLayout",
                              "Get Layout From AudioFile",
                              "kAudioUnitProperty_AudioChannelLayout",
                              "kAudioFilePropertyAudioDataPacketCount",
                              "kAudioUnitProperty_ScheduledFileRegion",
                              "kAudioUnitProperty_ScheduledFilePrime",
                              "kAudioUnitProperty_ScheduleStartTimeStamp",
                              "AUGraphStart",
                              "AUGraphStop",
                              "AUGraphIsRunning",
                              "AUGraphUninitialize",
                              "AudioFileClose",
                              "AUGraphClose",
                              "AudioFileOpenURL",
                              "AudioFileGetProperty"})
    EXPECT_NE(memmem(program.data(), program.size(), pszText, std::strlen(pszText) + 1), nullptr)
        << pszText;
}

TEST(Program, Executable_IsCalledVoxplaySampleCode) {
  EXPECT_EQ(std::filesystem::path(VOXPLAY_PLAYER).filename(), "VoxplaySampleCode");
}

}  // namespace
