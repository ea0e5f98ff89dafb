// SPDX-License-Identifier: Apache-2.0
//
// Watches what a piece of a test does in the directory for temporary files. The piece runs in a
// process with a temporary directory of its own, so that other tests do not show. Where the system
// does not allow that, the piece runs in the real directory. Files of other tests may then be
// counted as created, so the watch waits up to five seconds for the remaining files to disappear.
#pragma once

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/inotify.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

struct S_TempUse {
  bool bResult = false;  // what the step returned
  int nCreated = 0;      // files that were created
  int nLeft = 0;         // how many of these still exist
};

namespace tempwatch {

inline bool MakePrivate() {
  return unshare(CLONE_NEWNS) == 0 &&
         mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount("voxplay-test", P_tmpdir, "tmpfs", 0, "mode=1777") == 0;
}

// True for the names that the library gives: a prefix and six characters.
inline bool IsOfTheLibrary(const std::string& strName) {
  return (strName.size() == 10 && strName.starts_with("file")) ||
         (strName.size() == 14 &&
          (strName.starts_with("temp_enc") || strName.starts_with("temp_evt")));
}

inline std::vector<std::string> CreatedNames(int nWatch) {
  std::vector<std::string> names;
  alignas(inotify_event) std::array<char, 65536> events{};
  const ssize_t nRead = read(nWatch, events.data(), events.size());
  for (ssize_t i = 0; i < nRead;) {
    inotify_event event{};
    const char* pEvent = events.data() + i;
    std::memcpy(&event, pEvent, sizeof event);
    const std::string strName(pEvent + sizeof event);
    if (IsOfTheLibrary(strName)) names.push_back(strName);
    i += static_cast<ssize_t>(sizeof event + event.len);
  }
  return names;
}

inline int CountLeft(const std::vector<std::string>& names) {
  int nLeft = 0;
  for (const std::string& strName : names) {
    struct stat status {};
    if (lstat((P_tmpdir "/" + strName).c_str(), &status) == 0) ++nLeft;
  }
  return nLeft;
}

inline S_TempUse RunWatched(const std::function<bool()>& bStep) {
  const bool bPrivate = MakePrivate();
  const int nWatch = inotify_init1(IN_NONBLOCK);
  inotify_add_watch(nWatch, P_tmpdir, IN_CREATE);
  S_TempUse use;
  use.bResult = bStep();
  const auto names = CreatedNames(nWatch);
  use.nCreated = static_cast<int>(names.size());
  use.nLeft = CountLeft(names);
  for (int i = 0; i < 50 && !bPrivate && use.nLeft > 0; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    use.nLeft = CountLeft(names);
  }
  return use;
}

}  // namespace tempwatch

inline S_TempUse WatchTemp(const std::function<bool()>& bStep) {
  S_TempUse use;
  std::array<int, 2> pipeEnds{};
  EXPECT_EQ(pipe(pipeEnds.data()), 0);
  const pid_t nChild = fork();
  if (nChild == 0) {
    use = tempwatch::RunWatched(bStep);
    _exit(write(pipeEnds[1], &use, sizeof use) == sizeof use ? 0 : 1);
  }
  close(pipeEnds[1]);
  EXPECT_EQ(read(pipeEnds[0], &use, sizeof use), static_cast<ssize_t>(sizeof use));
  close(pipeEnds[0]);
  int nStatus = 0;
  EXPECT_EQ(waitpid(nChild, &nStatus, 0), nChild);
  EXPECT_EQ(nStatus, 0);
  return use;
}
