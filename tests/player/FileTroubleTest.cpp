// SPDX-License-Identifier: Apache-2.0
//
// Files that change while they are played, and names that do not lead to a regular file. Whatever
// happens, the program plays on, or is silent, to the end of the sound with which it began.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "FilesFixture.h"

namespace {

using namespace std::chrono_literals;

struct S_Change {
  const char* pszName;
  void (*pfnDo)(const std::string& strPath);
};

void Grow(const std::string& strPath) {
  std::ofstream(strPath, std::ios::binary | std::ios::app) << std::string(100000, 'x');
}
void Overwrite(const std::string& strPath) {
  std::fstream(strPath, std::ios::binary | std::ios::in | std::ios::out) << std::string(5000, 'x');
}
void Replace(const std::string& strPath) {
  std::ofstream(strPath + ".new", std::ios::binary) << "something else";
  std::filesystem::rename(strPath + ".new", strPath);
}
void TurnIntoAFolder(const std::string& strPath) {
  std::filesystem::remove(strPath);
  std::filesystem::create_directory(strPath);
}

constexpr std::array<S_Change, 7> kChanges = {{
    {"shrunk", [](const std::string& strPath) { std::filesystem::resize_file(strPath, 100); }},
    {"emptied", [](const std::string& strPath) { std::filesystem::resize_file(strPath, 0); }},
    {"removed", [](const std::string& strPath) { std::filesystem::remove(strPath); }},
    {"grown", Grow},
    {"overwritten", Overwrite},
    {"replaced", Replace},
    {"a-folder-now", TurnIntoAFolder},
}};

class FileTrouble : public C_FilesTest {
 protected:
  FileTrouble() : m_speech(SpeechOf(15)) {}

  // Plays the file. Once that has begun and `wait` has passed, changes the file that `strChanged`
  // names.
  S_Run PlayAndChange(const std::string& strPath, const char* pszMode, const S_Change& change,
                      std::chrono::milliseconds wait,
                      const std::function<std::string()>& strChanged) const {
    C_RunningProgram program = m_player.Start({strPath, pszMode});
    EXPECT_TRUE(program.WaitForOutput("Playing..."));
    std::this_thread::sleep_for(wait);
    change.pfnDo(strChanged());
    return program.Wait();
  }
  // Makes every change, each to a file of its own, all at the same time.
  void ChangeEveryWay(const std::string& strKind, const C_Bytes& bytes, const char* pszMode,
                      const std::string& strOut, double dSeconds, std::chrono::milliseconds wait) {
    std::vector<std::future<void>> runs;
    for (const S_Change& change : kChanges) {
      const std::string strPath = m_folder.Write(change.pszName + strKind, bytes);
      runs.push_back(std::async(std::launch::async, [=, this, &change] {
        const S_Run run =
            PlayAndChange(strPath, pszMode, change, wait, [&strPath] { return strPath; });
        ExpectEnd(run, strOut, dSeconds, change.pszName + strKind);
      }));
    }
    for (auto& run : runs) run.get();
  }
  static void ExpectEnd(const S_Run& run, const std::string& strOut, double dSeconds,
                        const std::string& strWhat) {
    EXPECT_EQ(run.strOut, strOut) << strWhat;
    EXPECT_EQ(run.strErr, "") << strWhat;
    EXPECT_EQ(run.nExit, 0) << strWhat;
    EXPECT_GE(run.dSeconds, dSeconds) << strWhat;
  }
  // The file with this suffix that the program has in the temporary directory.
  [[nodiscard]] std::string TempFile(const std::string& strSuffix) const {
    std::string strFound;
    for (const std::string& strName : m_temp.NewFiles()) {
      if (strName.ends_with(strSuffix)) strFound = std::string(P_tmpdir) + "/" + strName;
    }
    return strFound;
  }

