// SPDX-License-Identifier: Apache-2.0
//
// voxtool convert --manifest, and voxtool manifest.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "ToolTest.h"
#include "manifest/Database.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

class ManifestCommandTest : public test::C_ToolTest {
 protected:
  void SetUp() override { fs::create_directories(Path("in")); }

  // Sounds 000.wav, 001.wav ... of a length each.
  void MakeSounds(std::size_t nSounds, std::size_t nFrames = 1600) const {
    for (std::size_t i = 0; i < nSounds; ++i) {
      MakeWav("in/" + NameOf(i) + ".wav", PublicSamples(nFrames + i));
    }
  }
  static std::string NameOf(std::size_t nSound) {
    std::string strName = std::to_string(nSound);
    return std::string(3 - strName.size(), '0') + strName;
  }
  // Without the time that it took.
  static std::string Timeless(const std::string& strSaid) {
    return strSaid.substr(0, strSaid.rfind(" in "));
  }
  static Texts Begin(const std::string& strTo = "heron4") {
    return {"--manifest", "@/a.db", "-r", "@/in", "-d", "@/out", "--to", strTo};
  }
  static Texts Continue() { return {"--manifest", "@/a.db"}; }

  [[nodiscard]] nlohmann::json Printed(Texts arguments) const {
    const S_Run run = Run(std::move(arguments));
    EXPECT_EQ(run.nExit, 0) << run.strErr;
    return nlohmann::json::parse(run.strOut);
  }
  [[nodiscard]] nlohmann::json Status() const {
    return Printed({"manifest", "status", "--json", "@/a.db"}).at(0);
  }
  [[nodiscard]] std::string Value(const std::string& strSql) const {
    C_Database database(Path("a.db"), false);
    C_Statement statement(database, strSql);
    return statement.Next() ? statement.Text(0) : "nothing";
  }
  // Every sound has a whole target, and nothing else is there.
  void ExpectWholeTargets(std::size_t nSounds, std::size_t nFrames) const {
    std::size_t nFiles = 0;
    for (const auto& entry : fs::directory_iterator(Path("out"))) {
      ++nFiles;
      EXPECT_EQ(entry.path().extension(), ".hrn") << entry.path();
    }
    EXPECT_EQ(nFiles, nSounds);
    for (std::size_t i = 0; i < nSounds; ++i) {
      ASSERT_EQ(voxplay::Reader(Path("out/" + NameOf(i) + ".hrn")).info().frames, nFrames + i);
    }
  }
  void WaitFor(const std::string& strName) const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!fs::exists(Path(strName)) && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
};

TEST_F(ManifestCommandTest, Folder_IsConvertedOnce) {
  MakeSounds(20);
  EXPECT_EQ(Timeless(Convert(Begin())),
            "@/a.db: 20 files listed, 20 new, 0 changed; --to heron4\n"
            "20 files: 20 converted; 2.01 s of sound");
  ExpectWholeTargets(20, 1600);
  const auto time = fs::last_write_time(Path("out/004.hrn"));
  EXPECT_EQ(Timeless(Convert(Begin())),
            "@/a.db: 20 files listed, 0 new, 0 changed; --to heron4\n"
            "0 files: 0 converted; 0 s of sound");
  EXPECT_EQ(Timeless(Convert(Continue())), "0 files: 0 converted; 0 s of sound");
  EXPECT_EQ(fs::last_write_time(Path("out/004.hrn")), time);
}

TEST_F(ManifestCommandTest, Files_AreThoseOfAConversionWithoutIt) {
  MakeSounds(5);
  Convert(Begin("kestrel"));
  Convert({"-r", "@/in", "-d", "@/plain", "--to", "kestrel"});
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(Content("out/" + NameOf(i) + ".kst"), Content("plain/" + NameOf(i) + ".kst"));
  }
}

TEST_F(ManifestCommandTest, Checksums_AreThoseOfTheDecodedSound) {
  MakeSounds(2);
  fs::copy(Path("in/000.wav"), Path("in/same.wav"));
  MakeWav("in/wide.wav", std::vector<float>{0.25F, -0.5F}, 24);
  MakeWav("in/float.wav", std::vector<float>{0.25F, -0.5F}, 0);
  Convert(Begin("wav"));
  EXPECT_EQ(Value("SELECT COUNT(DISTINCT checksum) FROM files"), "3");
  EXPECT_EQ(Value("SELECT MIN(length(checksum)) FROM files"), "16");
}

