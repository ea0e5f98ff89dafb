// SPDX-License-Identifier: Apache-2.0
#include "base/FileLock.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "FolderTest.h"
#include "base/Failure.h"

namespace {

using tool::C_FileLock;

// Somebody may do something while it is brought to the disk, which takes long.
class C_SlowFile : public tool::I_NewFile {
 public:
  explicit C_SlowFile(std::function<void()> fnMeanwhile) : m_fnMeanwhile(std::move(fnMeanwhile)) {}

  void Write(std::span<const std::byte> /*bytes*/) override {}
  [[nodiscard]] const std::string& NewPath() const noexcept override { return m_strPath; }
  void BringToDisk() override { m_fnMeanwhile(); }
  void TakePlace() override { m_bInPlace = true; }

  [[nodiscard]] bool IsInPlace() const noexcept { return m_bInPlace; }

 private:
  std::function<void()> m_fnMeanwhile;
  std::string m_strPath;
  bool m_bInPlace = false;
};

class FileLock : public C_FolderTest {};

TEST_F(FileLock, FileThatStaysAsItWas_IsReplaced) {
  const std::optional<C_FileLock> lock(Write("a", {1, 2}));
  C_SlowFile made([] {});
  TakePlaceOf(lock, made);
  EXPECT_TRUE(made.IsInPlace());
}

TEST_F(FileLock, FileThatChangesWhileTheNewOneGoesToTheDisk_Stays) {
  const std::optional<C_FileLock> lock(Write("a", {1, 2}));
  C_SlowFile made([this] { Write("a", {1, 2, 3}); });
  try {
    TakePlaceOf(lock, made);
    ADD_FAILURE() << "it is replaced";
  } catch (const tool::C_Failure& failure) {
    EXPECT_EQ(failure.what(), Path("a") + ": nothing is changed: it has changed meanwhile");
  }
  EXPECT_FALSE(made.IsInPlace());
}

TEST_F(FileLock, FileWithoutALock_IsReplaced) {
  C_SlowFile made([] {});
  TakePlaceOf(std::nullopt, made);
  EXPECT_TRUE(made.IsInPlace());
}

}  // namespace
