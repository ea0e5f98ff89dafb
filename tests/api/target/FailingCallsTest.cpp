// SPDX-License-Identifier: Apache-2.0
//
// Every call of the system that fails is reported, and leaves what was there.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "FailureOf.h"
#include "FaultyIo.h"
#include "FolderTest.h"
#include "target/SpooledTarget.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using api::test::FailureOf;

const Bytes kOld = {'o', 'l', 'd'};

class FailingCalls : public C_FolderTest {
 protected:
  void WriteSome() const {
    const auto target = api::OpenFileTarget(Path("a").c_str());
    for (int i = 0; i < 10; ++i) target->Write(Bytes(20000, 'x'));
    target->WriteAt(7, kOld);
    target->Finish();
  }
};

TEST_F(FailingCalls, EachInTurn_IsReportedAndLeavesTheOldFile) {
  for (const bool bOld : {false, true}) {
    std::filesystem::remove(Path("a"));
    int nFailed = 0;
    bool bHit = true;
    for (int nCall = 1; bHit; ++nCall) {
      if (bOld) Write("a", kOld);
      C_FaultyIo faults({.nCall = nCall});
      const auto failure = FailureOf([this] { WriteSome(); });
      faults.Stop();
      bHit = faults.WasHit();
      if (failure.eStatus == VOXPLAY_OK) {
        EXPECT_EQ(Content("a").size(), 200000u);
        std::filesystem::remove(Path("a"));
      } else {
        ++nFailed;
        EXPECT_TRUE(bHit);
        EXPECT_EQ(Content("a"), bOld ? kOld : Bytes());
      }
      EXPECT_LE(Entries().size(), bOld ? 1u : 0u) << nCall;
      std::filesystem::remove(Path("a"));
    }
    EXPECT_GE(nFailed, 10);
  }
}

TEST_F(FailingCalls, OfATemporaryFile_AreReported) {
  int nFailed = 0;
  bool bHit = true;
  for (int nCall = 1; bHit; ++nCall) {
    C_FaultyIo faults({.nCall = nCall});
    Bytes read(150000);
    const auto failure = FailureOf([&] {
      api::C_SpoolFile spool;
      spool.Append(Bytes(150000, 'x').data(), 150000);
      spool.Overwrite(3, kOld);
      spool.Read(0, read.data(), read.size());
    });
    faults.Stop();
    bHit = faults.WasHit();
    if (failure.eStatus == VOXPLAY_OK) {
      EXPECT_EQ(read[2], 'x');
      EXPECT_EQ(read[3], 'o');
      EXPECT_EQ(read[149999], 'x');
    } else {
      ++nFailed;
      EXPECT_EQ(failure.eStatus, VOXPLAY_CANNOT_WRITE);
    }
  }
  EXPECT_GE(nFailed, 5);
}

}  // namespace
