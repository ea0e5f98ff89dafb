// SPDX-License-Identifier: Apache-2.0
//
// Decodes frame words to samples. A decoder is a plain object without shared state: any number of
// them may work side by side.
//
// Any words can be decoded. A frame that contradicts itself counts as damaged: the last good frame
// is repeated once in its place, and after that there is silence until the next good frame. The
// same happens in the place of a frame that was lost on its way.
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
  // Configures for the bit rate and forgets all earlier frames. See Configure for the result.
  const S_Configuration& Init(std::uint32_t dwBitRate) noexcept;
  [[nodiscard]] const S_Configuration& Configuration() const noexcept { return m_configuration; }

  // words holds at least nWordsPerFrame words; only that many are read. False for a damaged frame.
  bool Decode(std::span<const std::uint16_t> words,
              std::span<std::int16_t, kSamplesPerFrame> samples) noexcept;
  // In the place of a frame whose words are not there. The generator of noise stays as it is.
  void DecodeLost(std::span<std::int16_t, kSamplesPerFrame> samples) noexcept;
  // Moves on as Decode does, but gives no samples and takes less time. Only what the samples of the
  // next frame overlap with stays behind: decode one more frame and throw its samples away, and
  // those after it are as if all frames had been decoded. False for a damaged frame.
  bool Skip(std::span<const std::uint16_t> words) noexcept;

 private:
  S_Configuration m_configuration = Configure(kDefaultBitRate);
  S_DecoderState m_state;
};

// What C_Decoder::Decode and Skip do, in plain code; see Routines.h for the code that they use.
bool DecodeFrame(S_DecoderState& state, const S_Configuration& configuration,
                 std::span<const std::uint16_t> words,
                 std::span<std::int16_t, kSamplesPerFrame> samples) noexcept;
bool SkipFrame(S_DecoderState& state, const S_Configuration& configuration,
               std::span<const std::uint16_t> words) noexcept;

struct S_UnpackedFrame {
  S_Spectrum spectrum;
  bool bDamaged = false;
};

// Reads a frame from all of words. The generator moves on in a damaged frame just as in a good one.
S_UnpackedFrame UnpackFrame(std::span<const std::uint16_t> words, int nRegions,
                            S_NoiseGenerator& noise) noexcept;

// Returns the spectrum to play for the frame. For a damaged frame this is lastGood, which then
// becomes silence.
S_Spectrum Conceal(const S_UnpackedFrame& frame, S_Spectrum& lastGood) noexcept;

}  // namespace kestrel
