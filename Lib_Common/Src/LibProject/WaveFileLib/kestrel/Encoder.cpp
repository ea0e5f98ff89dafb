// SPDX-License-Identifier: Apache-2.0
#include "kestrel/Encoder.h"

#include <cstddef>

#include "kestrel/BitStream.h"
#include "kestrel/Categories.h"
#include "kestrel/Envelope.h"
#include "kestrel/RateControl.h"
#include "kestrel/Routines.h"
#include "kestrel/Transform.h"

namespace kestrel {

const S_Configuration& C_Encoder::Init(std::uint32_t dwBitRate) noexcept {
  m_configuration = Configure(dwBitRate);
  m_state = {};
  return m_configuration;
}

void C_Encoder::Encode(std::span<const std::int16_t, kSamplesPerFrame> samples,
                       std::span<std::uint16_t> words) noexcept {
  FastestRoutines().pfnEncode(m_state, m_configuration, samples, words);
}

void EncodeFrame(S_EncoderState& state, const S_Configuration& configuration,
                 std::span<const std::int16_t, kSamplesPerFrame> samples,
                 std::span<std::uint16_t> words) noexcept {
  S_Frame coefficients;
  const int nShift = ForwardTransform(state.history, samples, coefficients);
  EncodeCoefficients(coefficients, nShift, configuration.nRegions,
                     words.first(Index(configuration.nWordsPerFrame)));
}

void EncodeCoefficients(S_Frame coefficients, int nShift, int nRegions,
                        std::span<std::uint16_t> words) noexcept {
  const int nBitsPerFrame = static_cast<int>(words.size()) * kBitsPerWord;
  C_BitWriter writer(words);

  S_Envelope envelope = MeasureEnvelope(coefficients, nShift, nRegions);
  ShapeEnvelope(envelope, nRegions);
  WriteEnvelope(writer, envelope, nRegions);

  const int nAvailable = nBitsPerFrame - writer.BitsPut() - kControlBits;
  const S_Categorisation categorisation = Categorise(nAvailable, envelope, nRegions);
  const S_PowerEntries entries = RescaleRegions(coefficients, envelope, nShift, nRegions);
  const S_CodedFrame coded =
      CodeRegions(coefficients, entries, categorisation, nAvailable, nRegions);

  writer.Put(static_cast<std::uint32_t>(coded.nControl), kControlBits);
  for (const S_CodedRegion& region : coded.regions) WriteRegion(writer, region);
  writer.PadWithOnes();
}

}  // namespace kestrel
