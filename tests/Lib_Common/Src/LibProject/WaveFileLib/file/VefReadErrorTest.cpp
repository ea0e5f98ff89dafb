// SPDX-License-Identifier: Apache-2.0
//
// A container that cannot be read is not a container of another kind, and a sound that cannot be
// read holds no memory that nobody has filled.
#include <gtest/gtest.h>

#include <string>

#include "ExampleSound.h"
#include "FaultyIo.h"
#include "FolderTest.h"
#include "file/HeronFile.h"
#include "file/KestrelFile.h"

namespace {

using VefReadError = C_FolderTest;

TEST_F(VefReadError, WhileItsTypeIsRead_DoesNotMakeItAKestrelContainer) {
  const std::string strPath = Path("heron");
  ASSERT_TRUE(ExampleSound({}, 160)->Convert(AUDIO_FILE_HERON_3BIT, strPath.c_str(), false, false,
                                             nullptr, true, 0));
  int nRefused = 0;
  for (int nCall = 1;; ++nCall) {
    C_Heron4BitFile heron;
    C_KestrelFile kestrel;
    bool bHeron = false;
    {
      const C_FaultyIo faults({.nCall = nCall});
      bHeron = heron.CheckFormat(strPath.c_str(), false);
    }
    C_FaultyIo faults({.nCall = nCall});
    EXPECT_FALSE(kestrel.CheckFormat(strPath.c_str(), false)) << nCall;
    faults.Stop();
    nRefused += bHeron ? 0 : 1;
    if (!faults.WasHit()) break;
  }
  EXPECT_GT(nRefused, 3);
}

}  // namespace
