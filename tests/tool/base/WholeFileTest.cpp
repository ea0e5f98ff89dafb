// SPDX-License-Identifier: Apache-2.0
#include "base/WholeFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "FolderTest.h"
#include "base/Failure.h"

namespace {

using testing::ElementsAre;

class WholeFile : public C_FolderTest {
 protected:
  [[nodiscard]] std::string Text(const std::string& strName) const {
    const auto bytes = Content(strName);
    return {bytes.begin(), bytes.end()};
  }
  // What the failure says; "" without one.
  static std::string Failure(const std::string& strPath, bool bReplace) {
    try {
      tool::WriteWholeFile(strPath, "new", bReplace);
      return "";
    } catch (const tool::C_Failure& failure) {
      return failure.what();
    }
  }
};

TEST_F(WholeFile, NewName_HoldsTheBytesAndNothingElseIsLeft) {
  tool::WriteWholeFile(Path("a"), "text", false);
  EXPECT_EQ(Text("a"), "text");
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(WholeFile, TakenName_StaysAsItWas) {
  Write("a", {'o', 'l', 'd'});
  EXPECT_EQ(Failure(Path("a"), false),
            Path("a") + ": is not written: it exists; -f writes over it");
  EXPECT_EQ(Text("a"), "old");
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(WholeFile, TakenNameToBeReplaced_KeepsItsPermissions) {
  Write("a", {'o', 'l', 'd'});
  ASSERT_EQ(chmod(Path("a").c_str(), 0604), 0);
  EXPECT_EQ(Failure(Path("a"), true), "");
  EXPECT_EQ(Text("a"), "new");
  struct stat status {};
  ASSERT_EQ(stat(Path("a").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0604U);
}

TEST_F(WholeFile, Link_StaysALink) {
  Write("a", {'o', 'l', 'd'});
  ASSERT_EQ(symlink("a", Path("b").c_str()), 0);
  EXPECT_EQ(Failure(Path("b"), true), "");
  EXPECT_TRUE(std::filesystem::is_symlink(Path("b")));
  EXPECT_EQ(Text("a"), "new");
}

TEST_F(WholeFile, Device_IsNeverReplaced) {
  ASSERT_EQ(symlink("/dev/null", Path("a").c_str()), 0);
  EXPECT_EQ(Failure(Path("a"), true), Path("a") + ": is not written: it is no regular file");
  EXPECT_TRUE(std::filesystem::is_symlink(Path("a")));
}

TEST_F(WholeFile, FolderThatIsMissing_IsAFailure) {
  EXPECT_EQ(Failure(Path("no/a"), false),
            Path("no/a") + ": cannot be written: No such file or directory");
  EXPECT_THAT(Entries(), ElementsAre());
}

}  // namespace
