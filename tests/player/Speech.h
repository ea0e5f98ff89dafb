// SPDX-License-Identifier: Apache-2.0
//
// Kestrel files to play, and what they decode to.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "ExampleSound.h"
#include "RiffBytes.h"
#include "SpBytes.h"
#include "TempFolder.h"
#include "WavFileFormat.h"

struct S_Speech {
  C_Bytes stream;  // without a header
  C_Bytes file;    // with one
  C_Bytes pcm;     // 640 bytes for each frame
};

inline S_Speech SpeechOf(unsigned int dwFrames) {
  const C_TempFolder folder;
  S_Speech speech;
  const C_SoundPtr sound = ExampleSound({}, std::size_t{dwFrames} * 320);
  EXPECT_TRUE(sound->Convert(AUDIO_FILE_KESTREL, folder.Path("made").c_str(), true, false, nullptr,
                             true, 0));
  speech.stream = folder.Read("made");
  speech.file = C_SpBytes().Stream(speech.stream).Take();
  const std::string strFile = folder.Write("speech.kst", speech.file);
  C_WavFileFormat format;
  I_WavFile* pIFile = format.CreateWavFile(strFile.c_str(), true, true, nullptr, nullptr);
  EXPECT_NE(pIFile, nullptr);
  if (pIFile == nullptr) return speech;
  const std::span pcm(pIFile->GetWavDataBuffer(), std::size_t{dwFrames} * 640);
  speech.pcm.assign(pcm.begin(), pcm.end());
  pIFile->Release();
  return speech;
}

// A WAV file of 16-bit PCM.
inline C_Bytes WavOf(std::uint32_t dwRate, std::uint16_t wChannels, const C_Bytes& pcm) {
  const auto wAlign = static_cast<std::uint16_t>(wChannels * 2);
  return C_RiffBytes("WAVE")
      .Chunk("fmt ", Join({U16(1), U16(wChannels), U32(dwRate), U32(dwRate * wAlign), U16(wAlign),
                           U16(16)}))
      .Chunk("data", pcm)
      .Take();
}
