// SPDX-License-Identifier: Apache-2.0
//
// A temporary directory that is full, read-only or gone. Whatever needs it fails like any file that
// cannot be decoded. Nothing is left behind, and the user's files stay as they were.
//
// Setting up such directories needs the right to mount. Without it, the tests that mount do nothing
// and pass, and a limit on the size of files stands in for the full disk.
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "FileBytes.h"
#include "FilesFixture.h"

namespace {

// Mounts something else over the temporary directory.
class C_MountedTemp {
 public:
  C_MountedTemp(const char* pszSource, const char* pszType, unsigned long ulFlags,
                const std::string& strOptions) {
    EXPECT_EQ(mount(pszSource, P_tmpdir, pszType, ulFlags, strOptions.c_str()), 0);
  }
  ~C_MountedTemp() { EXPECT_EQ(umount2(P_tmpdir, MNT_DETACH), 0); }
  C_MountedTemp(const C_MountedTemp&) = delete;
  C_MountedTemp& operator=(const C_MountedTemp&) = delete;
};

class TempTrouble : public C_FilesTest {
 protected:
  TempTrouble() : m_nPage(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))) {
    // The decoded sound is longer than a page of memory, the stream shorter than one.
    m_speech = SpeechOf(static_cast<unsigned int>(m_nPage / 640 + 2));
    std::filesystem::create_directory(m_strInputs);
    Write("x.kst", m_speech.file);
    Write("bare.kst", m_speech.stream);
    Write("as-it-is.wav", m_wav);
  }
  ~TempTrouble() override {
    std::error_code error;
    std::filesystem::remove_all(m_strInputs, error);
  }
  // A relative path, so that it is found whatever is mounted.
  [[nodiscard]] std::string Input(const std::string& strName) const {
    return m_strInputs + "/" + strName;
  }
  void Write(const std::string& strName, const C_Bytes& bytes) const {
    std::ofstream file(Input(strName), std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  }
  void ExpectInputsUnharmed() const {
    EXPECT_EQ(FileBytes(Input("x.kst")), m_speech.file);
    EXPECT_EQ(FileBytes(Input("bare.kst")), m_speech.stream);
    EXPECT_EQ(FileBytes(Input("as-it-is.wav")), m_wav);
  }
  void ExpectOnlyTheWavFilePlays() const {
    auto asItIs = Beside(Input("as-it-is.wav"), "0");
    auto bare = std::async(std::launch::async, [this] { ExpectUndecoded(Input("bare.kst")); });
    ExpectUndecoded(Input("x.kst"));
    bare.get();
    EXPECT_EQ(asItIs.get().strOut, "file duration: 0.010000 secs\nPlaying...Finished\n");
    EXPECT_EQ(m_temp.NewFiles(), std::vector<std::string>{});
    ExpectInputsUnharmed();
  }
  // A disk with this many pages of memory for files.
  [[nodiscard]] std::string SizeOfPages(std::size_t nPages) const {
    return "mode=1777,size=" + std::to_string(nPages * m_nPage);
  }

  const std::string m_strInputs = "temp-trouble-" + std::to_string(getpid());
  const C_Bytes m_wav = WavOf(16000, 1, SilentFrames(160));
  std::size_t m_nPage;
  S_Speech m_speech;
};

TEST_F(TempTrouble, ReadOnly_NothingIsDecoded) {
  if (!m_temp.IsPrivate()) return;
  const C_MountedTemp temp("voxplay-test", "tmpfs", MS_RDONLY, "");
  ExpectOnlyTheWavFilePlays();
}

TEST_F(TempTrouble, Full_NothingIsDecoded) {
  if (!m_temp.IsPrivate()) return;
  const C_MountedTemp temp("voxplay-test", "tmpfs", 0, SizeOfPages(1));
  std::ofstream(P_tmpdir "/voxplay-test-filler") << std::string(m_nPage, 'x') << std::flush;
  ExpectOnlyTheWavFilePlays();
}

TEST_F(TempTrouble, Gone_NothingIsDecoded) {
  if (!m_temp.IsPrivate()) return;
  const std::string strGone = m_strInputs + "/gone";
  std::filesystem::create_directory(strGone);
  const C_MountedTemp temp(strGone.c_str(), nullptr, MS_BIND, "");
  std::filesystem::remove(strGone);
  ExpectOnlyTheWavFilePlays();
}

// One page is free, then two, then three and so on. Each time, decoding fills the disk at a
// different point, until finally everything fits.
TEST_F(TempTrouble, FillingUpMeanwhile_LeavesNothingHalfWritten) {
  if (!m_temp.IsPrivate()) return;
  const std::size_t nSoundPages = (44 + m_speech.pcm.size() + m_nPage - 1) / m_nPage;
  for (std::size_t nPages = 1; nPages < 2 * nSoundPages; ++nPages) {
    const C_MountedTemp temp("voxplay-test", "tmpfs", 0, SizeOfPages(nPages));
    for (const char* pszName : {"x.kst", "bare.kst"}) {
      const bool bSpoken = Run(Input(pszName), "2").strOut != "Length:-2\n";
      const std::vector<std::string> left = m_temp.NewFiles();
      ASSERT_EQ(left.size(), bSpoken ? 1U : 0U) << pszName << " on " << nPages << " pages";
      if (!bSpoken) continue;
      const C_Bytes wav = FileBytes(std::string(P_tmpdir) + "/" + left[0]);
      EXPECT_EQ(wav, WavOf(16000, 1, m_speech.pcm));
      std::filesystem::remove(std::string(P_tmpdir) + "/" + left[0]);
    }
  }
  const C_MountedTemp temp("voxplay-test", "tmpfs", 0, SizeOfPages(2 * nSoundPages + 2));
  EXPECT_NE(Run(Input("bare.kst"), "2").strOut, "Length:-2\n");
  ExpectInputsUnharmed();
}

// The copy stays, as every copy does. There is no room for a header, so nothing is heard.
TEST_F(TempTrouble, RoomForTheCopyButNotForItsHeader_IsSilenceAndLeavesTheWholeCopy) {
  if (!m_temp.IsPrivate()) return;
  const C_MountedTemp temp("voxplay-test", "tmpfs", 0, SizeOfPages(1));
  ExpectRealTime(Input("bare.kst"), 1.0);
  const std::vector<std::string> left = m_temp.NewFiles();
  ASSERT_EQ(left.size(), 1U);
  EXPECT_EQ(FileBytes(std::string(P_tmpdir) + "/" + left[0]), m_speech.stream);
  ExpectInputsUnharmed();
}

TEST_F(TempTrouble, ALimitOnTheSizeOfFiles_FailsLikeAFullDisk) {
  for (const rlim_t nLimit : {0U, 100U, 3000U}) {
    const auto limit = [nLimit] {
      std::signal(SIGXFSZ, SIG_DFL);  // which would end the program
      const rlimit most = {nLimit, nLimit};
      setrlimit(RLIMIT_FSIZE, &most);
    };
    for (const char* pszName : {"x.kst", "bare.kst"}) {
      EXPECT_EQ(Run(Input(pszName), "2", limit).strOut, "Length:-2\n") << nLimit;
      const S_Run run = Run(Input(pszName), "0", limit);
      EXPECT_EQ(run.strOut, kCannotDecode) << nLimit;
      EXPECT_EQ(run.nExit, 255) << nLimit;
      EXPECT_EQ(m_temp.NewFiles(), std::vector<std::string>{}) << nLimit;
    }
  }
  ExpectInputsUnharmed();
}

}  // namespace
