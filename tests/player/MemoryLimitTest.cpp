// SPDX-License-Identifier: Apache-2.0
//
// The real program under a limit on its memory. The libraries that it uses would crash; it ends by
// itself, with a result that the user knows. Not for the sanitizers, which need more than any
// limit.
#include <sys/resource.h>

#include "FilesFixture.h"
#include "Speech.h"

namespace {

// With less than this, the system does not even load the program.
constexpr rlim_t kLeastKiB = 26000;
constexpr rlim_t kMostKiB = 64000;
constexpr rlim_t kStepKiB = 500;

class MemoryLimit : public C_FilesTest {
 protected:
  // Returns in how many of the runs the length was found.
  int LengthsFound(const std::string& strFile) {
    int nFound = 0;
    for (rlim_t nKiB = kLeastKiB; nKiB <= kMostKiB; nKiB += kStepKiB) {
      const S_Run run = m_player
                            .Start({strFile, "2"}, {},
                                   [nKiB] {
                                     const rlimit limit = {nKiB * 1024, nKiB * 1024};
                                     if (setrlimit(RLIMIT_AS, &limit) != 0) _exit(1);
                                   })
                            .Wait();
      const bool bFound = run.strOut == "file duration: 0.100000 secs\nLength:0\n";
      EXPECT_TRUE(bFound || run.strOut == "Length:-2\n") << nKiB << " KiB: " << run.strOut;
      EXPECT_EQ(run.nExit, 0) << nKiB << " KiB: " << run.strErr;
      if (bFound) ++nFound;
    }
    return nFound;
  }
};

TEST_F(MemoryLimit, AnyLimit_LetsALengthQueryEnd) {
  const C_TempFolder folder;
  const S_Speech speech = SpeechOf(5);
  for (const std::string& strFile :
       {folder.Write("x.kst", speech.file), folder.Write("x.wav", WavOf(16000, 1, speech.pcm))}) {
    const int nFound = LengthsFound(strFile);
    EXPECT_GE(nFound, 1) << "the largest limit is enough";
  }
}

}  // namespace
