// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <soxr.h>

#include <cstddef>
#include <vector>

// The whole sound converted at once with the filter of the toolbox: what must be heard.
inline std::vector<float> Converted(const std::vector<float>& input, double dFrom, double dTo) {
  const soxr_io_spec_t io = soxr_io_spec(SOXR_FLOAT32_I, SOXR_FLOAT32_I);
  const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
  std::vector<float> output(
      static_cast<std::size_t>(static_cast<double>(input.size()) * dTo / dFrom) + 16);
  std::size_t nDone = 0;
  EXPECT_EQ(soxr_oneshot(dFrom, dTo, 1, input.data(), input.size(), nullptr, output.data(),
                         output.size(), &nDone, &io, &quality, nullptr),
            nullptr);
  output.resize(nDone);
  return output;
}
