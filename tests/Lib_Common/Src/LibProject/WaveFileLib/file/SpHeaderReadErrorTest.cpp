// SPDX-License-Identifier: Apache-2.0
//
// Headers of files that cannot be read.
#include <gtest/gtest.h>

#include "FaultyIo.h"
#include "FolderTest.h"
#include "file/SpHeader.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using SpHeaderReadError = C_FolderTest;

TEST_F(SpHeaderReadError, StripOfASourceWhoseStartCannotBeRead_LeavesTheTargetAlone) {
  const Bytes old = {'o', 'l', 'd'};
  const std::string strSource = Write("source", Bytes(200, 1));
  for (int nCall = 1;; ++nCall) {
    const std::string strTarget = Write("target", old);
    C_SpHeader header;
    C_FaultyIo faults({.nCall = nCall});
    const bool bStripped = StripSpHeader(&header, strSource.c_str(), strTarget.c_str());
    faults.Stop();
    if (!faults.WasHit()) {
      EXPECT_TRUE(bStripped);
      EXPECT_EQ(Content("target"), Bytes(200, 1));
      EXPECT_GT(nCall, 4);
      break;
    }
    if (!bStripped) {
      EXPECT_EQ(Content("target"), old) << nCall;
    }
  }
}

// A file of the system that opens, but has nothing at its start that could be read.
TEST_F(SpHeaderReadError, StripOfASourceThatOpensButCannotBeRead_LeavesTheTargetAlone) {
  const std::string strTarget = Write("target", {7});
  C_SpHeader header;
  EXPECT_FALSE(StripSpHeader(&header, "/proc/self/mem", strTarget.c_str()));
  EXPECT_EQ(Content("target"), Bytes{7});
}

}  // namespace
