// SPDX-License-Identifier: Apache-2.0
//
// The completions as the shells themselves use them. Zsh completes for people only, so its script
// is tested in a terminal (terminal_test.py), and read here.
#include "options/Completion.h"

#include <gtest/gtest.h>

#include "OtherPrograms.h"
#include "SmallTable.h"

namespace {

class Completion : public testing::Test {
 protected:
  Completion() {
    folder.Write("sound file.wav", {1});
    RunIn(folder, "mkdir @/songs");
    Write("bash", tool::BashCompletion(table.commandLine.Table()));
    Write("fish", tool::FishCompletion(table.commandLine.Table()));
    Write("zsh", tool::ZshCompletion(table.commandLine.Table()));
  }

  void Write(const char* pszName, const std::string& strText) const {
    folder.Write(pszName, {strText.begin(), strText.end()});
  }
  [[nodiscard]] std::string Shell(const std::string& strCommand) const {
    const auto bytes = RunIn(folder, "cd @/songs/.. && " + strCommand);
    EXPECT_EQ(folder.Read("stderr").size(), 0U);
    return {bytes.begin(), bytes.end()};
  }
  // What bash offers for the last of these words, in the form of COMP_WORDS, one a line.
  [[nodiscard]] std::string InBash(const std::string& strWords) const {
    Write("ask", "source ./bash\nCOMP_WORDS=(voxtool " + strWords +
                     ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_voxtool\n"
                     "((${#COMPREPLY[@]})) && printf '%s\\n' \"${COMPREPLY[@]}\" | sort\nexit 0\n");
    return Shell("bash ./ask");
  }
  [[nodiscard]] std::string InFish(const std::string& strLine) const {
    Write("ask", "source ./fish\ncomplete -C 'voxtool " + strLine + "'\n");
    return Shell("HOME=@ fish --no-config ./ask");
  }

  const C_TempFolder folder;
  const S_SmallTable table;
};

TEST_F(Completion, InBash_CommandsAndCommandsInThemAreOffered) {
  EXPECT_EQ(InBash("''"), "draw\nmarks\n");
  EXPECT_EQ(InBash("m"), "marks\n");
  EXPECT_EQ(InBash("marks ''"), "add\nlist\n");
  EXPECT_EQ(InBash("marks l"), "list\n");
}

TEST_F(Completion, InBash_OptionsAreThoseOfTheCommand) {
  EXPECT_EQ(InBash("draw --"), "--dir\n--force\n--help\n--output\n--size\n--theme\n--version\n");
  EXPECT_EQ(InBash("draw --t"), "--theme\n");
  EXPECT_EQ(InBash("marks add --t"), "");
}

TEST_F(Completion, InBash_ValuesAreListedWithAndWithoutASign) {
  EXPECT_EQ(InBash("draw --theme ''"), "dark\nlight\n");
  EXPECT_EQ(InBash("draw --theme = d"), "dark\n");
  EXPECT_EQ(InBash("draw --theme ="), "dark\nlight\n");
  EXPECT_EQ(InBash("draw --size ''"), "");
  EXPECT_EQ(InBash("marks add c"), "cue\n");
}

TEST_F(Completion, InBash_FilesAndFoldersAreThoseThatAreThere) {
  EXPECT_EQ(InBash("draw -o so"), "songs\nsound file.wav\n");
  EXPECT_EQ(InBash("draw --dir so"), "songs\n");
  EXPECT_EQ(InBash("marks add cue sou"), "sound file.wav\n");
}

TEST_F(Completion, InFish_TheSameIsOfferedWithMeanings) {
  EXPECT_EQ(InFish("m"), "marks\tlist and edit marks\n");
  EXPECT_EQ(InFish("marks "), "add\tadd a mark\nlist\tlist them\n");
  EXPECT_EQ(InFish("draw --th"), "--theme\tits colours\n");
  EXPECT_EQ(InFish("draw --theme d"), "dark\tits colours\n");
  EXPECT_EQ(InFish("draw --dir so"), "songs/\tDirectory\n");
  EXPECT_EQ(InFish("marks add cue sou"), "sound file.wav\n");
}

TEST_F(Completion, ForZsh_IsAScriptThatItReads) {
  EXPECT_EQ(Shell("zsh -n ./zsh"), "");
  const auto bytes = folder.Read("zsh");
  const std::string strText(bytes.begin(), bytes.end());
  EXPECT_TRUE(strText.starts_with("#compdef voxtool\n"));
  EXPECT_NE(strText.find("'(--theme)--theme=[its colours]:light|dark:(light dark)'"),
            std::string::npos)
      << strText;
}

TEST_F(Completion, OfManual_NamesCommandsAndThoseInThem) {
  const auto InBashOf = [this](const char* pszWords) {
    EXPECT_EQ(Shell("{ " VOXTOOL " completion bash >bash; }"), "");
    return InBash(pszWords);
  };
  EXPECT_EQ(InBashOf("manual t"), "tags\n");
  EXPECT_EQ(InBashOf("manual tags ''"), "add\nexport\nimport\nlist\nremove\n");
  EXPECT_EQ(InBashOf("manual tags add ''"), "cue\nevent\nloop\nregion\nsilence\n");
  EXPECT_EQ(InBashOf("manual tags list ''"), "");
  EXPECT_EQ(Shell("{ " VOXTOOL " completion fish >fish; }"), "");
  EXPECT_EQ(InFish("manual ta"), "tags\n");
  EXPECT_EQ(InFish("manual tags l"), "list\tshow the marks of files\n");
  EXPECT_EQ(InFish("manual tags add r"), "region\tadd a range that is kept uncompressed\n");
}

TEST_F(Completion, OfTheProgram_IsReadByAllShells) {
  EXPECT_EQ(Shell(VOXTOOL " completion bash | bash -n"), "");
  EXPECT_EQ(Shell(VOXTOOL " completion zsh | zsh -n"), "");
  EXPECT_EQ(Shell(VOXTOOL " completion fish | fish --no-config --no-execute"), "");
}

}  // namespace
