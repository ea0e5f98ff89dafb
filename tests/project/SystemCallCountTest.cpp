// SPDX-License-Identifier: Apache-2.0
//
// How often the system is called to look at a file.
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>
#include <functional>

#include "TempFolder.h"
#include "TracedChild.h"
#include "WavBytes.h"
#include "WavFileFormat.h"
#include "WavFileObject.h"

namespace {

// How the child tells where the operation begins and ends.
constexpr std::uint64_t kMark = SYS_getppid;

// The system calls of the operation. Memory is not counted: the first run asks for it.
int CountCalls(const std::function<bool()>& fnRun) {
  C_TracedChild child([&fnRun] {
    if (!fnRun()) return 1;
    syscall(kMark);
    const bool bRet = fnRun();
    syscall(kMark);
    return bRet ? 0 : 1;
  });
  int nMarks = 0;
  int nCalls = 0;
  for (auto eStop = child.Next(); eStop != C_TracedChild::Stop::Ended; eStop = child.Next()) {
    if (eStop != C_TracedChild::Stop::Entry) continue;
    if (child.Number() == kMark) {
      ++nMarks;
    } else if (nMarks == 1) {
      ++nCalls;
    }
  }
  EXPECT_EQ(child.Result(), 0);
  return nCalls;
}

class SystemCallCount : public testing::Test {
 protected:
  C_TempFolder m_folder{C_TempFolder::kInMemory};
};

// The name is looked up, and the file is opened, measured, read and closed.
TEST_F(SystemCallCount, LookingAtAFile_TakesFive) {
  const std::string strPath = m_folder.Write("in", MonoWav(100'000).Take());
  EXPECT_EQ(CountCalls([&] { return Opens(strPath); }), 5);
  EXPECT_EQ(CountCalls([&] {
              C_WavFileFormat format;
              const C_WavFilePtr file(format.OpenWavFile(strPath.c_str()));
              return file != nullptr;
            }),
            5);
  EXPECT_EQ(CountCalls([&] { return C_WavFileFormat().IsWavFile(strPath.c_str()); }), 5);
  EXPECT_EQ(CountCalls([&] {
              return C_WavFileFormat().GetFileFormat(strPath.c_str()) == AUDIO_FILE_WAVE;
            }),
            5);
}

TEST_F(SystemCallCount, ChunksThatLieTogether_AreReadTogether) {
  C_RiffBytes riff = MonoWav(16);
  for (int i = 0; i < 100; ++i) riff.Chunk("junk", C_Bytes(20, 1));
  const std::string strPath = m_folder.Write("in", riff.Take());
  EXPECT_EQ(CountCalls([&] { return Opens(strPath); }), 5);
}

TEST_F(SystemCallCount, ChunksAfterLongSamples_TakeOneMore) {
  const std::string strPath =
      m_folder.Write("in", MonoWav(100'000)
                               .Chunk("cue ", CueBytes({{1, 2, 3}}))
                               .Chunk("LIST", AdtlBytes({LablBytes(1, "x")}))
                               .Chunk("junk", {1, 2})
                               .Take());
  EXPECT_EQ(CountCalls([&] { return Opens(strPath); }), 6);
}

TEST_F(SystemCallCount, LongZeros_AreReadInPieces) {
  const std::string strPath =
      m_folder.Write("in", MonoWav(16).Zeros(1'000'000).Chunk("junk", {1}).Take());
  EXPECT_LT(CountCalls([&] { return Opens(strPath); }), 300);
}

}  // namespace
