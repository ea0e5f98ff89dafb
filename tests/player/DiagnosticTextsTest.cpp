// SPDX-License-Identifier: Apache-2.0
//
// The texts of streams, layouts, components and units are meant for debugging. The program prints
// none of them and does not even contain them. The tests that run the program compare all of its
// output.
#include <gtest/gtest.h>

#include <string>

#include "FileBytes.h"

namespace {

TEST(DiagnosticTexts, Texts_AreNotInTheProgram) {
  const auto program = FileBytes(VOXPLAY_PLAYER);
  const std::string strProgram(program.begin(), program.end());
  const auto Holds = [&](const char* psz) { return strProgram.find(psz) != std::string::npos; };
  ASSERT_TRUE(Holds("Playing..."));
  for (const char* pszText :
       {" ch, %6.0f Hz", "-bit source", "UNKNOWN source", "frames/packet", "-endian",
        "AudioComponentDescription: ", "CAComponent: ", ", Manu:", ", Name:", "AudioUnit:%p",
        "\tnode=", "NULL layout", "Using Bitmap:", "Num Chan Descs=", "\t\tLabel=", "[az="}) {
    EXPECT_FALSE(Holds(pszText)) << pszText;
  }
}

}  // namespace
