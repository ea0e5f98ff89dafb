// SPDX-License-Identifier: Apache-2.0
//
// Encodes samples to frame words. An encoder is a plain object without shared state: any number of
// them may work side by side.
//
// A frame holds: envelope | control, 4 bits | vectors of the regions in order | ones up to its end.
// Anything that does not fit is cut off.
#pragma once

#include <cstdint>
#include <span>

#include "kestrel/Configuration.h"

namespace kestrel {

struct S_EncoderState {
  S_Frame history{};  // the previous frame
};

class C_Encoder {
 public:
  // At 16000 bit/s.
  constexpr C_Encoder() noexcept = default;
  // Configures for the bit rate and forgets all earlier frames. See Configure for the result.
  const S_Configuration& Init(std::uint32_t dwBitRate) noexcept;
  [[nodiscard]] const S_Configuration& Configuration() const noexcept { return m_configuration; }

  // words has room for at least nWordsPerFrame words; only that many are written.
  void Encode(std::span<const std::int16_t, kSamplesPerFrame> samples,
              std::span<std::uint16_t> words) noexcept;

 private:
  S_Configuration m_configuration = Configure(kDefaultBitRate);
  S_EncoderState m_state;
};

// What C_Encoder::Encode does, in plain code; see Routines.h for the code that it uses.
void EncodeFrame(S_EncoderState& state, const S_Configuration& configuration,
                 std::span<const std::int16_t, kSamplesPerFrame> samples,
                 std::span<std::uint16_t> words) noexcept;

// Encodes the coefficients of a frame; fills all of words.
void EncodeCoefficients(S_Frame coefficients, int nShift, int nRegions,
                        std::span<std::uint16_t> words) noexcept;

}  // namespace kestrel
