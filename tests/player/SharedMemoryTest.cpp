// SPDX-License-Identifier: Apache-2.0
//
// The shared memory of a user who has no sound server.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "FilesFixture.h"

namespace {

// Nobody else runs as this user, so what belongs to him was left by the player.
constexpr uid_t kUser = 54322;

bool OwnsSharedMemory() {
  const std::filesystem::directory_iterator files("/dev/shm");
  return std::any_of(begin(files), end(files), [](const auto& file) {
    struct stat info {};
    return lstat(file.path().c_str(), &info) == 0 && info.st_uid == kUser;
  });
}

using SharedMemory = C_FilesTest;

// Some services keep files there even when they are not running.
TEST_F(SharedMemory, WithoutAServer_NothingIsLeft) {
  ASSERT_FALSE(OwnsSharedMemory());
  const S_Run run = Run("missing.kst", "1", [] {
    if (setuid(kUser) != 0) _exit(1);
  });
  EXPECT_EQ(run.strOut, kRealTimeOutput);
  EXPECT_EQ(run.nExit, 0);
  EXPECT_FALSE(OwnsSharedMemory());
}

}  // namespace
