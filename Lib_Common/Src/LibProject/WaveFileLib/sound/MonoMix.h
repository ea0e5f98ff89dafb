// SPDX-License-Identifier: Apache-2.0
//
// Turns a sound of any format into 16-bit mono samples.
#pragma once

#include <optional>
#include <vector>

#include "interface/I_WavData.h"

namespace monomix {

// Each sample is converted to 16 bits as by I_WavData::CreateBitsConvertedData with bExact. The
// samples of a frame are then averaged, rounded toward zero. Unlike I_WavData::ConvertToMono, this
// is right for any number of channels. Empty when there is no PCM, when the widths are not
// supported, when the sound holds fewer bytes than its format says, and when the result would be
// too long for a buffer.
std::optional<std::vector<short>> SamplesOf(I_WavData& wavData);

}  // namespace monomix