  S_Speech m_speech;
  C_TempFolder m_folder;
};

TEST_F(FileTrouble, AWavFileThatChangesWhileItPlays_IsPolledToTheEndItHad) {
  ChangeEveryWay(".wav", WavOf(16000, 1, C_Bytes(16000, 1)), "0",
                 "file duration: 0.500000 secs\nPlaying...Finished\n", 0.5, 0ms);
}

TEST_F(FileTrouble, FileThatWasDecodedFirst_IsNoLongerNeeded) {
  ChangeEveryWay(".kst", m_speech.file, "0", "file duration: 0.300000 secs\nPlaying...Finished\n",
                 0.3, 0ms);
}

// When the file changes, the program may be about to open, copy or read it, or may be done with it.
TEST_F(FileTrouble, RealTimeModeOfAFileThatChanges_Finishes) {
  std::vector<std::future<void>> all;
  for (const auto wait : {0ms, 400ms}) {
    for (const C_Bytes* pBytes : {&m_speech.file, &m_speech.stream}) {
      const std::string strKind = std::to_string(all.size()) + ".kst";
      all.push_back(std::async(std::launch::async, [=, this] {
        ChangeEveryWay(strKind, *pBytes, "1", kRealTimeOutput, 1.0, wait);
      }));
    }
  }
  for (auto& changes : all) changes.get();
}

TEST_F(FileTrouble, TheDecodedFile_MayGoWhileItPlays) {
  const std::string strPath = m_folder.Write("x.kst", m_speech.file);
  for (const std::size_t i : {0U, 2U, 5U}) {
    const S_Change& change = kChanges.at(i);
    const S_Run run = PlayAndChange(strPath, "0", change, 0ms, [this] { return TempFile(".wav"); });
    ExpectEnd(run, "file duration: 0.300000 secs\nPlaying...Finished\n", 0.3, change.pszName);
    std::filesystem::remove_all(TempFile(".wav"));
  }
}

TEST_F(FileTrouble, TheCopyOfABareStream_MayGoOnceItIsThere) {
  const std::string strPath = m_folder.Write("bare.kst", m_speech.stream);
  const auto strWholeCopy = [this] {
    std::error_code error;
    std::string strCopy;
    for (int i = 0; i < 30000; ++i) {
      strCopy = TempFile(".kst");
      if (std::filesystem::file_size(strCopy, error) == m_speech.file.size()) return strCopy;
      std::this_thread::sleep_for(1ms);
    }
    ADD_FAILURE() << "no whole copy";
    return strCopy;
  };
  const S_Run run = PlayAndChange(strPath, "1", kChanges[2], 0ms, strWholeCopy);
  ExpectEnd(run, kRealTimeOutput, 1.0, "removed");
  EXPECT_EQ(m_temp.NewFiles(), std::vector<std::string>{});
}

// Opening a pipe for reading would wait for a writer. What a pipe holds stays in it.
TEST_F(FileTrouble, PipesAndDevices_AreNotReadAndNotWaitedFor) {
  std::vector<std::future<void>> runs;
  const std::string strFull = m_folder.Path("full.kst");
  ASSERT_EQ(mkfifo(strFull.c_str(), 0600), 0);
  const int nPipe = open(strFull.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  ASSERT_EQ(write(nPipe, m_speech.file.data(), m_speech.file.size()),
            static_cast<ssize_t>(m_speech.file.size()));
  runs.push_back(std::async(std::launch::async, [=, this] { ExpectUndecoded(strFull); }));
  for (const char* pszName : {"pipe.wav", "pipe.mp3", "pipe.kst"}) {
    const std::string strPath = m_folder.Path(pszName);
    ASSERT_EQ(mkfifo(strPath.c_str(), 0600), 0);
    runs.push_back(std::async(std::launch::async, [=, this] { ExpectUndecoded(strPath); }));
  }
  for (const char* pszDevice : {"/dev/zero", "/dev/null", "/dev/urandom"}) {
    const std::string strPath = m_folder.Path(pszDevice + 5) + ".kst";
    std::filesystem::create_symlink(pszDevice, strPath);
    runs.push_back(std::async(std::launch::async, [=, this] { ExpectUndecoded(strPath); }));
  }
  const std::string strPipe = m_folder.Path("pipe");
  ASSERT_EQ(mkfifo(strPipe.c_str(), 0600), 0);
  ExpectRealTime(strPipe, 1.0);
  for (auto& run : runs) run.get();
  EXPECT_EQ(m_temp.NewFiles(), std::vector<std::string>{});
  C_Bytes left(m_speech.file.size());
  EXPECT_EQ(read(nPipe, left.data(), left.size()), static_cast<ssize_t>(left.size()));
  EXPECT_EQ(left, m_speech.file);
  close(nPipe);
}

}  // namespace
