// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>

#include "voxplay.hpp"

namespace tool {

// Where silence is: at most so loud, for at least so long.
struct S_SilenceRule {
  double dDecibels = 0.0;  // of full scale
  double dSeconds = 0.0;
};

// How sounds are converted. All of it is valid.
struct S_ConvertOptions {
  // Container, codec and bit rate are set. bits_per_sample is 0 to take what the source has, and
  // sample_rate to take its rate as far as the codec can.
  voxplay::Format format{};
  std::optional<std::uint32_t> dwChannel;  // from 0
  bool bMono = false;
  double dGain = 1.0;           // a factor
  std::optional<double> dPeak;  // to be reached by the loudest sample; 1 is full scale
  std::optional<S_SilenceRule> silence;
  bool bNotes = true;             // are kept
  bool bSum = false;              // over the decoded sound, for S_FileResult
  std::uint32_t dwReadFlags = 0;  // of voxplay.h
};

}  // namespace tool
