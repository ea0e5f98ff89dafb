// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <vector>

#include "writer/FrameSink.h"
#include "writer/StreamCoder.h"

namespace api {

// Turns frames into 16-bit mono samples for a coder. Samples become 16 bits first and are mixed
// then.
class C_CodedSink final : public I_FrameSink {
 public:
  // coder must outlive the object.
  C_CodedSink(I_StreamCoder& coder, std::size_t nChannels)
      : m_coder(coder), m_nChannels(nChannels) {}

  void Put(std::span<const std::int16_t> samples) override;
  void Put(std::span<const std::int32_t> samples) override;
  void Put(std::span<const float> samples) override;

 private:
  template <typename Sample>
  void PutConverted(std::span<const Sample> samples);

  I_StreamCoder& m_coder;
  std::size_t m_nChannels;
  std::vector<std::int16_t> m_converted;
  std::vector<std::int16_t> m_mono;
};

}  // namespace api
