// SPDX-License-Identifier: Apache-2.0
#include "stream/G711Stream.h"

#include <algorithm>
#include <array>
#include <utility>

#include "compressed/SampleBytes.h"

namespace api {

namespace {

constexpr std::size_t kBlockBytes = 32768;  // that are decoded together

}  // namespace

C_G711Stream::C_G711Stream(I_ByteSource& source, S_EncodedWav wav)
    : m_wav(std::move(wav)),
      m_nChannels(m_wav.codecInfo.GetPCMWAVEFORMAT().wChannels),
      m_bytes(source, {m_wav.qwAt, m_wav.qwSize, m_wav.qwSize.value_or(0), false}, m_nChannels) {}

std::size_t C_G711Stream::Read(std::span<std::int16_t> samples) {
  std::array<std::uint8_t, kBlockBytes> block;
  const auto wanted = samples.first(m_bytes.Begin(samples.size() / m_nChannels) * m_nChannels);
  std::size_t nDone = 0;
  while (nDone < wanted.size()) {
    const auto part = wanted.subspan(nDone, std::min(block.size(), wanted.size() - nDone));
    const auto bytes = m_bytes.Bytes(nDone, std::span(block).first(part.size()));
    m_wav.decoder->Decode(m_wav.codecInfo, bytes.data(), static_cast<unsigned int>(bytes.size()),
                          part.data(), static_cast<unsigned int>(part.size_bytes()));
    nDone += bytes.size();
    if (bytes.size() < part.size()) break;
  }
  for (std::int16_t& nSample : wanted.first(nDone)) nSample = samplebytes::LittleEndian(nSample);
  return m_bytes.End(nDone / m_nChannels);
}

}  // namespace api
