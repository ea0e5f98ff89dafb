// SPDX-License-Identifier: Apache-2.0
//
// Loads RIFF sound files that a test builds.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "TempFolder.h"
#include "WavBytes.h"
#include "WavFileObject.h"

class WavFileLoad : public testing::Test {
 protected:
  std::string File(const C_Bytes& bytes) { return m_folder.Write("sound.wav", bytes); }
  std::string File(const C_RiffBytes& riff) { return File(riff.Take()); }
  C_WavObjectPtr Load(const C_RiffBytes& riff) { return LoadWav(File(riff)); }

  C_TempFolder m_folder;
};

// A sound with one label on the cue point 1, which has position 4800 and sample offset 20.
inline C_RiffBytes OneLabel(std::string_view text) {
  return MonoWav(64)
      .Chunk("cue ", CueBytes({{1, 4800, 20}}))
      .Chunk("LIST", AdtlBytes({LablBytes(1, text)}));
}