TEST_F(ManifestCommandTest, DamagedFile_IsListedWithItsReasonUntilItIsMended) {
  MakeSounds(6);
  Write("in/003.wav", {'R', 'I', 'F', 'F'});
  const std::string strSaid = Fail(1, Begin());
  EXPECT_NE(strSaid.find("\n6 files: 5 converted, 1 failed"), std::string::npos) << strSaid;
  const S_Run failed = Run({"manifest", "failed", "@/a.db"});
  EXPECT_TRUE(Said(failed.strOut).starts_with("@/in/003.wav: ")) << failed.strOut;
  EXPECT_EQ(std::ranges::count(failed.strOut, '\n'), 1);
  const nlohmann::json json = Printed({"manifest", "failed", "--json", "@/a.db"});
  ASSERT_EQ(json.size(), 1U);
  EXPECT_EQ(json[0]["source"], Path("in/003.wav"));
  EXPECT_EQ(json[0]["target"], Path("out/003.hrn"));
  EXPECT_EQ(json[0]["reason"].get<std::string>() + '\n', failed.strOut);

  EXPECT_NE(Fail(1, Continue()).find("@/a.db: 1 file failed in all: --retry-failed"),
            std::string::npos);
  EXPECT_NE(
      Fail(1, {"--manifest", "@/a.db", "--retry-failed"}).find("1 file: 0 converted, 1 failed"),
      std::string::npos);
  MakeWav("in/003.wav", PublicSamples(1603));
  EXPECT_NE(Convert(Begin()).find("0 new, 1 changed; --to heron4\n1 file: 1 converted"),
            std::string::npos);
  EXPECT_EQ(Printed({"manifest", "failed", "--json", "@/a.db"}).size(), 0U);
  ExpectWholeTargets(6, 1600);
}

TEST_F(ManifestCommandTest, ChangedSourceAndLostTarget_AreDoneAgainAndNothingElse) {
  MakeSounds(5);
  Convert(Begin());
  MakeWav("in/001.wav", PublicSamples(3000));
  fs::remove(Path("out/004.hrn"));
  EXPECT_NE(Convert(Begin()).find("0 new, 2 changed; --to heron4\n2 files: 2 converted"),
            std::string::npos);
  EXPECT_EQ(voxplay::Reader(Path("out/001.hrn")).info().frames, 3000U);
  EXPECT_TRUE(fs::exists(Path("out/004.hrn")));
  EXPECT_EQ(Value("SELECT group_concat(plan, '') FROM (SELECT plan FROM files ORDER BY source)"),
            "01001");
}

TEST_F(ManifestCommandTest, FilesOfTheUser_AreReplacedOnlyWithForce) {
  MakeSounds(3);
  fs::create_directories(Path("out"));
  Write("out/001.hrn", {'m', 'i', 'n', 'e'});
  EXPECT_NE(Fail(1, Begin()).find("@/out/001.hrn: exists: -f replaces it"), std::string::npos);
  EXPECT_EQ(Content("out/001.hrn").size(), 4U);
  EXPECT_EQ(Fail(1, Continue()).find("exists"), std::string::npos);
  Texts again = Begin();
  again.emplace_back("-f");
  EXPECT_NE(Convert(again).find("@/a.db: 1 file that failed is planned again\n1 file: 1 converted"),
            std::string::npos);
  ExpectWholeTargets(3, 1600);
}

TEST_F(ManifestCommandTest, TargetInTheWay_IsForgottenWhenItIsGone) {
  MakeSounds(2);
  fs::create_directories(Path("out"));
  Write("out/001.hrn", {'m', 'i', 'n', 'e'});
  Fail(1, Begin());
  fs::remove(Path("out/001.hrn"));
  EXPECT_NE(Convert(Begin()).find("0 new, 1 changed; --to heron4\n1 file: 1 converted"),
            std::string::npos);
  ExpectWholeTargets(2, 1600);
}

TEST_F(ManifestCommandTest, MarksThatWereAddedToATarget_StayUntilForce) {
  MakeSounds(3);
  Convert(Begin("wav"));
  EXPECT_EQ(Run({"tags", "add", "event", "@/out/001.wav", "--at", "100s", "--main", "3"}).nExit, 0);
  const auto marked = Content("out/001.wav");
  MakeWav("in/new.wav", PublicSamples(1000));
  EXPECT_NE(Convert(Begin("wav")).find("1 file: 1 converted"), std::string::npos);
  EXPECT_EQ(Content("out/001.wav"), marked);

  MakeWav("in/001.wav", PublicSamples(3000));
  const std::string strSaid = Fail(1, Begin("wav"));
  EXPECT_NE(strSaid.find("@/out/001.wav: has changed since it was made: -f replaces it\n"),
            std::string::npos)
      << strSaid;
  EXPECT_EQ(Content("out/001.wav"), marked);
  Convert({"--manifest", "@/a.db", "-f"});
  EXPECT_EQ(voxplay::Reader(Path("out/001.wav")).info().frames, 3000U);
}

