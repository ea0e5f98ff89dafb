// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "voxplay.hpp"

namespace tool {

// Whether a file has said something of its sampler, apart from loops. Setting a record that says
// nothing would add a chunk to the file.
[[nodiscard]] inline bool IsPresent(const voxplay::Sampler& sampler) noexcept {
  return sampler.manufacturer != 0 || sampler.product != 0 || sampler.sample_period != 0 ||
         sampler.midi_unity_note != 0 || sampler.midi_pitch_fraction != 0 ||
         sampler.smpte_format != 0 || sampler.smpte_offset != 0 || sampler.data_size != 0;
}

}  // namespace tool
