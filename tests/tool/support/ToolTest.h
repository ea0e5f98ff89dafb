// SPDX-License-Identifier: Apache-2.0
//
// Tests of voxtool that run it as a user would, on files in a folder of their own.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "ChildProcess.h"
#include "FolderTest.h"
#include "VoxtoolSounds.h"

namespace tool::test {

class C_ToolTest : public C_FolderTest {
 protected:
  using Texts = std::vector<std::string>;

  // Every "@" in an argument stands for the folder.
  [[nodiscard]] Texts Placed(Texts arguments) const {
    for (std::string& strArgument : arguments) {
      for (std::size_t n = 0; (n = strArgument.find('@', n)) != std::string::npos;) {
        strArgument.replace(n, 1, Folder());
        n += Folder().size();
      }
    }
    return arguments;
  }
  [[nodiscard]] S_Run Run(Texts arguments) const {
    return Program().Run(Placed(std::move(arguments)));
  }
  // What it says in one of these runs has the folder replaced by "@" again.
  [[nodiscard]] std::string Said(std::string strText) const {
    for (std::size_t n = 0; (n = strText.find(Folder(), n)) != std::string::npos;) {
      strText.replace(n, Folder().size(), "@");
    }
    return strText;
  }
  // Runs it, expects it to succeed, and returns what it said on standard error.
  std::string Convert(Texts arguments) const {
    arguments.insert(arguments.begin(), "convert");
    const S_Run run = Run(std::move(arguments));
    EXPECT_EQ(run.nExit, 0) << run.strErr;
    return Said(run.strErr);
  }
  // The same for what has to end with another code.
  std::string Fail(int nExit, Texts arguments) const {
    arguments.insert(arguments.begin(), "convert");
    const S_Run run = Run(std::move(arguments));
    EXPECT_EQ(run.nExit, nExit) << run.strErr;
    return Said(run.strErr);
  }
  static C_Program Program() { return C_Program(VOXPLAY_VOXTOOL); }
  static C_Program Shell() { return C_Program("/bin/sh"); }

  // A sound in the folder.
  template <typename Sample>
  void MakeWav(const std::string& strName, const std::vector<Sample>& samples,
               std::uint32_t dwBits = 16, std::uint32_t dwRate = 16000,
               std::uint32_t dwChannels = 1, const voxplay::NotesView& notes = {}) const {
    const auto eCodec = dwBits == 0 ? VOXPLAY_CODEC_FLOAT : VOXPLAY_CODEC_PCM;
    WriteSound(
        Path(strName),
        FormatOf(VOXPLAY_CONTAINER_WAV, eCodec, dwBits == 0 ? 32 : dwBits, dwRate, dwChannels),
        samples, notes);
  }
};

}  // namespace tool::test
