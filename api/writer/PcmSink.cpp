// SPDX-License-Identifier: Apache-2.0
#include "writer/PcmSink.h"

#include <algorithm>
#include <bit>
#include <cstddef>

namespace api {
namespace {

constexpr std::size_t kPieceSamples = 4096;

}  // namespace

void C_PcmSink::Put(std::span<const std::int16_t> samples) {
  if constexpr (std::endian::native == std::endian::little) {
    if (m_eForm == E_StoredForm::Int16) {
      // They lie in memory as they do in files.
      const auto bytes = std::as_bytes(samples);
      m_target.Write({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
      return;
    }
  }
  PutConverted(samples);
}

void C_PcmSink::Put(std::span<const std::int32_t> samples) { PutConverted(samples); }
void C_PcmSink::Put(std::span<const float> samples) { PutConverted(samples); }

template <typename Sample>
void C_PcmSink::PutConverted(std::span<const Sample> samples) {
  m_bytes.resize(kPieceSamples * BytesOf(m_eForm));
  while (!samples.empty()) {
    const auto piece = samples.first(std::min(samples.size(), kPieceSamples));
    Store(piece, m_eForm, m_bytes.data());
    m_target.Write(std::span(m_bytes).first(piece.size() * BytesOf(m_eForm)));
    samples = samples.subspan(piece.size());
  }
}

}  // namespace api
