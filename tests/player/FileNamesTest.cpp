// SPDX-License-Identifier: Apache-2.0
//
// File names as they occur in practice, on every path that a file can take through the program:
// played as it is, decoded first, and in real time with and without a header.
#include <unistd.h>

#include <filesystem>

#include "FilesFixture.h"

namespace {

constexpr std::size_t kLongestPath = 1023;

class FileNames : public C_FilesTest {
 protected:
  FileNames() : m_speech(SpeechOf(10)) {}

  void ExpectPlayed(std::future<S_Run> run, const char* pszDuration, const std::string& strName) {
    const S_Run played = run.get();
    const std::string strExpected =
        "file duration: " + std::string(pszDuration) + " secs\nPlaying...Finished\n";
    EXPECT_EQ(played.strOut, strExpected) << strName;
    EXPECT_EQ(played.nExit, 0) << strName;
  }
  // The speech lasts 0.2 s; the two pauses around it take one second.
  void ExpectHeard(std::future<S_Run> run, const std::string& strName) {
    const S_Run played = run.get();
    EXPECT_EQ(played.strOut, kRealTimeOutput) << strName;
    EXPECT_EQ(played.nExit, 0) << strName;
    EXPECT_GE(played.dSeconds, 1.15) << strName;
  }
  struct S_Ways {
    std::string strName;
    std::vector<std::future<S_Run>> runs;
  };
  // Starts to play a file with this name in every way. The program runs in the file's folder and
  // gets the name relative to that folder.
  S_Ways BeginEveryWay(const std::string& strName) {
    const auto enter = [this] {
      if (chdir(m_folder.Path().c_str()) != 0) _exit(1);
    };
    m_folder.Write(strName + ".wav", WavOf(16000, 1, SilentFrames(1600)));
    m_folder.Write(strName + ".kst", m_speech.file);
    m_folder.Write(strName + "2.kst", m_speech.stream);
    S_Ways ways{strName, {}};
    ways.runs.push_back(Beside(strName + ".wav", "0", enter));
    ways.runs.push_back(Beside(strName + ".kst", "0", enter));
    ways.runs.push_back(Beside(strName + "2.kst", "0", enter));
    ways.runs.push_back(Beside(strName + ".kst", "1", enter));
    ways.runs.push_back(Beside(strName + "2.kst", "1", enter));
    return ways;
  }
  void ExpectEveryWay(S_Ways ways) {
    ExpectPlayed(std::move(ways.runs.at(0)), "0.100000", ways.strName);
    ExpectPlayed(std::move(ways.runs.at(1)), "0.200000", ways.strName);
    ExpectPlayed(std::move(ways.runs.at(2)), "0.200000", ways.strName);
    ExpectHeard(std::move(ways.runs.at(3)), ways.strName);
    ExpectHeard(std::move(ways.runs.at(4)), ways.strName);
    EXPECT_EQ(m_folder.Read(ways.strName + "2.kst"), m_speech.stream);
  }
  // A name whose full path has nPath characters before the digit and the extension.
  std::string LongName(std::size_t nPath) {
    std::string strName;
    while (m_folder.Path(strName).size() + 210 < nPath) strName += std::string(200, 'd') + "/";
    std::filesystem::create_directories(m_folder.Path(strName));
    return strName + std::string(nPath - m_folder.Path(strName).size(), 'n');
  }

  S_Speech m_speech;
  C_TempFolder m_folder;
};

// A leading minus does not make a name an option, a format is plain text, and bytes that are not
// text are kept too.
TEST_F(FileNames, OddNames_ArePlayedByEveryWay) {
  const std::string strUtf8 =
      "Gr\xC3\xBC\xC3\x9F"
      "e \xE4\xBD\xA0\xE5\xA5\xBD \xF0\x9F\x8E\xB5";
  const std::vector<std::string> names = {" a b\t\nc ",           "--help",
                                          "%s%n%d%100000000c%*s", strUtf8,
                                          "\xFF\xFE\x80\x1B[31m", LongName(900 - 5)};
  ASSERT_EQ(m_folder.Path(names.back() + "2.kst").size(), 900U);
  std::vector<S_Ways> all;
  for (const std::string& strName : names) all.push_back(BeginEveryWay(strName));
  for (S_Ways& ways : all) ExpectEveryWay(std::move(ways));
  EXPECT_EQ(m_temp.NewFiles().size(), 3 * names.size()) << "two decoded files and a copy of each";
}

// Every way has a path buffer of its own.
TEST_F(FileNames, TheLongestPath_Fits_AndOneMoreDoesNot) {
  const std::string strName = LongName(kLongestPath - 5);
  const std::string strFile = m_folder.Write(strName + "1.kst", m_speech.file);
  const std::string strBare = m_folder.Write(strName + "2.kst", m_speech.stream);
  const std::string strTooLong = m_folder.Write(strName + "33.kst", m_speech.file);
  ASSERT_EQ(strFile.size(), kLongestPath);
  auto decoded = Beside(strFile, "0");
  auto realTime = Beside(strFile, "1");
  auto realTimeBare = Beside(strBare, "1");
  auto silence = Beside(strTooLong, "1");
  EXPECT_EQ(Run(strTooLong, "2").strOut, "Length:-1\n");
  ExpectPlayed(std::move(decoded), "0.200000", "the longest");
  ExpectHeard(std::move(realTime), "the longest");
  ExpectHeard(std::move(realTimeBare), "the longest, bare");
  EXPECT_EQ(silence.get().strOut, kRealTimeOutput);
  EXPECT_EQ(m_temp.NewFiles().size(), 2U) << "a decoded file and a copy";
}

TEST_F(FileNames, ADotAtTheEnd_IsAnExtensionThatNobodyKnows) {
  const std::string strFile = m_folder.Write("x.kst.", m_speech.file);
  auto realTime = Beside(strFile, "1");
  EXPECT_EQ(Run(strFile, "0").strOut, "The input file is not supported format !!\n");
  EXPECT_EQ(Run(strFile, "2").strOut, "Length:-1\n");
  ExpectHeard(std::move(realTime), "which looks at the content only");
}

}  // namespace
