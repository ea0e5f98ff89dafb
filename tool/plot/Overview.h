// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "measure/Columns.h"
#include "measure/SpectrumMeter.h"
#include "measure/WaveMeter.h"
#include "sound/SoundInput.h"

namespace tool {

// Part of a sound, in frames.
struct S_Part {
  std::uint64_t qwFirst = 0;
  std::uint64_t qwCount = 0;
};

// What is to be measured of a sound.
struct S_Measured {
  S_Part part;
  std::vector<std::uint32_t> channels;  // counted from 0
  int nColumns = 1;
  bool bWaves = true;
  int nSpectrumRows = 0;  // 0 for no spectra
};

// What a picture shows of a channel.
struct S_ChannelOverview {
  std::optional<C_WaveMeter> wave;
  std::optional<C_SpectrumMeter> spectrum;
};

struct S_Overview {
  std::uint64_t qwFrames = 0;  // of the part, as far as they are there
  std::vector<S_ChannelOverview> channels;
};

// Hears of the frames that are done, of all.
using PFN_FramesDone = std::function<void(std::uint64_t qwDone, std::uint64_t qwAll)>;

// Reads that part once. The memory that this takes grows with the picture, not with the sound.
S_Overview Measure(I_SoundInput& input, const S_Measured& measured, const PFN_FramesDone& fnDone);

// The number of frames, counted where the sound does not tell it.
std::uint64_t FramesOf(I_SoundInput& input);

}  // namespace tool
