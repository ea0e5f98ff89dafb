// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <span>

namespace api {

// Takes the frames of a sound piece by piece, interleaved. All functions throw C_Failure.
class I_FrameSink {
 public:
  virtual ~I_FrameSink() = default;

  virtual void Put(std::span<const std::int16_t> samples) = 0;
  virtual void Put(std::span<const std::int32_t> samples) = 0;
  virtual void Put(std::span<const float> samples) = 0;
};

}  // namespace api
