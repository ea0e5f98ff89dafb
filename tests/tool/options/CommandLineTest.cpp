// SPDX-License-Identifier: Apache-2.0
#include "options/CommandLine.h"

#include <gtest/gtest.h>

#include "SmallTable.h"
#include "options/HelpText.h"
#include "options/Suggestion.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

struct S_Outcome {
  int nExit = -1;
  std::string strOut;
  std::string strErr;
};

S_Outcome OutcomeOf(S_SmallTable& table, const std::vector<const char*>& arguments) {
  S_Outcome outcome;
  CaptureStdout();
  CaptureStderr();
  outcome.nExit = table.Run(arguments);
  outcome.strOut = GetCapturedStdout();
  outcome.strErr = GetCapturedStderr();
  return outcome;
}

TEST(CommandLine, ACommandInACommand_IsRun) {
  S_SmallTable table;
  EXPECT_EQ(table.Run({"marks", "add", "cue", "a.wav", "b.wav"}), 0);
  EXPECT_EQ(table.strRan, "add");
  EXPECT_EQ(table.strText, "cue");
  EXPECT_EQ(table.files, (std::vector<std::string>{"a.wav", "b.wav"}));
}

TEST(CommandLine, ACommandThatOnlyHoldsOthers_NeedsOneOfThem) {
  S_SmallTable table;
  const S_Outcome outcome = OutcomeOf(table, {"marks"});
  EXPECT_EQ(outcome.nExit, 2);
  EXPECT_EQ(outcome.strErr, "voxtool marks: COMMAND is required\nTry \"voxtool marks --help\".\n");
}

TEST(CommandLine, WrongWords_AreAnsweredWithTheNearest) {
  S_SmallTable table;
  const std::pair<std::vector<const char*>, const char*> kCases[] = {
      {{"drwa"}, "voxtool: drwa: no such command; did you mean \"draw\"?"},
      {{"--versoin"}, "voxtool: --versoin: no such option; did you mean \"--version\"?"},
      {{"draw", "--them=dark"}, "voxtool draw: --them: no such option; did you mean \"--theme\"?"},
      {{"draw", "-x"}, "voxtool draw: -x: no such option; did you mean \"-o\"?"},
      {{"draw", "a.wav"}, "voxtool draw: a.wav: one operand too many"},
      {{"marks", "lst"}, "voxtool marks: lst: no such command; did you mean \"list\"?"},
      {{"marks", "elephants"}, "voxtool marks: elephants: no such command"},
  };
  for (const auto& [arguments, pszLine] : kCases) {
    const S_Outcome outcome = OutcomeOf(table, arguments);
    EXPECT_EQ(outcome.nExit, 2);
    EXPECT_EQ(outcome.strErr.substr(0, outcome.strErr.find('\n')), pszLine);
    EXPECT_EQ(outcome.strOut, "");
  }
  EXPECT_EQ(table.strRan, "");
}

TEST(CommandLine, HelpAndVersion_AreDataEverywhere) {
  S_SmallTable table;
  const S_Outcome help = OutcomeOf(table, {"marks", "add", "--help"});
  EXPECT_EQ(help.nExit, 0);
  EXPECT_EQ(help.strErr, "");
  EXPECT_TRUE(help.strOut.starts_with("Usage: voxtool marks add [OPTION]... KIND FILE...\n"))
      << help.strOut;
  const S_Outcome version = OutcomeOf(table, {"draw", "--version"});
  EXPECT_EQ(version.nExit, 0);
  EXPECT_EQ(version.strOut, "voxtool 0.1.0\n");
}

TEST(HelpText, In80Columns_IsATable) {
  const S_SmallTable table;
  const CLI::App& draw = *table.commandLine.Table().get_subcommand("draw");
  EXPECT_EQ(HelpText(table.commandLine, draw, 80),
            "Usage: voxtool draw [OPTION]...\n"
            "\n"
            "voxtool draw: draw a picture.\n"
            "\n"
            "Draws.\n"
            "\n"
            "Options:\n"
            "  -o, --output FILE       the picture\n"
            "  -d, --dir DIR           a folder for pictures\n"
            "      --theme light|dark  its colours\n"
            "      --size SIZE         its size (default: 800x400)\n"
            "  -f, --force             write over files\n"
            "  -h, --help              print this help and exit\n"
            "  -V, --version           print the version and exit\n"
            "\n"
            "Examples:\n"
            "  voxtool draw a.wav\n"
            "      draw it\n");
}

TEST(HelpText, OfTheProgram_HasExamplesAndTellsOfColours) {
  const S_SmallTable table;
  const std::string strText = HelpText(table.commandLine, table.commandLine.Table(), 80);
  EXPECT_NE(strText.find("\nExamples:\n  voxtool info speech.kst\n"), std::string::npos) << strText;
  EXPECT_NE(strText.find("NO_COLOR"), std::string::npos) << strText;
}

TEST(HelpText, InFewColumns_HasMeaningsBelowNamesAndNoLongLine) {
  const S_SmallTable table;
  const std::string strText = HelpText(table.commandLine, table.commandLine.Table(), 30);
  EXPECT_NE(strText.find("  marks\n      list and edit marks\n"), std::string::npos) << strText;
  for (std::size_t n = 0; n < strText.size();) {
    const std::size_t nEnd = strText.find('\n', n);
    // Examples are to be copied whole.
    const bool bExample = strText.substr(n, 10) == "  voxtool ";
    EXPECT_TRUE(bExample || nEnd - n <= 30) << strText.substr(n, nEnd - n);
    n = nEnd + 1;
  }
}

TEST(Suggestion, OneSwapOrOneLetter_IsNear) {
  const std::vector<std::string> names = {"convert", "compare", "check", "-q"};
  EXPECT_EQ(tool::Nearest("covnert", names), "convert");
  EXPECT_EQ(tool::Nearest("chek", names), "check");
  EXPECT_EQ(tool::Nearest("comp", names), "compare");
  EXPECT_EQ(tool::Nearest("play", names), std::nullopt);
  EXPECT_EQ(tool::Nearest("", names), std::nullopt);
  EXPECT_EQ(tool::Nearest(std::string(1000000, 'c'), names), std::nullopt);
  EXPECT_EQ(tool::Nearest("check", {}), std::nullopt);
}

}  // namespace
