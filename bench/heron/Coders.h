// SPDX-License-Identifier: Apache-2.0
//
// The coders that the benchmark compares. Each is one call that takes a sound and returns the coded
// size and the decoded sound. All throw std::runtime_error when the coder fails, when the decoded
// sound lacks samples of the original or when it is not aligned with the original.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "heron/Sound.h"

// A new folder for the files that are exchanged with other programs. The destructor removes it.
class C_Workshop {
 public:
  C_Workshop();
  ~C_Workshop();
  C_Workshop(const C_Workshop&) = delete;
  C_Workshop& operator=(const C_Workshop&) = delete;

  [[nodiscard]] std::string Path(const std::string& strName) const;
  [[nodiscard]] std::size_t SizeOf(const std::string& strName) const;
  // Runs a shell command in the folder, without input or output. Throws std::runtime_error unless
  // it succeeds.
  void Run(const std::string& strCommand) const;

 private:
  std::string m_strPath;
};

struct S_Coded {
  std::size_t cbCoded = 0;  // everything that the coder stores
  std::vector<std::int16_t> samples;
};

// Counts the coded audio and the head before it.
S_Coded CodeWithHeron(const S_Sound& sound, int nBitDepth);

// Codes each sample by itself with nBits bits: the continuous mu-law curve with mu = 255, followed
// by a uniform quantiser without a level at zero.
S_Coded CodeWithCompanding(const S_Sound& sound, int nBits);

// ffmpeg's G.726 without a container, at 2 to 5 bits. It works at any sample rate, because the
// coder does not know the rate. The workshop must hold the sound as "in.wav".
S_Coded CodeWithG726(const S_Sound& sound, int nBits, const C_Workshop& workshop);

// WavPack's lossy mode with these additional options, at the rate whose whole file comes nearest to
// cbWanted bytes. Even its lowest rate may need more. The workshop must hold the sound as "in.wav".
S_Coded CodeWithWavPack(const S_Sound& sound, const std::string& strOptions, std::size_t cbWanted,
                        const C_Workshop& workshop);
