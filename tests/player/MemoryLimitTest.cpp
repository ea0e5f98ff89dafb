// SPDX-License-Identifier: Apache-2.0
//
// The real program under a limit on its memory. The libraries that it uses would crash; it ends by
// itself, with a result that the user knows. Not for the sanitizers, which need more than any
// limit.
#include <sys/resource.h>

#include "FilesFixture.h"
#include "Speech.h"

namespace {

constexpr rlim_t kStepKiB = 500;
constexpr rlim_t kMostKiB = 2000000;
// So many larger limits are tried after the first that is enough.
constexpr int kEnough = 15;

class MemoryLimit : public C_FilesTest {
 protected:
  [[nodiscard]] S_Run RunWithin(rlim_t nKiB, const C_Program::Texts& arguments) const {
    return m_player
        .Start(arguments, {},
               [nKiB] {
                 const rlimit limit = {nKiB * 1024, nKiB * 1024};
                 if (setrlimit(RLIMIT_AS, &limit) != 0) _exit(1);
               })
        .Wait();
  }
  // The least limit with which the system loads the program. How much that is depends on the
  // machine's libraries.
  [[nodiscard]] rlim_t LeastToLoad() const {
    rlim_t nKiB = kStepKiB;
    while (nKiB < kMostKiB && RunWithin(nKiB, {}).strOut.find("Usage:") == std::string::npos) {
      nKiB += kStepKiB;
    }
    return nKiB;
  }
  void ExpectLengthOrFailure(const std::string& strFile) {
    int nFound = 0;
    rlim_t nKiB = LeastToLoad();
    while (nFound < kEnough && nKiB < kMostKiB) {
      // The first limit may be too small by a page or two when the program is loaded again.
      nKiB += kStepKiB;
      const S_Run run = RunWithin(nKiB, {strFile, "2"});
      const bool bFound = run.strOut == "file duration: 0.100000 secs\nLength:0\n";
      EXPECT_TRUE(bFound || run.strOut == "Length:-2\n") << nKiB << " KiB: " << run.strOut;
      EXPECT_EQ(run.nExit, 0) << nKiB << " KiB: " << run.strErr;
      if (HasFailure()) return;
      if (bFound) ++nFound;
    }
    EXPECT_EQ(nFound, kEnough) << "no limit is enough";
  }
};

TEST_F(MemoryLimit, AnyLimit_LetsALengthQueryEnd) {
  const C_TempFolder folder;
  const S_Speech speech = SpeechOf(5);
  ExpectLengthOrFailure(folder.Write("x.kst", speech.file));
  ExpectLengthOrFailure(folder.Write("x.wav", WavOf(16000, 1, speech.pcm)));
}

}  // namespace
