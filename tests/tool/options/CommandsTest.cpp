// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

#include <gtest/gtest.h>

#include "options/HelpText.h"
#include "options/OptionTable.h"

namespace {

void ExpectSameHelp(const tool::C_CommandLine& all, const CLI::App& expected,
                    const tool::C_CommandLine& some, const CLI::App& actual) {
  EXPECT_EQ(tool::HelpText(some, actual, 80), tool::HelpText(all, expected, 80));
  const auto inner = tool::CommandsIn(expected);
  const auto actualInner = tool::CommandsIn(actual);
  ASSERT_EQ(actualInner.size(), inner.size());
  for (std::size_t n = 0; n < inner.size(); ++n) {
    ExpectSameHelp(all, *inner[n], some, *actualInner[n]);
  }
}

TEST(Commands, OneThatIsNamedFirst_IsTheOnlyOneAndComplete) {
  tool::C_CommandLine all;
  tool::AddCommands(all, nullptr);
  std::size_t nAlone = 0;
  for (const CLI::App* pExpected : tool::CommandsIn(all.Table())) {
    const std::string strName = tool::NameOf(*pExpected);
    SCOPED_TRACE(strName);
    tool::C_CommandLine some;
    tool::AddCommandsFor(strName, some, nullptr);
    const auto commands = tool::CommandsIn(some.Table());
    if (strName == "completion" || strName == "manual") {
      ExpectSameHelp(all, all.Table(), some, some.Table());
      continue;
    }
    ASSERT_EQ(commands.size(), 1U);
    EXPECT_EQ(tool::NameOf(*commands.front()), strName);
    ExpectSameHelp(all, *pExpected, some, *commands.front());
    ++nAlone;
  }
  EXPECT_EQ(nAlone, 9U);
}

TEST(Commands, AnyOtherFirstWord_GetsThemAll) {
  tool::C_CommandLine all;
  tool::AddCommands(all, nullptr);
  for (const char* pszWord : {"", "--help", "-V", "conver", "tags add", "Info"}) {
    SCOPED_TRACE(pszWord);
    tool::C_CommandLine some;
    tool::AddCommandsFor(pszWord, some, nullptr);
    ExpectSameHelp(all, all.Table(), some, some.Table());
  }
}

}  // namespace
