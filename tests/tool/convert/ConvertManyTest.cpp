// SPDX-License-Identifier: Apache-2.0
//
// voxtool convert on many files.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "ToolTest.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

class ConvertManyTest : public test::C_ToolTest {
 protected:
  // Sounds 000.wav, 001.wav ... in a folder, all of other lengths.
  void MakeSounds(const std::string& strFolder, std::size_t nSounds,
                  std::size_t nFrames = 1600) const {
    fs::create_directories(Path(strFolder));
    for (std::size_t i = 0; i < nSounds; ++i) {
      MakeWav(strFolder + "/" + NameOf(i) + ".wav", PublicSamples(nFrames + i));
    }
  }
  static std::string NameOf(std::size_t nSound) {
    std::string strName = std::to_string(nSound);
    return std::string(3 - strName.size(), '0') + strName;
  }
  // All files below a folder, by their paths in it.
  [[nodiscard]] Texts Tree(const std::string& strFolder) const {
    Texts names;
    for (const auto& entry : fs::recursive_directory_iterator(Path(strFolder))) {
      if (entry.is_regular_file()) {
        names.push_back(entry.path().lexically_relative(Path(strFolder)).string());
      }
    }
    std::ranges::sort(names);
    return names;
  }
  void WriteText(const std::string& strName, const std::string& strText) const {
    Write(strName, {strText.begin(), strText.end()});
  }
  // Without the time that it took.
  static std::string Timeless(const std::string& strSaid) {
    return strSaid.substr(0, strSaid.rfind(" in "));
  }
};

TEST_F(ConvertManyTest, FolderWithOneDamagedFile_IsConvertedButForThat) {
  MakeSounds("in", 200);
  WriteText("in/077.wav", "RIFF damaged");
  const std::string strSaid = Fail(1, {"-r", "@/in", "-d", "@/out", "--to", "kestrel", "-j", "2"});
  EXPECT_TRUE(strSaid.starts_with("@/in/077.wav: ")) << strSaid;
  EXPECT_NE(strSaid.find("\n200 files: 199 converted, 1 failed; 21 s of sound in "),
            std::string::npos)
      << strSaid;
  EXPECT_EQ(std::ranges::count(strSaid, '\n'), 2) << strSaid;
  const Texts made = Tree("out");
  EXPECT_EQ(made.size(), 199U);
  EXPECT_EQ(std::ranges::count(made, "077.kst"), 0);
}

TEST_F(ConvertManyTest, TwoThreads_MakeTheSameFilesAsOne) {
  MakeSounds("in", 40, 9000);
  for (const char* pszTo : {"kestrel", "heron3", "vef"}) {
    Convert({"-r", "@/in", "-f", "-d", "@/one", "--to", pszTo, "-j", "1", "--rate", "16000"});
    Convert({"-r", "@/in", "-f", "-d", "@/two", "--to", pszTo, "-j", "2"});
    ASSERT_EQ(Tree("one"), Tree("two"));
    for (const std::string& strName : Tree("one")) {
      ASSERT_EQ(Content("one/" + strName), Content("two/" + strName)) << strName;
    }
  }
  EXPECT_EQ(Tree("one").size(), 120U);
}

TEST_F(ConvertManyTest, Tree_IsKeptBelowTheFolder) {
  MakeSounds("in/a/b", 2);
  MakeSounds("in/c", 1);
  WriteText("in/c/notes.txt", "no sound");
  EXPECT_EQ(Timeless(Convert({"-r", "@/in", "-d", "@/out", "--to", "heron4"})),
            "1 other file left out\n3 files: 3 converted; 0.30 s of sound");
  EXPECT_EQ(Tree("out"), (Texts{"a/b/000.hrn", "a/b/001.hrn", "c/000.hrn"}));
}

TEST_F(ConvertManyTest, TargetsBelowTheFolder_AreNotReadAgain) {
  MakeSounds("in", 3);
  const Texts arguments = {"-r", "@/in", "-d", "@/in/new", "--to", "kestrel", "-f"};
  EXPECT_EQ(Timeless(Convert(arguments)), "3 files: 3 converted; 0.30 s of sound");
  EXPECT_EQ(Timeless(Convert(arguments)), "3 files: 3 converted; 0.30 s of sound");
  EXPECT_EQ(Tree("in/new"), (Texts{"000.kst", "001.kst", "002.kst"}));
  // Somebody who names that folder means it.
  EXPECT_EQ(Timeless(Convert({"-r", "@/in/new", "-d", "@/in/new", "--to", "wav"})),
            "3 files: 3 converted; 0.34 s of sound");
}

