// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "sound/SoundInput.h"

namespace tool {

// Samples of a sound as numbers of -1 to 1, exactly as they are in the file: integers of any width
// as well as floating point.
class C_SampleSource {
 public:
  explicit C_SampleSource(I_SoundInput& input);

  [[nodiscard]] std::size_t Channels() const noexcept { return m_nChannels; }
  void Rewind();
  // Fills whole interleaved frames, fewer only at the end of the sound, and returns their number.
  std::size_t Read(std::span<double> samples);

 private:
  I_SoundInput& m_input;
  std::size_t m_nChannels;
};

}  // namespace tool
