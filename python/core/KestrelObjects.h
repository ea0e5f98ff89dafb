// SPDX-License-Identifier: Apache-2.0
//
// Coders of Kestrel frames for voxplay/kestrel.py. Each counts on the frames that it got before, so
// it serves one stream.
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <voxplay.hpp>

#include "Turn.h"

namespace python {

class C_EncoderObject {
 public:
  explicit C_EncoderObject(std::uint32_t dwBitRate);

  [[nodiscard]] std::size_t FrameBytes() const;
  // Whole frames of int16 samples; their bytes, as files have them.
  pybind11::bytes Encode(const pybind11::buffer& samples);
  void Reset();

 private:
  voxplay::kestrel::Encoder m_encoder;
  C_Turn m_turn;
};

class C_DecoderObject {
 public:
  explicit C_DecoderObject(std::uint32_t dwBitRate);

  [[nodiscard]] std::size_t FrameBytes() const;
  // Decodes whole frames into samples, which has room for exactly those. Returns how many of them
  // are damaged.
  std::size_t Decode(const pybind11::buffer& bytes, const pybind11::buffer& samples);
  // What to play for frames that were lost: as many as samples has room for.
  void DecodeLost(const pybind11::buffer& samples);
  void Reset();

 private:
  voxplay::kestrel::Decoder m_decoder;
  C_Turn m_turn;
};

}  // namespace python