TEST_F(ConvertManyTest, ListedNames_MayHaveLineEndsAndComeFromAPipe) {
  MakeSounds("in", 2);
  fs::rename(Path("in/000.wav"), Path("in/two\nlines.wav"));
  const S_Run run =
      Shell().Run(Placed({"-c",
                          "cd @ && find in -name '*.wav' -print0 | $V convert --files-from - -0 -q "
                          "-d out --to wav"}),
                  {"V=" VOXPLAY_VOXTOOL, "PATH=/usr/bin:/bin"});
  EXPECT_EQ(run.nExit, 0) << run.strErr;
  EXPECT_EQ(Timeless(run.strErr), "2 files: 2 converted; 0.20 s of sound");
  EXPECT_EQ(Tree("out"), (Texts{"in/001.wav", "in/two\nlines.wav"}));
  WriteText("list", Path("in/001.wav") + "\n" + Path("in/none.wav") + "\n");
  EXPECT_TRUE(Fail(1, {"--files-from", "@/list", "-d", "@/more", "--to", "wav"})
                  .starts_with("@/in/none.wav: "));
  EXPECT_EQ(Tree("more"), Texts{"001.wav"});
}

// Up to its first zero, such a list would be the name of one of the sounds.
TEST_F(ConvertManyTest, ListWithZeros_IsNotTakenForLines) {
  MakeSounds("in", 2);
  const auto before = FileBytes(Path("in/000.wav"));
  WriteText("list", Path("in/000.wav") + '\0' + Path("in/001.wav") + '\0');
  EXPECT_EQ(Fail(1, {"--files-from", "@/list", "-d", "@/in", "--to", "kestrel", "-f"}),
            "@/list: is no list of lines: a name has a zero in it: -0 reads those\n");
  EXPECT_EQ(Tree("in"), (Texts{"000.wav", "001.wav"}));
  EXPECT_EQ(FileBytes(Path("in/000.wav")), before);
}

TEST_F(ConvertManyTest, SameNameTwice_IsConvertedOnce) {
  MakeSounds("in", 1);
  WriteText("list", Path("in/000.wav") + "\n" + Path("in/../in/000.wav") + "\n");
  EXPECT_EQ(
      Timeless(Convert({"@/in/000.wav", "--files-from", "@/list", "-d", "@/out", "--to", "wav"})),
      "1 file: 1 converted; 0.10 s of sound");
}

TEST_F(ConvertManyTest, OtherFilesInAFolder_AreCountedAndNamedWhenItIsAsked) {
  MakeSounds("in", 1);
  WriteText("in/notes.txt", "words");
  WriteText("in/.hidden.wav", "words");
  Texts arguments = {"-r", "@/in", "-d", "@/out", "--to", "wav", "-f"};
  EXPECT_EQ(Timeless(Convert(arguments)),
            "2 other files left out\n1 file: 1 converted; 0.10 s of sound");
  arguments.emplace_back("-qq");
  EXPECT_EQ(Convert(arguments), "");
  arguments.back() = "-v";
  EXPECT_NE(Convert(arguments).find("@/in/notes.txt: is left out: it has no extension of sounds\n"),
            std::string::npos);
}

TEST_F(ConvertManyTest, FullDisk_EndsTheWork) {
  MakeSounds("in", 60, 16000);
  fs::create_directories(Path("out"));
  const S_Run run = RunLine(
      "unshare -m sh -c 'mount -t tmpfs -o size=256k none @/out || exit 77; "
      "$V convert -r @/in -d @/out --to wav -j 2'");
  // Not everybody may mount.
  if (run.nExit == 77 || run.strErr.find("unshare") != std::string::npos) return;
  EXPECT_EQ(run.nExit, 1);
  EXPECT_TRUE(Said(run.strErr).starts_with("stopped: ")) << run.strErr;
  EXPECT_TRUE(run.strErr.ends_with(": cannot be written: the disk is full\n")) << run.strErr;
  EXPECT_EQ(std::ranges::count(run.strErr, '\n'), 2) << run.strErr;
}

