// SPDX-License-Identifier: Apache-2.0
//
// The base of tests that run voxtool as a user does, in a folder of their own.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "FolderTest.h"
#include "PublicSounds.h"

class C_VoxtoolTest : public C_FolderTest {
 protected:
  using Texts = C_Program::Texts;

  // Words that begin with "@" are names in the folder.
  S_Run Voxtool(Texts arguments, const Texts& environment = {}) const {
    for (std::string& strWord : arguments) {
      if (strWord.starts_with('@')) strWord = Path(strWord.substr(1));
    }
    return m_tool.Run(arguments, environment);
  }
  // Expects the command to succeed without a word on standard error, and returns what it printed.
  std::string Output(const Texts& arguments) const {
    const S_Run run = Voxtool(arguments);
    EXPECT_EQ(run.nExit, 0) << run.strErr;
    EXPECT_EQ(run.strErr, "");
    return run.strOut;
  }
  nlohmann::ordered_json Json(const Texts& arguments) const {
    return nlohmann::ordered_json::parse(Output(arguments));
  }

  std::string WriteSound(const std::string& strName, const voxplay_format& format,
                         const std::vector<std::int16_t>& samples,
                         const voxplay::NotesView& notes = {}) const {
    return Write(strName, WrittenBytes(format, samples, notes));
  }
  // A WAV file of 16 bits and 16 kHz that lasts a second.
  std::string WriteWav(const std::string& strName, const voxplay::NotesView& notes = {}) const {
    return WriteSound(strName, FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16),
                      PublicSamples(16000), notes);
  }
  std::string Text(const std::string& strName) const {
    const auto bytes = Content(strName);
    return {bytes.begin(), bytes.end()};
  }

 private:
  const C_Program m_tool{VOXTOOL};
};