TEST_F(ManifestCommandTest, Force_IsNotMeantByTheNextListing) {
  MakeSounds(1);
  Texts forced = Begin("wav");
  forced.emplace_back("-f");
  Convert(forced);
  Write("out/000.wav", {'m', 'i', 'n', 'e'});
  MakeWav("in/000.wav", PublicSamples(3000));
  EXPECT_NE(Fail(1, Begin("wav")).find("@/out/000.wav: has changed since it was made"),
            std::string::npos);
  EXPECT_EQ(Content("out/000.wav").size(), 4U);
}

TEST_F(ManifestCommandTest, OtherFolder_MovesNothing) {
  MakeSounds(2);
  Convert(Begin());
  Texts other = Begin();
  other[5] = "@/other";
  EXPECT_EQ(Timeless(Convert(other)),
            "@/a.db: 2 files listed, 0 new, 0 changed; --to heron4\n"
            "@/a.db: 2 files keep their first target: @/out/000.hrn\n"
            "0 files: 0 converted; 0 s of sound");
  EXPECT_FALSE(fs::exists(Path("other")));
  EXPECT_EQ(Status()["done"], 2);
}

TEST_F(ManifestCommandTest, DamagedAndCutFiles_AreDoneAndListed) {
  MakeSounds(3);
  auto bytes = Content("in/001.wav");
  Write("in/001.wav", {bytes.begin(), bytes.begin() + 44 + 500});
  bytes = Content("in/002.wav");
  Convert({"@/in/002.wav", "-o", "@/in/x.kst"});
  bytes = Content("in/x.kst");
  for (std::size_t n = bytes.size() / 2; n < bytes.size() / 2 + 8; ++n) bytes[n] ^= 0x5AU;
  Write("in/x.kst", bytes);
  const std::string strSaid = Convert(Begin("wav"));
  EXPECT_NE(strSaid.find("4 files: 4 converted (1 with damaged frames, 1 cut)"), std::string::npos)
      << strSaid;
  EXPECT_EQ(Status()["damaged"], 1);
  EXPECT_EQ(Status()["cut"], 1);
  const std::string strCut =
      "@/in/001.wav: the file is cut: 250 of 1,601 frames are there, and converted\n";
  const std::string strListed = Said(Run({"manifest", "damaged", "@/a.db"}).strOut);
  EXPECT_TRUE(strListed.starts_with(strCut)) << strListed;
  EXPECT_NE(strListed.find("@/in/x.kst: "), std::string::npos) << strListed;
  EXPECT_NE(strListed.find(" of 1,920 frames are damaged\n"), std::string::npos) << strListed;
  const nlohmann::json json = Printed({"manifest", "damaged", "--json", "@/a.db"});
  ASSERT_EQ(json.size(), 2U);
  EXPECT_EQ(json[0]["source"], Path("in/001.wav"));
  EXPECT_EQ(json[0]["cut"], true);
  EXPECT_EQ(json[0]["frames"], 250);
  EXPECT_EQ(json[0]["damaged_frames"], 0);
  EXPECT_EQ(json[1]["cut"], false);
  EXPECT_GT(json[1]["damaged_frames"], 0);
  EXPECT_NE(Run({"manifest", "status", "@/a.db"}).strOut.find("  1 with damaged frames, 1 cut\n"),
            std::string::npos);
}

TEST_F(ManifestCommandTest, Retry_CanBePlannedOnlyAndForgetsWhatIsGone) {
  MakeSounds(3);
  Write("in/000.wav", {'R', 'I', 'F', 'F'});
  Write("in/001.wav", {'R', 'I', 'F', 'F'});
  Fail(1, Begin());
  fs::remove(Path("in/001.wav"));
  EXPECT_EQ(Convert({"--manifest", "@/a.db", "--plan-only", "--retry-failed"}),
            "@/a.db: 1 file that failed is planned again\n"
            "@/a.db: 1 file that failed is gone, and forgotten\n");
  const nlohmann::json status = Status();
  EXPECT_EQ(status["planned"], 1);
  EXPECT_EQ(status["failed"], 0);
  EXPECT_EQ(status["files"], 2);
}

