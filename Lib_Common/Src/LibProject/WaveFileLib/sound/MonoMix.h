// SPDX-License-Identifier: Apache-2.0
//
// Turns a sound of any format into 16-bit mono samples.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "interface/I_WavData.h"

namespace monomix {

// Each sample is converted to 16 bits as by I_WavData::CreateBitsConvertedData with bExact. The
// samples of a frame are then averaged, rounded toward zero. Unlike I_WavData::ConvertToMono, this
// is right for any number of channels. Empty when there is no PCM, when the widths are not
// supported, when the sound holds fewer bytes than its format says, and when the result would be
// too long for a buffer.
std::optional<std::vector<short>> SamplesOf(I_WavData& wavData);

// The same samples, but without a copy where the PCM of the sound consists of them already.
class C_Samples {
 public:
  // The samples stay until the object is gone, even when the sound gets others in other memory.
  // Only attached memory must stay by itself.
  static std::optional<C_Samples> Of(I_WavData& wavData);
  // Moving does not move the samples themselves.
  C_Samples(C_Samples&&) = default;
  C_Samples& operator=(C_Samples&&) = default;

  [[nodiscard]] std::span<const short> View() const { return m_view; }

 private:
  C_Samples() = default;

  std::vector<short> m_mix;
  std::shared_ptr<const void> m_kept;
  std::span<const short> m_view;  // of m_mix or of the sound
};

}  // namespace monomix
