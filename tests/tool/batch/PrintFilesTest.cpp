// SPDX-License-Identifier: Apache-2.0
#include "batch/PrintFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "base/Failure.h"

namespace tool {
namespace {

using testing::StartsWith;

class PrintFilesTest : public testing::Test {
 protected:
  void Name(std::size_t nFiles) {
    for (std::size_t n = 0; n < nFiles; ++n) m_options.operands.push_back(std::to_string(n));
  }
  int Run(const PFN_PrintFile& fnPrint, const S_PrintRule& rule = {}) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int nExit = PrintFiles(m_options, rule, fnPrint, m_console);
    m_strErr = testing::internal::GetCapturedStderr();
    m_strOut = testing::internal::GetCapturedStdout();
    return nExit;
  }

  S_BatchOptions m_options;
  C_Console m_console;
  std::string m_strOut;
  std::string m_strErr;
};

S_FileResult PrintName(const std::string& strPath, C_FileOutput& output, C_FileWatch& /*watch*/) {
  output.Print(strPath + "\n");
  return {};
}

TEST_F(PrintFilesTest, WhatIsPrinted_IsInTheOrderOfTheFiles) {
  Name(1000);
  m_options.nThreads = 7;
  std::string strAll;
  for (int n = 0; n < 1000; ++n) strAll += std::to_string(n) + "\n";
  EXPECT_EQ(Run(PrintName), 0);
  EXPECT_EQ(m_strOut, strAll);
  EXPECT_THAT(m_strErr, StartsWith("1000 files: 1000 read; 0 s of sound in "));
}

// The first file waits for so many others that they cannot all be kept.
TEST_F(PrintFilesTest, SlowFile_DoesNotMakeTheOthersPileUp) {
  Name(1000);
  m_options.nThreads = 2;
  std::atomic<int> nOthers = 0;
  int nBeforeTheFirst = 0;
  Run([&](const std::string& strPath, C_FileOutput& output, C_FileWatch& watch) {
    if (strPath != "0") return ++nOthers, PrintName(strPath, output, watch);
    while (nOthers < 15) std::this_thread::yield();
    // Time for a sixteenth, if there were one.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    nBeforeTheFirst = nOthers;
    return PrintName(strPath, output, watch);
  });
  EXPECT_EQ(nBeforeTheFirst, 15);
  EXPECT_EQ(std::ranges::count(m_strOut, '\n'), 1000);
  EXPECT_THAT(m_strOut, StartsWith("0\n1\n2\n"));
}

TEST_F(PrintFilesTest, FileThatFails_IsToldInItsPlaceAndTheOthersGoOn) {
  Name(3);
  m_options.nThreads = 2;
  const int nExit = Run([](const std::string& strPath, C_FileOutput& output, C_FileWatch& watch) {
    if (strPath == "1") throw C_Failure("1", "cannot be read", "it is damaged");
    return PrintName(strPath, output, watch);
  });
  EXPECT_EQ(nExit, 1);
  EXPECT_EQ(m_strOut, "0\n2\n");
  EXPECT_THAT(m_strErr,
              StartsWith("1: cannot be read: it is damaged\n3 files: 2 read, 1 failed; "));
}

TEST_F(PrintFilesTest, FailureThatWasToldAlready_IsCountedAndToldOnce) {
  Name(2);
  S_PrintRule rule;
  rule.strDone = "good";
  rule.strFailed = "not good";
  const int nExit = Run(
      [](const std::string&, C_FileOutput&, C_FileWatch&) {
        S_FileResult result;
        result.eState = tagFileState::FILE_FAILED;
        return result;
      },
      rule);
  EXPECT_EQ(nExit, 1);
  EXPECT_THAT(m_strErr, StartsWith("2 files: 0 good, 2 not good; "));
}

TEST_F(PrintFilesTest, JsonArray_HasCommasBetweenThoseThatPrint) {
  Name(3);
  const PFN_PrintFile fnPrint = [](const std::string& strPath, C_FileOutput& output, C_FileWatch&) {
    if (strPath != "1") output.Print("  " + strPath);
    return S_FileResult();
  };
  Run(fnPrint, JsonArrayRule());
  EXPECT_EQ(m_strOut, "[\n  0,\n  2\n]\n");
  m_options.operands = {"1"};
  Run(fnPrint, JsonArrayRule());
  EXPECT_EQ(m_strOut, "[]\n");
}

TEST_F(PrintFilesTest, OneFile_IsNotSummedUp) {
  Name(1);
  Run(PrintName);
  EXPECT_EQ(m_strErr, "");
}

TEST_F(PrintFilesTest, VeryQuiet_SumsNothingUp) {
  Name(2);
  m_options.nQuiet = 2;
  Run(PrintName);
  EXPECT_EQ(m_strErr, "");
}

TEST_F(PrintFilesTest, StandardInputTwice_CannotBeMeant) {
  m_options.operands = {"-", "a"};
  m_options.strList = "-";
  EXPECT_THROW(PrintFiles(m_options, {}, PrintName, m_console), C_UsageFailure);
}

}  // namespace
}  // namespace tool
