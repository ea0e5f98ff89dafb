// SPDX-License-Identifier: Apache-2.0
#include "heron/BlockDecoder.h"

#include <algorithm>

#include "heron/EntropyCoder.h"

namespace heron {

C_BlockDecoder::C_BlockDecoder(int nSampleRate)
    : m_nUnitLength(UnitLength(nSampleRate)), m_transforms(m_nUnitLength) {}

bool C_BlockDecoder::Decode(std::span<const std::uint8_t> run, std::span<std::int16_t> samples) {
  m_parts.clear();
  if (!ReadSections(run, samples.size())) return false;
  Unlap();
  ToSamples(m_values, samples);
  return true;
}

bool C_BlockDecoder::ReadSections(std::span<const std::uint8_t> run, std::size_t nSamples) {
  const std::size_t nLength = m_nUnitLength * kSectionUnits;
  C_EntropyDecoder decoder(run);
  C_PartReader reader(decoder, m_nUnitLength);
  m_values.resize((nSamples + nLength - 1) / nLength * nLength);
  for (std::size_t nAt = 0; nAt < nSamples; nAt += nLength) {
    const std::span section(m_values.data() + nAt, nLength);
    if (!reader.ReadSection(section, nSamples - nAt, nAt / m_nUnitLength, m_parts)) return false;
    if (decoder.Unread() < 0) return false;
  }
  return decoder.Unread() <= static_cast<std::ptrdiff_t>(C_EntropyDecoder::kAhead);
}

void C_BlockDecoder::Unlap() {
  const S_Part* pBefore = nullptr;
  for (const S_Part& part : m_parts) {
    const std::size_t nAt = part.nUnit * m_nUnitLength;
    const std::span values(m_values.data() + nAt, part.Units() * m_nUnitLength);
    if (part.kind != E_PartKind::kPlain && part.kind != E_PartKind::kSilent) {
      m_transforms.Dct(part.nSize).Transform(values);
    }
    if (pBefore != nullptr) Unfold(m_values, nAt, m_transforms.Between(*pBefore, part));
    pBefore = &part;
  }
}

}  // namespace heron