TEST_F(ManifestCommandTest, NamesThatWouldClash_AreWholeAndStaySo) {
  MakeSounds(1);
  Convert({"@/in/000.wav", "-o", "@/in/000.kst"});
  EXPECT_NE(Convert(Begin()).find("2 files: 2 converted"), std::string::npos);
  EXPECT_TRUE(fs::exists(Path("out/000.wav.hrn")));
  EXPECT_TRUE(fs::exists(Path("out/000.kst.hrn")));
  fs::remove(Path("in/000.kst"));
  EXPECT_EQ(Timeless(Convert(Begin())),
            "@/a.db: 1 file listed, 0 new, 0 changed; --to heron4\n"
            "0 files: 0 converted; 0 s of sound");
}

TEST_F(ManifestCommandTest, FullDisk_EndsTheWorkAndFailsNoFile) {
  MakeSounds(40, 16000);
  fs::create_directories(Path("out"));
  const S_Run run = RunLine(
      "unshare -m sh -c 'mount -t tmpfs -o size=256k none @/out || exit 77; "
      "$V convert --manifest @/a.db -r @/in -d @/out --to wav -j 2'");
  // Not everybody may mount.
  if (run.nExit == 77 || run.strErr.find("unshare") != std::string::npos) return;
  EXPECT_EQ(run.nExit, 1);
  EXPECT_NE(run.strErr.find("stopped: "), std::string::npos) << run.strErr;
  EXPECT_NE(run.strErr.find(": the disk is full\n"), std::string::npos) << run.strErr;
  const nlohmann::json status = Status();
  EXPECT_EQ(status["failed"], 0);
  EXPECT_EQ(status["claimed"], 0);
  EXPECT_GT(status["done"], 2);
  EXPECT_GT(status["planned"], 20);
}

TEST_F(ManifestCommandTest, ManifestAmongItsPieces_IsNamedAndTheOthersAreTaken) {
  MakeSounds(4);
  Texts plan = Begin();
  plan.emplace_back("--plan-only");
  Convert(plan);
  EXPECT_EQ(Run({"manifest", "split", "2", "@/a.db", "-o", "@/p-%d.db"}).nExit, 0);
  Convert({"--manifest", "@/p-1.db"});
  const S_Run merge = Run({"manifest", "merge", "@/a.db", "@/a.db", "@/p-1.db"});
  EXPECT_EQ(merge.nExit, 1);
  EXPECT_EQ(Said(merge.strErr), "@/a.db: is no piece: it is the manifest itself\n");
  EXPECT_EQ(Said(merge.strOut), "@/p-1.db: 2 new results, 0 files left\n");
}

TEST_F(ManifestCommandTest, ExistingTargets_CanBeSkipped) {
  MakeSounds(3);
  fs::create_directories(Path("out"));
  Write("out/001.hrn", {'m', 'i', 'n', 'e'});
  Texts plan = Begin();
  plan.insert(plan.end(), {"--skip-existing", "--plan-only"});
  EXPECT_EQ(Convert(plan), "@/a.db: 3 files listed, 3 new, 0 changed; --to heron4\n");
  EXPECT_FALSE(fs::exists(Path("out/000.hrn")));
  EXPECT_NE(Convert(Continue()).find("3 files: 2 converted, 1 skipped"), std::string::npos);
  EXPECT_EQ(Status()["skipped"], 1);
  EXPECT_EQ(Content("out/001.hrn").size(), 4U);
}

TEST_F(ManifestCommandTest, SkippedTarget_IsReplacedWhenItIsAskedLater) {
  MakeSounds(3);
  fs::create_directories(Path("out"));
  Write("out/001.hrn", {'m', 'i', 'n', 'e'});
  Texts skip = Begin();
  skip.emplace_back("--skip-existing");
  EXPECT_NE(Convert(skip).find("3 files: 2 converted, 1 skipped"), std::string::npos);
  EXPECT_NE(Convert(skip).find("0 files: 0 converted"), std::string::npos);
  Texts force = Begin();
  force.emplace_back("-f");
  EXPECT_EQ(Timeless(Convert(force)),
            "@/a.db: 3 files listed, 0 new, 0 changed; --to heron4\n"
            "@/a.db: 1 file skipped before is planned again\n"
            "1 file: 1 converted; 0.10 s of sound");
  EXPECT_EQ(Status()["skipped"], 0);
  ExpectWholeTargets(3, 1600);
  EXPECT_NE(Convert(force).find("0 files: 0 converted"), std::string::npos);
}

