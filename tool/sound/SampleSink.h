// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <span>

namespace tool {

// Takes the samples of a sound, piece by piece: whole interleaved frames, all of one type.
class I_SampleSink {
 public:
  virtual ~I_SampleSink() = default;

  virtual void Take(std::span<const std::int16_t> samples) = 0;  // 1
  virtual void Take(std::span<const std::int32_t> samples) = 0;  // 2
  virtual void Take(std::span<const float> samples) = 0;         // 3
};

}  // namespace tool
