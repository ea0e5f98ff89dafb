// SPDX-License-Identifier: Apache-2.0
//
// The texts of streams, layouts, components and units are meant for debugging. The program prints
// none of them and does not even contain them. The tests that run the program compare all of its
// output.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace {

std::string ProgramBytes() {
  std::ifstream file(VOXPLAY_PLAYER, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(DiagnosticTexts, Texts_AreNotInTheProgram) {
  const std::string strProgram = ProgramBytes();
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
