// SPDX-License-Identifier: Apache-2.0
#include "writer/CodedSink.h"

#include <algorithm>

#include "writer/SampleForms.h"

namespace api {
namespace {

constexpr std::size_t kPieceFrames = 1024;

}  // namespace

void C_CodedSink::Put(std::span<const std::int16_t> samples) {
  if (m_nChannels == 1) return m_coder.Put(samples);
  while (!samples.empty()) {
    const auto piece = samples.first(std::min(samples.size(), kPieceFrames * m_nChannels));
    m_mono.resize(piece.size() / m_nChannels);
    MixToMono(piece, m_nChannels, m_mono);
    m_coder.Put(m_mono);
    samples = samples.subspan(piece.size());
  }
}

void C_CodedSink::Put(std::span<const std::int32_t> samples) { PutConverted(samples); }
void C_CodedSink::Put(std::span<const float> samples) { PutConverted(samples); }

template <typename Sample>
void C_CodedSink::PutConverted(std::span<const Sample> samples) {
  while (!samples.empty()) {
    const auto piece = samples.first(std::min(samples.size(), kPieceFrames * m_nChannels));
    m_converted.resize(piece.size());
    To16(piece, m_converted);
    Put(std::span<const std::int16_t>(m_converted));
    samples = samples.subspan(piece.size());
  }
}

}  // namespace api
