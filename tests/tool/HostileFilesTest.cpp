// SPDX-License-Identifier: Apache-2.0
//
// Files of every kind, damaged in every way that the fuzzers have found: each command says
// something about each of them, and does not crash.
#include <algorithm>
#include <set>
#include <sstream>
#include <string>

#include "CorpusPack.h"
#include "Sanitized.h"
#include "VoxtoolTest.h"
#include "marks/CsvText.h"

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
    EXPECT_GT(m_inputs.size(), 20U);
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
  // Each complaint is about a file, and each file has one at most.
  static std::size_t Complaints(const S_Run& run) {
    std::set<std::string> files;
    std::istringstream lines(run.strErr);
    for (std::string strLine; std::getline(lines, strLine);) {
      const std::size_t nColon = strLine.find(": ");
      EXPECT_NE(nColon, std::string::npos) << strLine;
      EXPECT_TRUE(files.insert(strLine.substr(0, nColon)).second) << strLine;
    }
    return files.size();
  }

  std::vector<C_InputBytes> m_inputs;
};

TEST_P(HostileFiles, Info_SaysSomethingOfEach) {
  WithFiles({"info", "--json-lines", "--damage"}, [](const S_Run& run, std::size_t nFiles) {
    std::istringstream lines(run.strOut);
    std::size_t nLines = 0;
    for (std::string strLine; std::getline(lines, strLine); ++nLines) {
      EXPECT_TRUE(nlohmann::json::parse(strLine, nullptr, false).contains("file")) << strLine;
    }
    EXPECT_EQ(nLines, nFiles);
  });
  // People see a paragraph of each, which begins with its name, or a complaint.
  WithFiles({"info", "-qq"}, [this](const S_Run& run, std::size_t nFiles) {
    std::size_t nShown = 0;
    std::istringstream lines(run.strOut);
    for (std::string strLine; std::getline(lines, strLine);) {
      if (strLine.starts_with(Folder())) ++nShown;
    }
    EXPECT_EQ(nShown + Complaints(run), nFiles);
  });
}

TEST_P(HostileFiles, Check_HasAVerdictForEach) {
  WithFiles({"check"}, [](const S_Run& run, std::size_t nFiles) {
    // The last line is the summary.
    EXPECT_EQ(Lines(run.strOut) + Lines(run.strErr), nFiles + (nFiles > 1 ? 1 : 0));
    EXPECT_EQ(Lines(run.strErr), Complaints(run));
  });
}

TEST_P(HostileFiles, TagsAndHeaders_AreListed) {
  std::size_t nMarks = 0;
  WithFiles({"tags", "list", "-qq", "--json"}, [&](const S_Run& run, std::size_t nFiles) {
    const auto files = nlohmann::json::parse(run.strOut, nullptr, false);
    ASSERT_TRUE(files.is_array());
    EXPECT_EQ(files.size() + Complaints(run), nFiles);
    for (const auto& file : files) nMarks += file["marks"].size();
  });
  std::size_t nRows = 0;
  WithFiles({"tags", "list", "-qq", "--csv"}, [&](const S_Run& run, std::size_t) {
    tool::C_CsvReader reader(run.strOut);
    tool::C_CsvRow heading;
    ASSERT_TRUE(reader.Read(heading));
    for (tool::C_CsvRow row; reader.Read(row); ++nRows) EXPECT_EQ(row.size(), heading.size());
  });
  EXPECT_EQ(nRows, nMarks);
  WithFiles({"header", "show", "--json"}, [](const S_Run& run, std::size_t nFiles) {
    const auto files = nlohmann::json::parse(run.strOut, nullptr, false);
    ASSERT_TRUE(files.is_array());
    EXPECT_EQ(files.size() + Complaints(run), nFiles);
  });
}

// Marks either change and the file is good as before, or nothing changes.
TEST_P(HostileFiles, Edits_AreWholeOrNotAtAll) {
  const std::size_t nStep = std::max<std::size_t>(m_inputs.size() / kEdits, 1);
  std::size_t nChanged = 0;
  for (std::size_t n = 0; n < m_inputs.size(); n += nStep) {
    Write("f", m_inputs[n]);
    const S_Run run = Run({"tags", "add", "cue", "--anyway", "@f", "--at", "1s", "--name", "x"});
    ASSERT_TRUE(run.nExit == 0 || run.nExit == 1) << n << ": signal " << run.nSignal;
    EXPECT_THAT(Entries(), testing::ElementsAre("f"));
    if (run.nExit == 0) {
      ++nChanged;
      EXPECT_NE(Content("f"), m_inputs[n]);
      const auto marks = Json({"tags", "list", "--json", "@f"})[0]["marks"];
      EXPECT_TRUE(std::ranges::any_of(marks, [](const auto& mark) {
        return mark["kind"] == "label" && mark["name"] == "x";
      })) << n;
    } else {
      EXPECT_EQ(Content("f"), m_inputs[n]);
      EXPECT_EQ(Lines(run.strErr), 1U) << run.strErr;
    }
  }
  // Those of these kinds are not all refused.
  const std::string strCorpus = GetParam();
  const bool bHoldsMarks = strCorpus == "wav_load" || strCorpus == "vef";
  EXPECT_GE(nChanged, bHoldsMarks ? 1U : 0U) << strCorpus;
}

INSTANTIATE_TEST_SUITE_P(All, HostileFiles,
                         testing::Values("api_reader", "factory", "vef", "wav_load",
                                         "sp_header_files", "kestrel_stream", "heron_stream",
                                         "riff_list", "adtl"),
                         [](const auto& corpus) { return std::string(corpus.param); });

}  // namespace