TEST_F(ManifestCommandTest, OptionsOfThePlan_AreKeptAndOthersRefused) {
  MakeSounds(2);
  Texts begin = Begin("kestrel");
  begin.insert(begin.end(), {"--bitrate", "24000", "--plan-only"});
  Convert(begin);
  EXPECT_EQ(Fail(2, {"--manifest", "@/a.db", "--to", "wav"}),
            Misuse("@/a.db: --to cannot be another one: its files are converted with kestrel"));
  EXPECT_EQ(Fail(2, {"--manifest", "@/a.db", "--gain", "3"}),
            Misuse("@/a.db: --gain cannot be another one: its files are converted without it"));
  EXPECT_EQ(Fail(2, {"--manifest", "@/a.db", "-r", "@/in", "-d", "@/out", "--bitrate", "16000"}),
            Misuse("@/a.db: --bitrate cannot be another one: its files are converted with 24000"));
  EXPECT_EQ(Fail(2, {"--manifest", "@/a.db", "--mono"}),
            Misuse("@/a.db: --mono cannot be another one: its files are converted without it"));
  Texts listed = {"--manifest", "@/a.db", "-r", "@/in", "-d", "@/out", "--plan-only"};
  EXPECT_EQ(Convert(listed),
            "@/a.db: 2 files listed, 0 new, 0 changed; --to kestrel --bitrate 24000\n");
  Convert({"--manifest", "@/a.db", "--bitrate", "24000", "--gain", "0"});
  EXPECT_EQ(voxplay::Reader(Path("out/001.kst")).info().bit_rate, 24000U);
}

TEST_F(ManifestCommandTest, UsualValueWhereThePlanHasAnother_IsRefused) {
  MakeSounds(1);
  Texts begin = Begin("wav");
  begin.insert(begin.end(), {"--gain", "6", "--plan-only"});
  Convert(begin);
  EXPECT_EQ(Fail(2, {"--manifest", "@/a.db", "--gain", "0"}),
            Misuse("@/a.db: --gain cannot be another one: its files are converted with 6.0"));
}

TEST_F(ManifestCommandTest, WhatCannotBeMeant_IsRefused) {
  MakeSounds(1);
  EXPECT_EQ(Fail(2, {"--manifest", "@/a.db", "@/in/000.wav", "-o", "@/x.wav"}),
            Misuse("--manifest needs -d DIR in place of -o"));
  EXPECT_EQ(Fail(2, {"--manifest", "@/a.db", "@/in/000.wav", "--to", "wav"}),
            Misuse("-d DIR has to say where the files go"));
  EXPECT_EQ(Fail(2, {"--manifest", "@/a.db", "-d", "@/out", "--to", "wav"}),
            "voxtool convert: no file is named\nTry \"voxtool convert --help\".\n");
  EXPECT_EQ(Fail(1, {"--manifest", "@/none.db"}),
            "@/none.db: cannot be opened: No such file or directory\n");
  EXPECT_EQ(Fail(1, {"--manifest", "@/in/000.wav"}),
            "@/in/000.wav: is no manifest: it is no database\n");
  EXPECT_EQ(Fail(2, {"--manifest", "@/a.db", "-", "-d", "@/out", "--to", "wav"}),
            Misuse("standard input has no name, which a manifest needs"));
  Fail(2, {"--retry-failed", "@/in/000.wav", "-d", "@/out", "--to", "wav"});
  EXPECT_EQ(Run({"manifest"}).nExit, 2);
  EXPECT_EQ(Run({"manifest", "split", "0", "@/a.db", "-o", "@/p%d"}).nExit, 2);
  EXPECT_EQ(Run({"manifest", "split", "2", "@/a.db", "-o", "@/p"}).nExit, 2);
  EXPECT_EQ(Run({"manifest", "status", "@/none.db"}).nExit, 1);
}

