// SPDX-License-Identifier: Apache-2.0
//
// Files of every kind, damaged in every way that the fuzzers have found: each command says
// something about each of them, and does not crash.
#include <algorithm>
#include <string>

#include "CorpusPack.h"
#include "Sanitized.h"
#include "VoxtoolTest.h"

namespace {

constexpr std::size_t kFilesAtOnce = 250;
// Each of them starts the program, which takes long with a sanitizer.
constexpr std::size_t kEdits = kSanitized ? 20 : 100;

class HostileFiles : public C_VoxtoolTest, public testing::WithParamInterface<const char*> {
 protected:
  HostileFiles() {
    const auto pack = ReadPack(std::string(VOXPLAY_CORPORA "/") + GetParam() + ".pack");
    EXPECT_TRUE(pack.has_value());
    if (pack) m_inputs = *pack;
    m_inputs.resize(std::min(m_inputs.size(), std::size_t{1500}));
  }

  // Runs the command with some of the files at a time.
  template <typename Expect>
  void WithFiles(const Texts& command, Expect&& fnExpect) {
    for (std::size_t nFirst = 0; nFirst < m_inputs.size(); nFirst += kFilesAtOnce) {
      const std::size_t nFiles = std::min(kFilesAtOnce, m_inputs.size() - nFirst);
      Texts arguments = command;
      for (std::size_t n = 0; n < nFiles; ++n) {
        arguments.push_back(Write("f" + std::to_string(n), m_inputs[nFirst + n]));
      }
      const S_Run run = Run(arguments);
      ASSERT_TRUE(run.nExit == 0 || run.nExit == 1)
          << "files from " << nFirst << " on: " << run.nExit << ", signal " << run.nSignal;
      fnExpect(run, nFiles);
    }
  }
  static std::size_t Lines(const std::string& strText) {
    return static_cast<std::size_t>(std::ranges::count(strText, '\n'));
  }

  std::vector<C_InputBytes> m_inputs;
};

TEST_P(HostileFiles, Info_SaysSomethingOfEach) {
  WithFiles({"info", "--json-lines", "--damage"}, [](const S_Run& run, std::size_t nFiles) {
    EXPECT_EQ(Lines(run.strOut), nFiles);
    EXPECT_TRUE(nlohmann::json::accept("[" + run.strOut.substr(0, run.strOut.find('\n')) + "]"));
  });
  WithFiles({"info"}, [](const S_Run&, std::size_t) {});
}

TEST_P(HostileFiles, Check_HasAVerdictForEach) {
  WithFiles({"check"}, [](const S_Run& run, std::size_t nFiles) {
    EXPECT_EQ(Lines(run.strOut) + Lines(run.strErr), nFiles);
  });
}

TEST_P(HostileFiles, TagsAndHeaders_AreListed) {
  for (const char* const pszForm : {"--json", "--csv"}) {
    WithFiles({"tags", "list", pszForm}, [](const S_Run&, std::size_t) {});
  }
  WithFiles({"header", "show"}, [](const S_Run&, std::size_t) {});
}

// Marks either change and the file is good as before, or nothing changes.
TEST_P(HostileFiles, Edits_AreWholeOrNotAtAll) {
  const std::size_t nStep = std::max<std::size_t>(m_inputs.size() / kEdits, 1);
  for (std::size_t n = 0; n < m_inputs.size(); n += nStep) {
    Write("f", m_inputs[n]);
    const S_Run run = Run({"tags", "add", "cue", "-f", "@f", "--at", "1s", "--name", "x"});
    ASSERT_TRUE(run.nExit == 0 || run.nExit == 1) << n << ": signal " << run.nSignal;
    EXPECT_THAT(Entries(), testing::ElementsAre("f"));
    if (run.nExit == 0) {
      EXPECT_EQ(Run({"info", "@f"}).nExit, 0) << n;
    } else {
      EXPECT_EQ(Content("f"), m_inputs[n]);
      EXPECT_EQ(Lines(run.strErr), 1U) << run.strErr;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, HostileFiles,
                         testing::Values("api_reader", "factory", "vef", "wav_load",
                                         "sp_header_files", "kestrel_stream", "heron_stream",
                                         "riff_list", "adtl"),
                         [](const auto& corpus) { return std::string(corpus.param); });

}  // namespace
