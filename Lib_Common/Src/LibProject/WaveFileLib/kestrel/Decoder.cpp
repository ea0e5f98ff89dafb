// SPDX-License-Identifier: Apache-2.0
#include "kestrel/Decoder.h"

#include <cstddef>
#include <utility>

#include "kestrel/BitStream.h"
#include "kestrel/Categories.h"
#include "kestrel/Envelope.h"
#include "kestrel/Routines.h"
#include "kestrel/TablesQuantiser.h"
#include "kestrel/VectorCoder.h"

namespace kestrel {
namespace {

// False when the bits run out. The whole region in which they run out becomes noise, and so does
// every region after it.
bool ReadRegions(C_BitReader& reader, const S_Categories& categories, const S_Scale& scale,
                 int nRegions, S_NoiseGenerator& noise, S_Frame& coefficients) {
  bool bEnough = true;
  for (std::size_t r = 0; r < Index(nRegions); ++r) {
    const S_Region region = RegionOf(coefficients, r);
    int nCategory = bEnough ? RealCategory(categories[r]) : kNoiseCategory;
    if (nCategory < kNoiseCategory && !ReadRegion(reader, nCategory, scale.deviation[r], region)) {
      bEnough = false;
      nCategory = kNoiseCategory;
    }
    FillWithNoise(noise, nCategory, scale.deviation[r], region);
  }
  return bEnough;
}

// A valid frame ends in ones.
//
// Kept: when the bits have run out, the check skips the last of the remaining bits. These bits are
// the first signs of a vector and not padding, so a frame that the encoder had to cut may count as
// damaged although it is not. Every decoder of these streams conceals such frames. Pinned by
// SignsThatDoNotFit_AreTakenForPaddingButForTheLast.
bool IsValidEnd(C_BitReader& reader, bool bEnough, int nControl) {
  const int nLeft = reader.BitsLeft() - (bEnough ? 0 : 1);
  if (nLeft < 0) return nControl == kControlValues - 1;
  for (int n = 0; n < nLeft; ++n) {
    if (reader.Bit() == 0) return false;
  }
  return true;
}

S_UnpackedFrame UnpackNext(S_DecoderState& state, const S_Configuration& configuration,
                           std::span<const std::uint16_t> words) {
  return UnpackFrame(words.first(Index(configuration.nWordsPerFrame)), configuration.nRegions,
                     state.noise);
}

}  // namespace

const S_Configuration& C_Decoder::Init(std::uint32_t dwBitRate) noexcept {
  m_configuration = Configure(dwBitRate);
  m_state = {};
  return m_configuration;
}

bool C_Decoder::Decode(std::span<const std::uint16_t> words,
                       std::span<std::int16_t, kSamplesPerFrame> samples) noexcept {
  return FastestRoutines().pfnDecode(m_state, m_configuration, words, samples);
}

void C_Decoder::DecodeLost(std::span<std::int16_t, kSamplesPerFrame> samples) noexcept {
  const S_Spectrum spectrum = std::exchange(m_state.lastGood, S_Spectrum{});
  FastestRoutines().pfnInverse(m_state.overlap, spectrum.coefficients, spectrum.nShift, samples);
}

bool C_Decoder::Skip(std::span<const std::uint16_t> words) noexcept {
  return FastestRoutines().pfnSkip(m_state, m_configuration, words);
}

bool DecodeFrame(S_DecoderState& state, const S_Configuration& configuration,
                 std::span<const std::uint16_t> words,
                 std::span<std::int16_t, kSamplesPerFrame> samples) noexcept {
  const S_UnpackedFrame frame = UnpackNext(state, configuration, words);
  const S_Spectrum spectrum = Conceal(frame, state.lastGood);
  InverseTransform(state.overlap, spectrum.coefficients, spectrum.nShift, samples);
  return !frame.bDamaged;
}

bool SkipFrame(S_DecoderState& state, const S_Configuration& configuration,
               std::span<const std::uint16_t> words) noexcept {
  const S_UnpackedFrame frame = UnpackNext(state, configuration, words);
  Conceal(frame, state.lastGood);
  return !frame.bDamaged;
}

S_UnpackedFrame UnpackFrame(std::span<const std::uint16_t> words, int nRegions,
                            S_NoiseGenerator& noise) noexcept {
  C_BitReader reader(words);
  const S_Envelope envelope = ReadEnvelope(reader, nRegions);
  const S_Scale scale = ScaleOf(envelope, nRegions);

  const int nControl = reader.Bits(kControlBits);
  S_Categorisation categorisation = Categorise(reader.BitsLeft(), envelope, nRegions);
  ApplyBalances(categorisation, nControl);

  S_UnpackedFrame frame;
  frame.spectrum.nShift = scale.nShift;
  const bool bEnough = ReadRegions(reader, categorisation.categories, scale, nRegions, noise,
                                   frame.spectrum.coefficients);
  frame.bDamaged = !IsValidEnd(reader, bEnough, nControl) || !IsValidEnvelope(envelope, nRegions);
  return frame;
}

S_Spectrum Conceal(const S_UnpackedFrame& frame, S_Spectrum& lastGood) noexcept {
  if (frame.bDamaged) return std::exchange(lastGood, S_Spectrum{});
  lastGood = frame.spectrum;
  return frame.spectrum;
}

}  // namespace kestrel
