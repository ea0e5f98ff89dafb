// SPDX-License-Identifier: Apache-2.0
#include "manifest/Plan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "ManifestFixture.h"
#include "manifest/ManifestJobs.h"

namespace tool {
namespace {

class PlanTest : public test::C_ManifestTest {
 protected:
  // As if a process had converted all files.
  void Finish(C_Manifest& manifest) const {
    C_ManifestJobs jobs(manifest, {});
    while (const auto job = jobs.Next()) {
      Write(std::filesystem::path(job->strTarget).filename().string(), {1, 2, 3});
      S_FileResult result;
      result.qwFrames = 7;
      result.qwSum = 10;
      jobs.Done(*job, result);
    }
    jobs.End();
  }
  // What the next process may do with the target of the one file that is planned.
  static S_FileJob NextJob(C_Manifest& manifest) { return *C_ManifestJobs(manifest, {}).Next(); }
  static void ChangeTime(const std::string& strPath) {
    const auto time = std::filesystem::last_write_time(strPath);
    std::filesystem::last_write_time(strPath, time + std::chrono::seconds(5));
  }
  // A manifest of so many sources, all of which are done.
  [[nodiscard]] C_Manifest Finished(int nFiles) const {
    MakeSources(nFiles);
    C_Manifest manifest = Made();
    PlanFiles(manifest, nFiles);
    Finish(manifest);
    return manifest;
  }
};

TEST_F(PlanTest, Files_ArePlannedOnce) {
  MakeSources(5);
  C_Manifest manifest = Made();
  EXPECT_EQ(PlanFiles(manifest, 3).qwNew, 3U);
  const S_PlanCounts counts = PlanFiles(manifest, 5);
  EXPECT_EQ(counts.qwNew, 2U);
  EXPECT_EQ(counts.qwChanged, 0U);
  EXPECT_EQ(counts.qwFiles, 5U);
  EXPECT_EQ(manifest.Counts().qwPlanned, 5U);
  EXPECT_EQ(manifest.Counts().qwBytes, 15U);
  EXPECT_EQ(Value(manifest, "SELECT target FROM files WHERE bytes = 4"), Path("o4"));
}

TEST_F(PlanTest, WhatIsDoneAndUnchanged_StaysDone) {
  C_Manifest manifest = Finished(3);
  EXPECT_EQ(PlanFiles(manifest, 3).qwChanged, 0U);
  EXPECT_EQ(manifest.Counts().qwDone, 3U);
}

TEST_F(PlanTest, ChangedSource_IsPlannedAgain) {
  C_Manifest manifest = Finished(3);
  Write("2", {1, 2, 3, 4});
  EXPECT_EQ(PlanFiles(manifest, 3).qwChanged, 1U);
  EXPECT_EQ(Value(manifest, "SELECT source FROM files WHERE state = 0"), Path("2"));
  EXPECT_EQ(Value(manifest, "SELECT own || plan || bytes FROM files WHERE state = 0"), "114");
  EXPECT_EQ(Value(manifest, "SELECT checksum IS NULL FROM files WHERE state = 0"), "1");
}

TEST_F(PlanTest, SourceOfAnotherTime_IsPlannedAgain) {
  C_Manifest manifest = Finished(1);
  const auto time = std::filesystem::last_write_time(Path("1"));
  std::filesystem::last_write_time(Path("1"), time - std::chrono::milliseconds(3));
  EXPECT_EQ(PlanFiles(manifest, 1).qwChanged, 1U);
}

TEST_F(PlanTest, LostTargets_ArePlannedAgainAndChangedOnesStay) {
  C_Manifest manifest = Finished(4);
  std::filesystem::remove(Path("o1"));
  Write("o3", {1, 2});
  EXPECT_EQ(PlanFiles(manifest, 4).qwChanged, 1U);
  EXPECT_EQ(Value(manifest, "SELECT group_concat(bytes) FROM files WHERE state = 0"), "1");
}

// A server may be out of reach for a moment. Here it is a link that leads to itself.
TEST_F(PlanTest, TargetThatCannotBeLookedAt_IsNotLost) {
  C_Manifest manifest = Finished(2);
  std::filesystem::remove(Path("o1"));
  std::filesystem::create_symlink("o1", Path("o1"));
  EXPECT_EQ(PlanFiles(manifest, 2).qwChanged, 0U);
  Write("1", {1, 2, 3, 4});
  EXPECT_EQ(PlanFiles(manifest, 2).qwChanged, 1U);
  EXPECT_FALSE(NextJob(manifest).bOwnTarget);
}

TEST_F(PlanTest, TargetAsItWasMade_IsOurs) {
  C_Manifest manifest = Finished(1);
  Write("1", {1, 2, 3, 4});
  PlanFiles(manifest, 1);
  EXPECT_TRUE(NextJob(manifest).bOwnTarget);
  // It was given back, and is so still.
  EXPECT_TRUE(NextJob(manifest).bOwnTarget);
}

TEST_F(PlanTest, TargetThatTheUserHasChanged_IsNotOurs) {
  C_Manifest manifest = Finished(1);
  Write("1", {1, 2, 3, 4});
  ChangeTime(Path("o1"));
  PlanFiles(manifest, 1);
  const S_FileJob job = NextJob(manifest);
  EXPECT_FALSE(job.bOwnTarget);
  EXPECT_TRUE(job.bChangedTarget);
  EXPECT_FALSE(NextJob(manifest).bOwnTarget);
}

TEST_F(PlanTest, TargetThatAppearsAfterAFileWasGivenBack_IsNotOurs) {
  MakeSources(1);
  C_Manifest manifest = Made();
  PlanFiles(manifest, 1);
  EXPECT_TRUE(NextJob(manifest).bOwnTarget);
  Write("o1", {1, 2});
  EXPECT_FALSE(NextJob(manifest).bOwnTarget);
}

TEST_F(PlanTest, OtherTargets_AreToldAndNotTaken) {
  C_Manifest manifest = Finished(2);
  C_Plan plan(manifest);
  plan.Add(Path("1"), Path("other/o1"));
  plan.Add(Path("2"), Path("other/o2"));
  plan.Add(Path("3"), Path("o1/3"));
  const S_PlanCounts counts = plan.Finish("{}", "");
  EXPECT_EQ(counts.qwKept, 2U);
  EXPECT_EQ(counts.strKept, Path("o1"));
  EXPECT_EQ(counts.qwChanged, 0U);
  EXPECT_EQ(counts.qwNew, 1U);
  EXPECT_EQ(Value(manifest, "SELECT group_concat(target) FROM files WHERE state = 2"),
            Path("o1") + "," + Path("o2"));
}

TEST_F(PlanTest, SameTargets_AreRefusedAndNothingIsPlanned) {
  MakeSources(3);
  C_Manifest manifest = Made();
  C_Plan plan(manifest);
  plan.Add("/in/a", "/out/x");
  plan.Add("/in/b", "/out/y");
  plan.Add("/in/c", "/out/x");
  EXPECT_EQ(FailureOf([&] { plan.Finish("{}", ""); }),
            "/in/c: has the same target as /in/a: /out/x");
  EXPECT_EQ(manifest.Counts().All(), 0U);
  EXPECT_EQ(manifest.Setting(kOptionsSetting), "");
}

TEST_F(PlanTest, TargetsOfEarlierFiles_AreRefused) {
  C_Manifest manifest = Made();
  C_Plan first(manifest);
  first.Add("/in/a", "/out/x");
  first.Finish("{}", "");
  C_Plan second(manifest);
  second.Add("/other/a", "/out/x");
  EXPECT_EQ(FailureOf([&] { second.Finish("{}", ""); }),
            "/other/a: has the same target as /in/a: /out/x");
  EXPECT_EQ(manifest.Counts().All(), 1U);
}

TEST_F(PlanTest, TargetThatIsToBeRead_IsRefused) {
  C_Manifest manifest = Made();
  C_Plan plan(manifest);
  plan.Add("/in/a", "/in/b");
  plan.Add("/in/b", "/in/c");
  EXPECT_EQ(FailureOf([&] { plan.Finish("{}", ""); }),
            "/in/a: its target is to be read as well: /in/b");
}

// "/out/x" of "/in/x.a", then "/out/x.a" and "/out/in/x.a".
std::string TargetChoice(const S_ListedFile& file, unsigned nChoice) {
  const std::string strKept(file.Kept());
  if (nChoice == 0) return "/out/" + strKept.substr(0, strKept.rfind('.'));
  if (nChoice == 1) return "/out/" + strKept;
  return nChoice == 2 ? "/out" + file.strPath : "";
}

TEST_F(PlanTest, FilesOfTheSameTarget_TakeTheirOtherOnesAndKeepThem) {
  C_Manifest manifest = Made();
  const auto Targets = [&manifest](const std::vector<std::string>& extensions) {
    C_Plan plan(manifest, &TargetChoice);
    for (const std::string& strExtension : extensions) {
      plan.Add("/in/x." + strExtension, "/out/x", 4);
    }
    EXPECT_EQ(plan.Finish("{}", "").qwKept, 0U);
    return Value(manifest,
                 "SELECT group_concat(target) FROM (SELECT * FROM files ORDER BY source)");
  };
  EXPECT_EQ(Targets({"a", "b"}), "/out/x.a,/out/x.b");
  EXPECT_EQ(Targets({"a", "b"}), "/out/x.a,/out/x.b");
  EXPECT_EQ(Targets({"b"}), "/out/x.a,/out/x.b");
  EXPECT_EQ(Targets({"a", "b", "c"}), "/out/x.a,/out/x.b,/out/x.c");
}

TEST_F(PlanTest, FileThatComesLater_LeavesTheTargetToTheFirst) {
  C_Manifest manifest = Made();
  C_Plan first(manifest, &TargetChoice);
  first.Add("/in/x.b", "/out/x", 4);
  first.Finish("{}", "");
  C_Plan second(manifest, &TargetChoice);
  second.Add("/in/x.a", "/out/x", 4);
  EXPECT_EQ(second.Finish("{}", "").qwNew, 1U);
  EXPECT_EQ(Value(manifest, "SELECT group_concat(target) FROM files"), "/out/x,/out/x.a");
}

TEST_F(PlanTest, SameNamesInSeveralFolders_KeepThoseOfTheFolders) {
  C_Manifest manifest = Made();
  const auto Targets = [&manifest](const std::vector<std::string>& sources) {
    C_Plan plan(manifest, &TargetChoice);
    for (const std::string& strSource : sources) plan.Add(strSource, "/out/x", 4);
    EXPECT_EQ(plan.Finish("{}", "").qwKept, 0U);
    return Value(manifest, "SELECT group_concat(target) FROM (SELECT * FROM files ORDER BY id)");
  };
  EXPECT_EQ(Targets({"/d1/x.a", "/d2/x.a"}), "/out/d1/x.a,/out/d2/x.a");
  EXPECT_EQ(Targets({"/d1/x.a", "/d2/x.a", "/d3/x.a"}), "/out/d1/x.a,/out/d2/x.a,/out/x.a");
  EXPECT_EQ(Targets({"/d4/x.a"}), "/out/d1/x.a,/out/d2/x.a,/out/x.a,/out/x");
  EXPECT_EQ(Targets({"/d5/x.a"}), "/out/d1/x.a,/out/d2/x.a,/out/x.a,/out/x,/out/d5/x.a");
}

TEST_F(PlanTest, NameThatAnotherFileHasGivenWayTo_IsGivenUpAsWell) {
  C_Manifest manifest = Made();
  C_Plan plan(manifest, &TargetChoice);
  plan.Add("/in/x.a", "/out/x", 4);
  plan.Add("/in/x.b", "/out/x", 4);
  plan.Add("/in/x.a.c", "/out/x.a", 4);
  plan.Finish("{}", "");
  EXPECT_EQ(Value(manifest, "SELECT group_concat(target) FROM files"),
            "/out/x.a,/out/x.a.c,/out/x.b");
}

TEST_F(PlanTest, FilesWithoutAnotherTarget_AreRefused) {
  C_Manifest manifest = Made();
  C_Plan plan(manifest, [](const S_ListedFile&, unsigned nChoice) {
    return nChoice < 3 ? "/out/" + std::to_string(nChoice) : "";
  });
  plan.Add("/in/a", "/out/0");
  plan.Add("/in/b", "/out/0");
  EXPECT_EQ(FailureOf([&] { plan.Finish("{}", ""); }),
            "/in/b: has the same target as /in/a: /out/2");
}

TEST_F(PlanTest, FileThatIsItsOwnTarget_IsRefusedUnlessItIsSkipped) {
  C_Manifest manifest = Made();
  C_Plan plan(manifest);
  plan.Add("/in/a", "/in/a");
  EXPECT_EQ(FailureOf([&] { plan.Finish("{}", ""); }),
            "/in/a: its target is to be read as well: /in/a");
  C_Plan skipping(manifest);
  skipping.Add("/in/a", "/in/a");
  EXPECT_EQ(skipping.Finish("{}", kSkipExisting).qwNew, 1U);
}

// The folder of the targets may be in that of the sources.
TEST_F(PlanTest, TargetsOfAnEarlierPlan_AreNoSources) {
  C_Manifest manifest = Made();
  C_Plan first(manifest);
  first.Add("/in/a", "/in/out/a");
  first.Finish("{}", "");
  C_Plan second(manifest);
  second.Add("/in/a", "/in/out/a");
  second.Add("/in/out/a", "/in/out/out/a");
  EXPECT_EQ(second.Finish("{}", "").qwFiles, 1U);
  EXPECT_EQ(manifest.Counts().All(), 1U);
}

TEST_F(PlanTest, OtherOptions_AreRefused) {
  MakeSources(1);
  C_Manifest manifest = Made();
  PlanFiles(manifest, 1, "{\"to\":\"wav\"}");
  EXPECT_EQ(FailureOf([&] { PlanFiles(manifest, 1, "{\"to\":\"vef\"}"); }),
            Path("files.db") + ": is for other conversions: {\"to\":\"wav\"}");
}

TEST_F(PlanTest, ClaimedFiles_AreLeftToTheirProcess) {
  MakeSources(2);
  C_Manifest manifest = Made();
  PlanFiles(manifest, 2);
  manifest.Database().Execute("UPDATE files SET state = 1, worker = 1 WHERE bytes = 2");
  Write("2", {1, 2, 3, 4});
  EXPECT_EQ(PlanFiles(manifest, 2).qwChanged, 0U);
  EXPECT_EQ(manifest.Counts().qwClaimed, 1U);
}

TEST_F(PlanTest, NamesOfAnyBytes_AreKept) {
  C_Manifest manifest = Made();
  C_Plan plan(manifest);
  const std::string strName = "/in/caf\xE9 \n'\"%d";
  plan.Add(strName, "/out/x");
  plan.Finish("{}", "");
  EXPECT_EQ(Value(manifest, "SELECT source FROM files"), strName);
}

TEST_F(PlanTest, OtherFiles_AreNoManifests) {
  Write("text", {'n', 'o', ' ', 'd', 'a', 't', 'a', 'b', 'a', 's', 'e', '\n'});
  EXPECT_EQ(FailureOf([&] { Made("text"); }), Path("text") + ": is no manifest: it is no database");
  EXPECT_EQ(Content("text").size(), 12U);
  C_Database(Path("other"), true).Execute("CREATE TABLE mine(a)");
  EXPECT_EQ(FailureOf([&] { Made("other"); }),
            Path("other") + ": is no manifest: it is a database of something else");
  Write("full", {});
  EXPECT_EQ(FailureOf([&] { Opened("full"); }), Path("full") + ": is no manifest: it is empty");
  EXPECT_EQ(FailureOf([&] { Opened("none"); }),
            Path("none") + ": cannot be opened: No such file or directory");
  EXPECT_FALSE(std::filesystem::exists(Path("none")));
}

// Whatever is broken: an answer or a failure, but no crash.
TEST_F(PlanTest, DamagedManifests_FailOrAreRead) {
  MakeSources(20);
  {
    C_Manifest manifest = Made();
    PlanFiles(manifest, 20);
  }
  const std::vector<std::uint8_t> whole = Content("files.db");
  int nFailed = 0;
  for (std::size_t nAt = 0; nAt < whole.size(); nAt += 397) {
    std::vector<std::uint8_t> bytes = whole;
    for (std::size_t n = nAt; n < std::min(nAt + 8, bytes.size()); ++n) bytes[n] ^= 0xA5U;
    Write("files.db", bytes);
    const std::string strFailure = FailureOf([&] {
      C_Manifest manifest = Opened();
      PlanFiles(manifest, 20);
      static_cast<void>(manifest.Counts());
    });
    if (strFailure != "nothing failed") ++nFailed;
  }
  EXPECT_GT(nFailed, 3);
  Write("files.db", {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(whole.size() / 2)});
  EXPECT_NE(FailureOf([&] { static_cast<void>(Opened().Counts()); }), "nothing failed");
}

}  // namespace
}  // namespace tool
