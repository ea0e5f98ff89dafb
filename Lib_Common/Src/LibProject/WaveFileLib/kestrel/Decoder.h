// SPDX-License-Identifier: Apache-2.0
//
// Frame words to samples. A plain object without shared state: any number may work side by side.
//
// Any words decode. A frame that contradicts itself is damaged: the last good frame is repeated in
// its place once, after that there is silence until the next good one.
#pragma once

#include <cstdint>
#include <span>

#include "kestrel/Configuration.h"
#include "kestrel/Noise.h"
#include "kestrel/Transform.h"

namespace kestrel {

// The coefficients of a frame and their scale.
struct S_Spectrum {
  S_Frame coefficients{};
  int nShift = 0;
};

struct S_DecoderState {
  S_Spectrum lastGood;  // silence after it has been repeated
  S_Overlap overlap{};
  S_NoiseGenerator noise;
};

class C_Decoder {
 public:
  // At 16000 bit/s.
  constexpr C_Decoder() noexcept = default;
  // Configures for the bit rate and forgets every frame before. See Configure for the result.
  const S_Configuration& Init(std::uint32_t dwBitRate) noexcept;
  [[nodiscard]] const S_Configuration& Configuration() const noexcept { return m_configuration; }

  // words: nWordsPerFrame words at least, of which so many are read.
  void Decode(std::span<const std::uint16_t> words,
              std::span<std::int16_t, kSamplesPerFrame> samples) noexcept;

 private:
  S_Configuration m_configuration = Configure(kDefaultBitRate);
  S_DecoderState m_state;
};

struct S_UnpackedFrame {
  S_Spectrum spectrum;
  bool bDamaged = false;
};

// Reads a frame out of all of words. The generator moves on in a damaged frame as in a good one.
S_UnpackedFrame UnpackFrame(std::span<const std::uint16_t> words, int nRegions,
                            S_NoiseGenerator& noise) noexcept;

// What is to be heard for the frame.
S_Spectrum Conceal(const S_UnpackedFrame& frame, S_Spectrum& lastGood) noexcept;

}  // namespace kestrel
