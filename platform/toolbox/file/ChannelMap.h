// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/CoreAudioTypes.h>
#include <sndfile.h>

#include <vector>

namespace toolbox {

// The bytes of an AudioChannelLayout with one description per channel; empty when the file does not
// say where its channels belong.
[[nodiscard]] std::vector<UInt8> ReadChannelLayout(SNDFILE* pSound, int nChannels);

}  // namespace toolbox