TEST_F(ConvertManyTest, SameNamesInSeveralFolders_KeepThoseOfTheFolders) {
  MakeSounds("day1", 2);
  MakeSounds("day2", 1);
  MakeSounds("day3/deep", 1);
  Convert({"-r", "@/day1", "@/day2", "@/day3", "-d", "@/out", "--to", "wav"});
  EXPECT_EQ(Tree("out"), (Texts{"001.wav", "day1/000.wav", "day2/000.wav", "deep/000.wav"}));
  Convert({"-r", "@/day1", "@/day2", "@/day3", "-d", "@/kept", "--to", "wav", "--manifest", "@/m"});
  EXPECT_EQ(Tree("kept"), Tree("out"));
  Convert({"@/day1/000.wav", "@/day2/000.wav", "-d", "@/two", "--to", "wav"});
  EXPECT_EQ(Tree("two"), (Texts{"day1/000.wav", "day2/000.wav"}));
}

TEST_F(ConvertManyTest, ExistingTargets_AreKeptUnlessTheyAreToBeReplaced) {
  MakeSounds("in", 3);
  fs::create_directories(Path("out"));
  WriteText("out/001.kst", "old");
  const Texts arguments = {"-r", "@/in", "-d", "@/out", "--to", "kestrel"};
  EXPECT_EQ(Timeless(Fail(1, arguments)),
            "@/out/001.kst: exists: -f replaces it\n"
            "3 files: 2 converted, 1 failed; 0.20 s of sound");
  EXPECT_EQ(Content("out/001.kst").size(), 3U);
  Texts more = arguments;
  more.emplace_back("--skip-existing");
  EXPECT_EQ(Timeless(Convert(more)), "3 files: 0 converted, 3 skipped; 0 s of sound");
  more.back() = "-f";
  EXPECT_EQ(Timeless(Convert(more)), "3 files: 3 converted; 0.30 s of sound");
  EXPECT_GT(Content("out/001.kst").size(), 48U);
}

TEST_F(ConvertManyTest, Quietness_LeavesTheSummaryThenErrorsOnly) {
  MakeSounds("in", 2);
  WriteText("in/none.wav", "");
  const Texts arguments = {"-r", "@/in", "-f", "-d", "@/out", "--to", "wav"};
  Texts quiet = arguments;
  quiet.emplace_back("-q");
  EXPECT_NE(Fail(1, quiet).find("3 files: 2 converted, 1 failed"), std::string::npos);
  quiet.back() = "-qq";
  const std::string strSaid = Fail(1, quiet);
  EXPECT_EQ(std::ranges::count(strSaid, '\n'), 1) << strSaid;
}

TEST_F(ConvertManyTest, Progress_IsShownOnATerminalOnly) {
  MakeSounds("in", 30, 160000);
  const Texts arguments =
      Placed({"convert", "-r", "@/in", "-f", "-j", "1", "-d", "@/out", "--to", "heron6"});
  const S_Run run = Program().RunOnTerminal(arguments);
  EXPECT_EQ(run.nExit, 0);
  EXPECT_NE(run.strErr.find("/30 files"), std::string::npos) << run.strErr;
  EXPECT_NE(run.strErr.find("\x1b[J"), std::string::npos);
  EXPECT_EQ(run.strOut, "");
  const S_Run plain = Program().Run(arguments);
  EXPECT_EQ(plain.strErr.find('\r'), std::string::npos) << plain.strErr;
}

TEST_F(ConvertManyTest, Interrupt_LeavesWholeFilesOnly) {
  MakeSounds("in", 400, 32000);
  for (const char* pszJobs : {"1", "2"}) {
    fs::remove_all(Path("out"));
    C_RunningProgram run = Program().Start(
        Placed({"convert", "-r", "@/in", "-d", "@/out", "--to", "heron6", "-j", pszJobs}));
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!fs::exists(Path("out/003.hrn")) && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    run.Send(SIGINT);
    const S_Run ended = run.Wait();
    EXPECT_EQ(ended.nExit, 130) << ended.strErr;
    const Texts made = Tree("out");
    EXPECT_LT(made.size(), 400U);
    EXPECT_EQ(ended.strErr,
              "interrupted: " + std::to_string(made.size()) + " of 400 files converted\n");
    for (const std::string& strName : made) {
      EXPECT_TRUE(strName.ends_with(".hrn")) << strName;
      EXPECT_EQ(voxplay::Reader(Path("out/" + strName)).info().frames,
                32000U + static_cast<unsigned>(std::stoi(strName)))
          << strName;
    }
  }
  Convert({"-r", "@/in", "-d", "@/out", "--to", "heron6", "--skip-existing"});
  EXPECT_EQ(Tree("out").size(), 400U);
}

}  // namespace
}  // namespace tool
