// SPDX-License-Identifier: Apache-2.0
#include "options/ManualPage.h"

#include <gtest/gtest.h>

#include "ChildProcess.h"
#include "Commands.h"
#include "OtherPrograms.h"
#include "SmallTable.h"
#include "options/OptionTable.h"

namespace {

std::vector<std::uint8_t> BytesOf(const std::string& strText) {
  return {strText.begin(), strText.end()};
}
std::string TextOf(const std::vector<std::uint8_t>& bytes) { return {bytes.begin(), bytes.end()}; }

// The page as man shows it.
std::string Shown(const C_TempFolder& folder, const std::string& strPage) {
  folder.Write("page.1", BytesOf(strPage));
  const std::string strShown =
      TextOf(RunIn(folder, "MANWIDTH=78 LC_ALL=C.UTF-8 man --warnings -E ascii -l @/page.1"));
  EXPECT_EQ(TextOf(folder.Read("stderr")), "");
  return strShown;
}

TEST(ManualPage, OfACommand_ShowsItsOptionsAsTheyAreTyped) {
  const C_TempFolder folder;
  const S_SmallTable table;
  const std::string strShown =
      Shown(folder,
            tool::ManualPage(table.commandLine, *table.commandLine.Table().get_subcommand("draw")));
  EXPECT_NE(strShown.find("voxtool-draw - draw a picture"), std::string::npos) << strShown;
  EXPECT_NE(strShown.find("--theme light|dark\n              its colours"), std::string::npos)
      << strShown;
  EXPECT_NE(strShown.find("EXIT STATUS"), std::string::npos) << strShown;
  EXPECT_NE(strShown.find("ENVIRONMENT\n       NO_COLOR\n"), std::string::npos) << strShown;
  EXPECT_NE(strShown.find("              voxtool draw a.wav\n"), std::string::npos) << strShown;
  EXPECT_EQ(strShown.find("hidden"), std::string::npos) << strShown;
}

TEST(ManualPage, OfTheProgram_HasExamples) {
  const C_TempFolder folder;
  const S_SmallTable table;
  const std::string strShown =
      Shown(folder, tool::ManualPage(table.commandLine, table.commandLine.Table()));
  EXPECT_NE(strShown.find("              voxtool info speech.kst\n"), std::string::npos)
      << strShown;
}

TEST(ManualPage, OfACommandWithCommands_HoldsThem) {
  const C_TempFolder folder;
  const S_SmallTable table;
  const std::string strShown = Shown(
      folder,
      tool::ManualPage(table.commandLine, *table.commandLine.Table().get_subcommand("marks")));
  EXPECT_NE(strShown.find(".Dots and 'quotes' may begin lines."), std::string::npos) << strShown;
  EXPECT_NE(strShown.find("voxtool marks add [OPTION]... KIND FILE..."), std::string::npos)
      << strShown;
  EXPECT_NE(strShown.find("voxtool marks add cue x.wav"), std::string::npos) << strShown;
  EXPECT_EQ(strShown.find("--help"), strShown.rfind("--help")) << "once for all of them";
}

TEST(ManualPage, OfEachCommandOfTheProgram_HasNoWarnings) {
  const C_TempFolder folder;
  RunIn(folder, VOXTOOL " manual --all -d @");
  RunIn(folder, "mandoc -T lint -W warning @/*.1");
  EXPECT_EQ(TextOf(folder.Read("stdout")), "");
  RunIn(folder, "for p in @/*.1; do man --warnings -E UTF-8 -l $p >/dev/null || exit 1; done");
  EXPECT_EQ(TextOf(folder.Read("stderr")), "");
  EXPECT_TRUE(folder.Has("voxtool.1"));
  EXPECT_TRUE(folder.Has("voxtool-play.1"));
}

// Every command of the program has a page, which describes the commands in it.
TEST(ManualPage, OfTheProgram_LeaveNoCommandOut) {
  const C_TempFolder folder;
  RunIn(folder, VOXTOOL " manual --all -d @");
  tool::C_CommandLine commandLine;
  tool::AddCommands(commandLine, nullptr);
  std::size_t nInner = 0;
  for (const CLI::App* pCommand : tool::CommandsIn(commandLine.Table())) {
    const std::string strPage = TextOf(folder.Read(tool::ManualPageName(*pCommand) + ".1"));
    EXPECT_TRUE(strPage.starts_with(".\\\" SPDX")) << pCommand->get_name();
    for (const CLI::App* pInner : tool::CommandsIn(*pCommand)) {
      EXPECT_NE(strPage.find(".SS " + tool::FullName(*pInner)), std::string::npos);
      ++nInner;
    }
  }
  EXPECT_GE(nInner, 12U);
}

TEST(ManualCommand, ACommandInACommand_HasAPageOfItsOwn) {
  const S_Run run = C_Program(VOXTOOL).Run({"manual", "tags", "add", "cue"});
  EXPECT_EQ(run.nExit, 0) << run.strErr;
  EXPECT_NE(run.strOut.find("voxtool\\-tags\\-add\\-cue \\- "), std::string::npos) << run.strOut;
  EXPECT_EQ(C_Program(VOXTOOL).Run({"manual", "tags", "ad"}).strErr,
            "voxtool manual: tags ad: no such command; did you mean \"add\"?\n"
            "Try \"voxtool manual --help\".\n");
}

TEST(ManualCommand, AnUnknownCommand_IsAUsageFailure) {
  const S_Run run = C_Program(VOXTOOL).Run({"manual", "paly"});
  EXPECT_EQ(run.nExit, 2);
  EXPECT_EQ(run.strErr,
            "voxtool manual: paly: no such command; did you mean \"play\"?\n"
            "Try \"voxtool manual --help\".\n");
}

TEST(ManualCommand, AFolderThatIsNotThere_IsMade) {
  const C_TempFolder folder;
  const S_Run run = C_Program(VOXTOOL).Run({"manual", "--all", "-d", folder.Path("new/pages")});
  EXPECT_EQ(run.nExit, 0) << run.strErr;
  EXPECT_TRUE(folder.Has("new/pages/voxtool-play.1"));
}

TEST(ManualCommand, AFolderThatCannotBeMade_IsAFailure) {
  const S_Run run = C_Program(VOXTOOL).Run({"manual", "--all", "-d", "/dev/null/pages"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_EQ(run.strErr, "/dev/null/pages: cannot be made: Not a directory\n");
}

}  // namespace
