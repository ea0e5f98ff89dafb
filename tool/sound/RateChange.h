// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <soxr.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace tool {

// Changes the rate of a sound, piece by piece, by libsoxr. The memory that it takes depends on the
// rates, but not on the length.
class C_RateChange {
 public:
  // The greatest ratio of two rates, either way; the filters for greater ones would be absurdly
  // long.
  static constexpr std::uint32_t kGreatestRatio = 1000;
  [[nodiscard]] static bool CanChange(std::uint32_t dwFrom, std::uint32_t dwTo) noexcept;

  // Throws C_Failure for rates that are too far from each other, and std::bad_alloc.
  C_RateChange(std::uint32_t dwFrom, std::uint32_t dwTo, std::uint32_t dwChannels);

  struct S_Done {
    std::size_t nTaken = 0;  // frames
    std::size_t nMade = 0;
  };
  // Empty input means that the sound has ended: what is left comes out. There is room for at least
  // kGreatestRatio frames. Throws C_Failure.
  S_Done Convert(std::span<const float> in, std::span<float> out);
  // Forgets the sound so far.
  void Restart();

 private:
  struct S_Delete {
    void operator()(soxr* pConverter) const noexcept { soxr_delete(pConverter); }
  };

  std::unique_ptr<soxr, S_Delete> m_converter;
  std::uint32_t m_dwChannels;
};

}  // namespace tool
