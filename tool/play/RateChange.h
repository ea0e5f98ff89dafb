// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <soxr.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace tool {

// Changes the rate of a sound piece by piece, for rates that no device plays. Throws
// std::bad_alloc.
class C_RateChange {
 public:
  C_RateChange(std::uint32_t dwFrom, std::uint32_t dwTo, std::uint32_t dwChannels);

  struct S_Done {
    std::size_t nTaken = 0;  // frames
    std::size_t nMade = 0;
  };
  // Empty input means that the sound has ended: what is left comes out.
  S_Done Convert(std::span<const float> in, std::span<float> out);
  // Forgets the sound so far.
  void Restart();

 private:
  std::unique_ptr<soxr, decltype(&soxr_delete)> m_pConverter;
  std::uint32_t m_dwChannels;
};

}  // namespace tool
