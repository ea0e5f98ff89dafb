// SPDX-License-Identifier: Apache-2.0
//
// The base of tests that run voxtool as a user does, in a folder of their own.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ChildProcess.h"
#include "FolderTest.h"
#include "VoxtoolSounds.h"

namespace tool::test {

class C_VoxtoolTest : public C_FolderTest {
 protected:
  using Texts = C_Program::Texts;

  // Every "@" in an argument stands for the folder, and "@name" for a file in it.
  [[nodiscard]] Texts Placed(Texts arguments) const {
    for (std::string& strArgument : arguments) strArgument = InFolder(std::move(strArgument));
    return arguments;
  }
  [[nodiscard]] std::string InFolder(std::string strText) const {
    for (std::size_t n = 0; (n = strText.find('@', n)) != std::string::npos;) {
      const std::size_t nName = n + 1;
      const bool bName =
          nName < strText.size() && std::isalnum(static_cast<unsigned char>(strText[nName])) != 0;
      strText.replace(n, 1, bName ? Folder() + '/' : Folder());
      n += Folder().size();
    }
    return strText;
  }
  // What it says in one of these runs has the folder replaced by "@" again.
  [[nodiscard]] std::string Said(std::string strText) const {
    for (std::size_t n = 0; (n = strText.find(Folder(), n)) != std::string::npos;) {
      strText.replace(n, Folder().size(), "@");
    }
    return strText;
  }

  static C_Program Program() { return C_Program(VOXTOOL); }
  static C_Program Shell() { return C_Program("/bin/sh"); }
  [[nodiscard]] S_Run Run(Texts arguments, const Texts& environment = {}) const {
    return Program().Run(Placed(std::move(arguments)), environment);
  }
  [[nodiscard]] S_Run Voxtool(Texts arguments, const Texts& environment = {}) const {
    return Run(std::move(arguments), environment);
  }
  // Runs a line of the shell, in which $V is the program.
  [[nodiscard]] S_Run RunLine(const std::string& strLine) const {
    return Shell().Run({"-c", InFolder(strLine)}, {"V=" VOXTOOL, "PATH=/usr/bin:/bin"});
  }
  // Expects the command to succeed without a word on standard error, and returns what it printed.
  std::string Output(const Texts& arguments) const {
    const S_Run run = Run(arguments);
    EXPECT_EQ(run.nExit, 0) << run.strErr;
    EXPECT_EQ(run.strErr, "");
    return run.strOut;
  }
  [[nodiscard]] nlohmann::ordered_json Json(const Texts& arguments) const {
    return nlohmann::ordered_json::parse(Output(arguments));
  }
  // Sounds in the folder. The latter is of 16 bits and 16 kHz and lasts a second.
  std::string WriteSound(const std::string& strName, const voxplay_format& format,
                         const std::vector<std::int16_t>& samples,
                         const voxplay::NotesView& notes = {}) const {
    return Write(strName, WrittenBytes(format, samples, notes));
  }
  std::string WriteWav(const std::string& strName, const voxplay::NotesView& notes = {}) const {
    return WriteSound(strName, FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16),
                      PublicSamples(16000), notes);
  }
  // One with these samples, of as many bits; 0 bits stand for floating point.
  template <typename Sample>
  void MakeWav(const std::string& strName, const std::vector<Sample>& samples,
               std::uint32_t dwBits = 16, std::uint32_t dwRate = 16000,
               std::uint32_t dwChannels = 1, const voxplay::NotesView& notes = {}) const {
    const auto eCodec = dwBits == 0 ? VOXPLAY_CODEC_FLOAT : VOXPLAY_CODEC_PCM;
    test::WriteSound(
        Path(strName),
        FormatOf(VOXPLAY_CONTAINER_WAV, eCodec, dwBits == 0 ? 32 : dwBits, dwRate, dwChannels),
        samples, notes);
  }

  std::string WriteText(const std::string& strName, std::string_view text) const {
    return Write(strName, {text.begin(), text.end()});
  }
  [[nodiscard]] std::string Text(const std::string& strName) const {
    const auto bytes = Content(strName);
    return {bytes.begin(), bytes.end()};
  }
};

}  // namespace tool::test

using tool::test::C_VoxtoolTest;
