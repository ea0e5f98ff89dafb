// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "sound/WrappedSound.h"

namespace tool {

// A sum over the samples of a sound, for telling whether two sounds are the same: FNV-1a of 64
// bits, which takes a sample, as the 32 bits of its floating point, in place of a byte. It does not
// depend on the type that the samples were read as.
class C_SampleSum {
 public:
  template <typename Sample>
  void Add(std::span<const Sample> samples) noexcept;
  void Reset() noexcept { m_qwSum = kStart; }
  [[nodiscard]] std::uint64_t Value() const noexcept { return m_qwSum; }

 private:
  static constexpr std::uint64_t kStart = 0xCBF29CE484222325U;

  std::uint64_t m_qwSum = kStart;
};

// Another sound, whose samples are summed up as they are read. Only what was read since the last
// seek to the beginning counts.
class C_SummedSound final : public C_WrappedSound<C_SummedSound> {
 public:
  explicit C_SummedSound(C_SoundInputPtr sound);

  [[nodiscard]] std::uint64_t Sum() const noexcept { return m_sum.Value(); }
  void Seek(std::uint64_t qwFrame) override;

  template <typename Sample>
  std::size_t ReadAny(std::span<Sample> samples) {
    const std::size_t nFrames = Wrapped().Read(samples);
    m_sum.Add(std::span<const Sample>(samples).first(nFrames * Info().dwChannels));
    return nFrames;
  }

 private:
  C_SampleSum m_sum;
};

}  // namespace tool
