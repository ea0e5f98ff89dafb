// SPDX-License-Identifier: Apache-2.0
#include "batch/Targets.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "FolderTest.h"
#include "base/Failure.h"
#include "batch/TargetNames.h"

namespace tool {
namespace {

std::string ClashOf(const std::vector<S_ListedFile>& files, const std::string& strFolder = "out") {
  try {
    RefuseClashes(files, [&](const S_ListedFile& file) {
      return C_TargetNames(strFolder, ".kst").Name(file, 0);
    });
  } catch (const C_UsageFailure& failure) {
    return failure.what();
  }
  return "";
}

class TargetsTest : public C_FolderTest {};

std::vector<std::string> TargetsOf(const std::vector<S_ListedFile>& files) {
  const PFN_TargetOf fnTargetOf = TargetsBelow("out", ".kst", files);
  std::vector<std::string> targets;
  for (const S_ListedFile& file : files) targets.push_back(fnTargetOf(file));
  return targets;
}

TEST_F(TargetsTest, Names_KeepEverMoreOfThePath) {
  const C_TargetNames names("out/", ".kst");
  const S_ListedFile file = {"/in/day1/./a/b.wav", 9};
  EXPECT_EQ(names.Name(file, 0), "out/./a/b.kst");
  EXPECT_EQ(names.Name(file, 1), "out/./a/b.wav.kst");
  EXPECT_EQ(names.Name(file, 2), "out/day1/a/b.kst");
  EXPECT_EQ(names.Name(file, 3), "out/day1/a/b.wav.kst");
  EXPECT_EQ(names.Name(file, 5), "out/in/day1/a/b.wav.kst");
  EXPECT_EQ(names.Name(file, 6), "");
  EXPECT_EQ(
      names.Name({"../b.wav", 3}, 3),
      "out/" + std::filesystem::current_path().parent_path().filename().string() + "/b.wav.kst");
}

TEST_F(TargetsTest, SourcesOfOneTarget_KeepTheirWholeNames) {
  const std::vector<S_ListedFile> files = {
      {"in/x.wav", 3}, {"in/x.flac", 3}, {"in/y.wav", 3}, {"in/./deep/x.wav", 3}, {"in/z", 3}};
  const PFN_TargetOf fnTargetOf = TargetsBelow("out", ".kst", files);
  EXPECT_EQ(fnTargetOf(files[0]), "out/x.wav.kst");
  EXPECT_EQ(fnTargetOf(files[1]), "out/x.flac.kst");
  EXPECT_EQ(fnTargetOf(files[2]), "out/y.kst");
  EXPECT_EQ(fnTargetOf(files[3]), "out/./deep/x.kst");
  EXPECT_EQ(fnTargetOf(files[4]), "out/z.kst");
}

TEST_F(TargetsTest, SameNamesInSeveralFolders_KeepThoseOfTheFolders) {
  using C_Targets = std::vector<std::string>;
  EXPECT_EQ(TargetsOf({{"day1/1.wav", 5}, {"day2/1.wav", 5}, {"day2/2.wav", 5}, {"day3/1.wav", 5}}),
            (C_Targets{"out/day1/1.kst", "out/day2/1.kst", "out/2.kst", "out/day3/1.kst"}));
  EXPECT_EQ(TargetsOf({{"a/rec/x.wav", 6}, {"b/rec/x.wav", 6}}),
            (C_Targets{"out/a/rec/x.kst", "out/b/rec/x.kst"}));
  EXPECT_EQ(TargetsOf({{"a/x.wav", 2}, {"a/x.au", 2}, {"b/x.wav", 2}, {"b/x.au", 2}}),
            (C_Targets{"out/a/x.wav.kst", "out/a/x.au.kst", "out/b/x.wav.kst", "out/b/x.au.kst"}));
}

TEST_F(TargetsTest, NameThatAnotherFileHasGivenWayTo_IsGivenUpAsWell) {
  EXPECT_EQ(TargetsOf({{"x/a.wav", 2}, {"x/a.vemd", 2}, {"x/a.wav.flac", 2}}),
            (std::vector<std::string>{"out/a.wav.kst", "out/a.vemd.kst", "out/a.wav.flac.kst"}));
}

TEST_F(TargetsTest, TwoSourcesOfOneTarget_AreRefused) {
  EXPECT_EQ(ClashOf({{"a/x.wav", 2}, {"y.wav", 0}, {"b/x.flac", 2}}),
            "b/x.flac: has the same target as a/x.wav: out/x.kst");
  EXPECT_EQ(ClashOf({{"x.wav", 0}, {"x.wav", 0}}),
            "x.wav: has the same target as x.wav: out/x.kst");
  EXPECT_EQ(ClashOf({{"a/./x.wav", 0}, {"a/x.wav", 0}}),
            "a/x.wav: has the same target as a/./x.wav: out/a/x.kst");
  EXPECT_EQ(ClashOf({{"a/x.wav", 0}, {"b/x.wav", 0}, {"x.wav", 0}}), "");
}

TEST_F(TargetsTest, TargetThatIsAnotherSource_IsRefused) {
  EXPECT_EQ(ClashOf({{"x.wav", 0}, {"d/../y/x.kst", 5}}, "y"),
            "x.wav: its target is to be read as well: d/../y/x.kst");
  EXPECT_EQ(ClashOf({{"x.wav", 0}, {"out/x.kst", 0}}),
            "x.wav: its target is to be read as well: out/x.kst");
  EXPECT_EQ(ClashOf({{"out/x.kst", 4}, {"z.wav", 0}}), "") << "its own target";
}

TEST_F(TargetsTest, ExistingTarget_IsTreatedAsItWasAsked) {
  const std::string strFile = Write("old.kst", {1});
  EXPECT_TRUE(MayWrite(Path("new.kst"), tagExisting::EXISTING_REFUSED));
  EXPECT_TRUE(MayWrite(strFile, tagExisting::EXISTING_REPLACED));
  EXPECT_FALSE(MayWrite(strFile, tagExisting::EXISTING_SKIPPED));
  EXPECT_THROW(static_cast<void>(MayWrite(strFile, tagExisting::EXISTING_REFUSED)), C_TargetInWay);
  EXPECT_TRUE(MayWrite("-", tagExisting::EXISTING_REFUSED));
  try {
    static_cast<void>(MayWrite("/dev/null", tagExisting::EXISTING_REPLACED));
    ADD_FAILURE() << "it may be written";
  } catch (const C_Failure& failure) {
    EXPECT_STREQ(failure.what(), "/dev/null: cannot be written: it is no regular file");
  }
}

TEST_F(TargetsTest, FoldersOfATarget_AreMadeAsFarAsTheyAreMissing) {
  MakeFoldersOf(Path("a/b/c.kst"));
  MakeFoldersOf(Path("a/b/d.kst"));
  EXPECT_TRUE(std::filesystem::is_directory(Path("a/b")));
  Write("file", {1});
  EXPECT_THROW(MakeFoldersOf(Path("file/c.kst")), C_Failure);
}

}  // namespace
}  // namespace tool
