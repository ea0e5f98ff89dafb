// SPDX-License-Identifier: Apache-2.0
#include "heron/Decoder.h"

#include <algorithm>

#include "heron/CodedBytes.h"
#include "heron/Configuration.h"
#include "heron/SampleCount.h"

namespace heron {

std::optional<C_Decoder> C_Decoder::Open(std::span<const std::uint8_t> coded, int nSampleRate) {
  if (!IsSupportedSampleRate(nSampleRate)) return std::nullopt;
  const auto count = ReadCount(coded);
  if (!count || !IsPossible(*count)) return std::nullopt;
  const auto bytes = coded.subspan(count->nBytes);
  C_Decoder decoder(nSampleRate, static_cast<std::size_t>(count->qwCount), bytes);
  C_CodedMemory memory(bytes);
  decoder.m_index.Search(memory);
  if (decoder.BlockCount() == 0) return std::nullopt;
  return decoder;
}

C_Decoder::C_Decoder(int nSampleRate, std::size_t nSamples, std::span<const std::uint8_t> bytes)
    : m_nLength(BlockLength(nSampleRate)),
      m_bytes(bytes),
      m_index(nSamples, m_nLength),
      m_decoder(nSampleRate) {}

std::optional<std::span<const std::uint8_t>> C_Decoder::Run(std::size_t nBlock) const {
  const auto run = m_index.Run(nBlock);
  if (!run) return std::nullopt;
  return m_bytes.subspan(static_cast<std::size_t>(run->qwAt),
                         static_cast<std::size_t>(run->qwBytes));
}

bool C_Decoder::DecodeBlock(std::size_t nBlock, std::span<std::int16_t> samples) {
  const auto run = Run(nBlock);
  if (run && m_decoder.Decode(*run, samples)) return true;
  std::ranges::fill(samples, std::int16_t{0});
  return false;
}

bool C_Decoder::DecodeAll(std::span<std::int16_t> samples) {
  bool bAny = false;
  for (std::size_t n = 0; n < BlockCount(); ++n) {
    bAny |= DecodeBlock(n, samples.subspan(n * m_nLength, m_index.SamplesOf(n)));
  }
  return bAny;
}

}  // namespace heron
