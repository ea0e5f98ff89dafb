// SPDX-License-Identifier: Apache-2.0
#include "KestrelObjects.h"

#include <array>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "Samples.h"

namespace py = pybind11;

namespace python {
namespace {

constexpr std::size_t kFrame = voxplay::kestrel::kFrame;

std::uint32_t Checked(std::uint32_t dwBitRate) {
  if (voxplay_kestrel_words(dwBitRate) != 0) return dwBitRate;
  throw py::value_error("Kestrel's bit rates are the multiples of 800 from 4,800 to 32,000, not " +
                        std::to_string(dwBitRate));
}

// Whole frames of int16 samples.
C_Samples FramesOf(const py::buffer& buffer, bool bWritable) {
  C_Samples samples(buffer, 1, bWritable);
  if (samples.Type() != tagSampleType::kInt16) throw py::type_error("the samples are not int16");
  if (samples.Frames() % kFrame != 0) {
    throw py::value_error("the samples are not whole frames of " + std::to_string(kFrame));
  }
  return samples;
}

// Files have the low byte of each word first, whatever the machine does.
void StoreWords(std::span<const std::uint16_t> words, char* pBytes) {
  for (const std::uint16_t wWord : words) {
    *pBytes++ = static_cast<char>(wWord & 0xFF);
    *pBytes++ = static_cast<char>(wWord >> 8);
  }
}
void LoadWords(const unsigned char* pBytes, std::span<std::uint16_t> words) {
  for (std::uint16_t& wWord : words) {
    wWord = static_cast<std::uint16_t>(pBytes[0] | pBytes[1] << 8);
    pBytes += 2;
  }
}

std::span<std::int16_t, kFrame> FrameAt(const C_Samples& samples, std::size_t nFrame) {
  return std::span<std::int16_t, kFrame>(samples.Data<std::int16_t>() + nFrame * kFrame, kFrame);
}

}  // namespace

C_EncoderObject::C_EncoderObject(std::uint32_t dwBitRate) : m_encoder(Checked(dwBitRate)) {}

std::size_t C_EncoderObject::FrameBytes() const { return 2 * m_encoder.words(); }

py::bytes C_EncoderObject::Encode(const py::buffer& buffer) {
  const C_Samples samples = FramesOf(buffer, false);
  const std::size_t nFrames = samples.Frames() / kFrame;
  std::string bytes(nFrames * FrameBytes(), '\0');
  m_turn.Take([&] {
    std::array<std::uint16_t, VOXPLAY_KESTREL_MAX_WORDS> words{};
    const auto frame = std::span(words).first(m_encoder.words());
    for (std::size_t n = 0; n < nFrames; ++n) {
      m_encoder.encode(FrameAt(samples, n), frame);
      StoreWords(frame, bytes.data() + n * FrameBytes());
    }
  });
  return bytes;
}

void C_EncoderObject::Reset() {
  m_turn.Take([&] { m_encoder.reset(); });
}

C_DecoderObject::C_DecoderObject(std::uint32_t dwBitRate) : m_decoder(Checked(dwBitRate)) {}

std::size_t C_DecoderObject::FrameBytes() const { return 2 * m_decoder.words(); }

std::size_t C_DecoderObject::Decode(const py::buffer& bytes, const py::buffer& buffer) {
  const py::buffer_info coded = bytes.request();
  const C_Samples samples = FramesOf(buffer, true);
  const std::size_t nFrames = samples.Frames() / kFrame;
  if (!PyBuffer_IsContiguous(coded.view(), 'C')) {
    throw py::value_error("the bytes are not one after the other in memory");
  }
  if (static_cast<std::size_t>(coded.size * coded.itemsize) != nFrames * FrameBytes()) {
    throw py::value_error("the bytes are not whole frames of " + std::to_string(FrameBytes()));
  }
  return m_turn.Take([&] {
    std::array<std::uint16_t, VOXPLAY_KESTREL_MAX_WORDS> words{};
    const auto frame = std::span(words).first(m_decoder.words());
    std::size_t nDamaged = 0;
    for (std::size_t n = 0; n < nFrames; ++n) {
      LoadWords(static_cast<const unsigned char*>(coded.ptr) + n * FrameBytes(), frame);
      if (!m_decoder.decode(frame, FrameAt(samples, n))) ++nDamaged;
    }
    return nDamaged;
  });
}

void C_DecoderObject::DecodeLost(const py::buffer& buffer) {
  const C_Samples samples = FramesOf(buffer, true);
  m_turn.Take([&] {
    for (std::size_t n = 0; n < samples.Frames() / kFrame; ++n) {
      m_decoder.decode_lost(FrameAt(samples, n));
    }
  });
}

void C_DecoderObject::Reset() {
  m_turn.Take([&] { m_decoder.reset(); });
}

}  // namespace python
