// SPDX-License-Identifier: Apache-2.0
//
// The entry point, on modes that do what the file name says.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "TempFolder.h"

namespace {

const char* const kUsage =
    "\nUsage: VoxplaySampleCode <FileName> <PlayType>\n\n"
    "    <FileName> : the file to be played.\n"
    "    <PlayType> : 0 -> Normal Mode (Default).\n"
    "                 1 -> Real Time Play (Support Kestrel only).\n"
    "                 2 -> Get length.\n\n"
    "Example:    VoxplaySampleCode Test.kst 0\n\n";

class Main : public ::testing::Test {
 protected:
  S_Run Run(const C_Program::Texts& arguments) {
    S_Run run = m_program.Run(arguments);
    EXPECT_EQ(run.strErr, "");
    return run;
  }

  C_Program m_program{VOXPLAY_MAIN_ON_FAKES};
};

TEST_F(Main, WrongArgumentCount_PrintsTheUsage) {
  ASSERT_EQ(std::string(kUsage).size(), 272U);
  ASSERT_EQ(std::count(kUsage, kUsage + 272, '\n'), 10);
  for (const C_Program::Texts& arguments :
       {C_Program::Texts{}, {"a"}, {"a", "0", "x"}, {"a", "0", "x", "y"}, {""}}) {
    const S_Run run = Run(arguments);
    EXPECT_EQ(run.strOut, kUsage) << arguments.size();
    EXPECT_EQ(run.nExit, 255);
  }
}

TEST_F(Main, EveryFailure_HasItsMessageAndExitCode255) {
  const std::vector<std::pair<const char*, const char*>> messages = {
      {"-1", "The input file is not supported format !!\n"},
      {"-2", "Decode input file failed !!\n"},
      {"-3", "Load Voxplay.dll failed !!\n"},
      {"-4", "Play input file failed !!\n"}};
  for (const auto& [pszResult, pszMessage] : messages) {
    const S_Run run = Run({pszResult, "0"});
    EXPECT_EQ(run.strOut, std::string("play 0\n") + pszMessage + "released\n");
    EXPECT_EQ(run.nExit, 255);
  }
}

TEST_F(Main, EveryOtherResult_PrintsNothingAndExitsWithZero) {
  for (const char* pszResult : {"0", "1", "-5", "2000", "-2147483648"}) {
    const S_Run run = Run({pszResult, "0"});
    EXPECT_EQ(run.strOut, "play 0\nreleased\n") << pszResult;
    EXPECT_EQ(run.nExit, 0);
  }
}

TEST_F(Main, Length_IsPrintedWhateverItIsAndExitsWithZero) {
  for (const std::string strLength : {"0", "17", "-1", "-2", "-3", "2147483647"}) {
    const S_Run run = Run({strLength, "2"});
    EXPECT_EQ(run.strOut, "Length:" + strLength + "\nreleased\n");
    EXPECT_EQ(run.nExit, 0);
  }
}

TEST_F(Main, PlayTypesThatReadAsTwo_AskForTheLength) {
  for (const char* pszType : {"2", "2abc", " 2", "+2", "02", "2.9", "\t2", "002x", "\n 2"}) {
    EXPECT_EQ(Run({"7", pszType}).strOut, "Length:7\nreleased\n") << pszType;
  }
}

TEST_F(Main, PlayTypesThatReadAsZero_AreNormalMode) {
  for (const char* pszType : {"0", "abc", "", "0x2", "-0", "x2", " ", "00", "+", "--2"}) {
    EXPECT_EQ(Run({"0", pszType}).strOut, "play 0\nreleased\n") << pszType;
  }
}

TEST_F(Main, OtherPlayTypes_AreRealTimeModeAndPassedOnWhole) {
  const std::vector<std::pair<const char*, const char*>> types = {
      {"1", "1"},
      {"3", "3"},
      {"5", "5"},
      {"7", "7"},
      {"1abc", "1"},
      {"22", "22"},
      {"-1", "18446744073709551615"},
      {"-2", "18446744073709551614"},
      {"4294967298", "4294967298"},
      {"4294967296", "4294967296"},
      {"18446744073709551618", "18446744073709551615"},
      {"99999999999999999999", "18446744073709551615"}};
  for (const auto& [pszType, pszFlag] : types) {
    EXPECT_EQ(Run({"0", pszType}).strOut, "play " + std::string(pszFlag) + "\nreleased\n")
        << pszType;
  }
}

TEST_F(Main, ExceptionOutOfAMode_ReleasesTheHolderAndPassesOn) {
  for (const char* pszType : {"0", "1", "2"}) {
    const S_Run run = m_program.Run({"throw", pszType});
    EXPECT_TRUE(run.strOut.ends_with("released\n")) << run.strOut;
    EXPECT_EQ(std::count(run.strOut.begin(), run.strOut.end(), 'r'), 1) << "released once";
    EXPECT_EQ(run.nSignal, SIGABRT);
    EXPECT_NE(run.strErr.find("AUGraphStart"), std::string::npos) << run.strErr;
  }
}

TEST_F(Main, UnderAnotherName_ThePrintedNameStays) {
  const C_TempFolder folder;
  std::filesystem::create_symlink(VOXPLAY_MAIN_ON_FAKES, folder.Path("other"));
  const C_Program other(folder.Path("other"));
  EXPECT_EQ(other.Run({}).strOut, kUsage);
}

}  // namespace
