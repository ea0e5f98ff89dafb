// SPDX-License-Identifier: Apache-2.0
//
// Many files, and files with many marks.
#include <sys/resource.h>

#include <functional>

#include "Sanitized.h"
#include "VoxtoolTest.h"
#include "WavBytes.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class TagsMany : public C_VoxtoolTest {
 protected:
  // A file with so many marks, half of them labels.
  void WriteMarks(const std::string& strName, std::uint32_t nMarks) const {
    voxplay::Notes notes;
    for (std::uint32_t i = 1; i <= nMarks / 2; ++i) {
      const std::uint32_t dwFrame = (i * 7919) % 16000;
      notes.add(voxplay::Cue{i, dwFrame, {'d', 'a', 't', 'a'}, 0, 0, dwFrame});
      notes.add(voxplay::Label{i, {'l', 'a', 'b', 'l'}, ("Mark " + std::to_string(i)).c_str()});
    }
    WriteWav(strName, notes);
  }
  // Seconds of the processor.
  [[nodiscard]] static double SecondsOf(const std::function<void()>& fnWork) {
    const auto Now = [] {
      rusage usage{};
      getrusage(RUSAGE_CHILDREN, &usage);
      return static_cast<double>(usage.ru_utime.tv_sec) +
             static_cast<double>(usage.ru_utime.tv_usec) / 1e6;
    };
    const double dBefore = Now();
    fnWork();
    return Now() - dBefore;
  }
  [[nodiscard]] S_Run RunWithMemory(const Texts& arguments, rlim_t cbMost) const {
    const C_Program tool = Program();
    return tool
        .Start(Placed(arguments), {},
               [cbMost] {
                 const rlimit limit{cbMost, cbMost};
                 setrlimit(RLIMIT_DATA, &limit);
               })
        .Wait();
  }
  // What is done with the marks of a file.
  static std::vector<Texts> Commands() {
    return {{"tags", "list", "@many.wav"},
            {"tags", "list", "--json", "@many.wav"},
            {"tags", "export", "@many.wav", "-f", "-o", "@many.csv"},
            {"tags", "export", "@many.wav", "--json", "-f", "-o", "@many.json"},
            {"tags", "export", "@many.wav", "--labels", "-f", "-o", "@many.txt"},
            {"tags", "import", "@many.wav", "--csv", "@many.csv", "--replace"},
            {"tags", "import", "@many.wav", "--json", "@many.json", "--replace"},
            {"tags", "import", "@many.wav", "--labels", "@many.txt", "--replace"},
            {"tags", "add", "event", "@many.wav", "--at", "0.5"},
            {"tags", "remove", "@many.wav", "event", "1"}};
  }
};

TEST_F(TagsMany, Folders_AreListedInOrderWithASummary) {
  std::filesystem::create_directories(Path("in/deep"));
  voxplay::Notes notes;
  notes.add(voxplay::Event{500, 3, 5, 0, ""});
  WriteWav("in/a.wav", notes);
  WriteWav("in/deep/b.wav", notes);
  WriteText("in/deep/c.wav", "RIFF damaged");
  const S_Run run = Run({"tags", "list", "-r", "@in"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_THAT(Said(run.strOut), StartsWith("@/in/a.wav: 1 mark\n"));
  EXPECT_THAT(Said(run.strOut), HasSubstr("\n\n@/in/deep/b.wav: 1 mark\n"));
  EXPECT_THAT(Said(run.strErr), StartsWith("@/in/deep/c.wav: "));
  EXPECT_THAT(run.strErr, HasSubstr("\n3 files: 2 read, 1 failed; 2 s of sound in "));
  EXPECT_THAT(Run({"tags", "list", "-r", "-qq", "@in"}).strErr, testing::Not(HasSubstr("3 files")));
}

TEST_F(TagsMany, ListedFiles_AreShown) {
  WriteWav("a.wav");
  WriteWav("b.wav");
  WriteText("names", Path("b.wav") + '\0' + Path("a.wav") + '\0');
  const S_Run run = Run({"tags", "list", "-0", "--files-from", "@names"});
  EXPECT_EQ(Said(run.strOut), "@/b.wav: no marks\n\n@/a.wav: no marks\n");
  EXPECT_EQ(run.nExit, 0);
}

TEST_F(TagsMany, ValuesOfAFolder_AreOneTable) {
  voxplay::Notes notes;
  notes.add(voxplay::Event{500, 3, 5, 0, ""});
  WriteWav("a.wav", notes);
  WriteWav("b.wav");
  const S_Run run = Run({"tags", "list", "--csv", "-r", "@"});
  EXPECT_THAT(run.strOut, StartsWith("file,kind,number,id,start,"));
  EXPECT_THAT(Said(run.strOut), HasSubstr("\r\n@/a.wav,event,1,,500,0.03125,"));
  EXPECT_EQ(std::ranges::count(run.strOut, '\n'), 2);
  std::filesystem::remove(Path("a.wav"));
  EXPECT_EQ(std::ranges::count(Run({"tags", "list", "--csv", "-r", "@"}).strOut, '\n'), 1);
  EXPECT_EQ(Run({"tags", "list", "--labels", "-r", "@"}).nExit, 2);
}

TEST_F(TagsMany, ManyMarks_TakeLittleMemory) {
  // Sanitizers take far more.
  constexpr rlim_t kMost = kSanitized ? RLIM_INFINITY : rlim_t{40} << 20U;
  WriteMarks("many.wav", 40000);
  for (const Texts& command : Commands()) {
    const S_Run run = RunWithMemory(command, kMost);
    EXPECT_EQ(run.nExit, 0) << testing::PrintToString(command) << run.strErr;
  }
  EXPECT_EQ(voxplay::Reader(Path("many.wav")).notes().labels().size(), 20000U);
}

// Ten times the marks: a hundred times the work if each went through all others.
TEST_F(TagsMany, Work_GrowsWithTheMarks) {
  std::vector<double> seconds;
  for (const std::uint32_t nMarks : {3000U, 30000U}) {
    WriteMarks("many.wav", nMarks);
    for (std::size_t n = 0; n < Commands().size(); ++n) {
      const double dSeconds = SecondsOf([&] { Output(Commands()[n]); });
      if (seconds.size() < Commands().size()) {
        seconds.push_back(dSeconds);
      } else {
        EXPECT_LT(dSeconds, 30 * seconds[n] + 0.1) << testing::PrintToString(Commands()[n]);
      }
    }
  }
}

}  // namespace