TEST_F(ManifestCommandTest, KilledProcess_LeavesTheRestToTheNextOne) {
  MakeSounds(200, 32000);
  C_RunningProgram run = Program().Start(Placed([] {
    Texts arguments = Begin();
    arguments.insert(arguments.begin(), "convert");
    arguments.insert(arguments.end(), {"-j", "2"});
    return arguments;
  }()));
  WaitFor("out/020.hrn");
  run.Send(SIGKILL);
  EXPECT_EQ(run.Wait().nSignal, SIGKILL);
  const nlohmann::json status = Status();
  EXPECT_GT(status["claimed"], 0);
  EXPECT_LT(status["done"], 200);
  const std::string strSaid = Convert(Continue());
  EXPECT_NE(strSaid.find(std::to_string(200 - status["done"].get<int>()) + " converted"),
            std::string::npos)
      << strSaid;
  EXPECT_EQ(Status()["done"], 200);
  // What a killed process was writing when it died may stay beside the targets.
  for (const auto& entry : fs::directory_iterator(Path("out"))) {
    if (entry.path().extension() != ".hrn") fs::remove(entry.path());
  }
  ExpectWholeTargets(200, 32000);
}

TEST_F(ManifestCommandTest, InterruptedProcess_GivesBackWhatItHasNotDone) {
  MakeSounds(200, 32000);
  Texts arguments = Begin();
  arguments.insert(arguments.begin(), "convert");
  C_RunningProgram run = Program().Start(Placed(arguments));
  WaitFor("out/010.hrn");
  run.Send(SIGINT);
  EXPECT_EQ(run.Wait().nExit, 130);
  const nlohmann::json status = Status();
  EXPECT_EQ(status["claimed"], 0);
  EXPECT_GT(status["done"], 0);
  EXPECT_GT(status["planned"], 0);
  Convert(Continue());
  ExpectWholeTargets(200, 32000);
}

TEST_F(ManifestCommandTest, ProcessesAtOnce_ShareTheWork) {
  MakeSounds(300, 8000);
  Texts plan = Begin();
  plan.emplace_back("--plan-only");
  Convert(plan);
  const Texts arguments = Placed({"convert", "--manifest", "@/a.db", "-j", "1"});
  C_RunningProgram first = Program().Start(arguments);
  C_RunningProgram second = Program().Start(arguments);
  C_RunningProgram third = Program().Start(arguments);
  std::uint64_t qwConverted = 0;
  for (C_RunningProgram* const pRun : {&first, &second, &third}) {
    const S_Run run = pRun->Wait();
    EXPECT_EQ(run.nExit, 0) << run.strErr;
    const std::size_t nCount = run.strErr.find("files: ");
    ASSERT_NE(nCount, std::string::npos) << run.strErr;
    qwConverted += std::stoul(run.strErr.substr(nCount + 7));
  }
  EXPECT_EQ(qwConverted, 300U);
  EXPECT_EQ(Status()["done"], 300);
  EXPECT_GT(std::stoi(Value("SELECT COUNT(DISTINCT worker) FROM files")), 1);
  ExpectWholeTargets(300, 8000);
}

TEST_F(ManifestCommandTest, Pieces_AreConvertedApartAndMerged) {
  MakeSounds(30);
  Write("in/007.wav", {'R', 'I', 'F', 'F'});
  Texts plan = Begin();
  plan.emplace_back("--plan-only");
  Convert(plan);
  const S_Run split = Run({"manifest", "split", "3", "@/a.db", "-o", "@/p-%d.db"});
  EXPECT_EQ(split.nExit, 0) << split.strErr;
  EXPECT_TRUE(Said(split.strOut).starts_with("@/p-1.db: 10 files, ")) << split.strOut;
  for (const char* pszPiece : {"@/p-1.db", "@/p-2.db", "@/p-3.db"}) {
    EXPECT_LT(Run({"convert", "--manifest", pszPiece, "-q"}).nExit, 2);
  }
  const Texts merge = {"manifest", "merge", "@/a.db", "@/p-1.db", "@/p-2.db", "@/p-3.db"};
  EXPECT_NE(Run(merge).strOut.find("p-2.db: 10 new results, 0 files left\n"), std::string::npos);
  EXPECT_NE(Run(merge).strOut.find("p-2.db: 0 new results, 0 files left\n"), std::string::npos);
  const nlohmann::json status = Status();
  EXPECT_EQ(status["done"], 29);
  EXPECT_EQ(status["failed"], 1);
  EXPECT_NEAR(status["seconds"].get<double>(), 2.9, 0.1);
}

TEST_F(ManifestCommandTest, Status_IsReadable) {
  MakeSounds(4);
  Write("in/001.wav", {'R', 'I', 'F', 'F'});
  Fail(1, Begin());
  const S_Run run = Run({"manifest", "status", "@/a.db"});
  EXPECT_EQ(Said(run.strOut),
            "@/a.db: 4 files, 0.30 s of sound done\n"
            "  done    3\n"
            "  failed  1\n");
}

}  // namespace
}  // namespace tool
