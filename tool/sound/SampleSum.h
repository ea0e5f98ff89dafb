// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "sound/SoundInput.h"

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
class C_SummedSound final : public I_SoundInput {
 public:
  explicit C_SummedSound(C_SoundInputPtr sound);

  [[nodiscard]] std::uint64_t Sum() const noexcept { return m_sum.Value(); }

  [[nodiscard]] const S_SoundInfo& Info() const noexcept override { return m_sound->Info(); }
  [[nodiscard]] voxplay::NotesView Notes() const noexcept override { return m_sound->Notes(); }
  [[nodiscard]] std::uint64_t DamagedFrames() const noexcept override {
    return m_sound->DamagedFrames();
  }
  std::size_t Read(std::span<std::int16_t> samples) override { return ReadAny(samples); }
  std::size_t Read(std::span<std::int32_t> samples) override { return ReadAny(samples); }
  std::size_t Read(std::span<float> samples) override { return ReadAny(samples); }
  std::size_t Read(std::span<double> samples) override { return ReadAny(samples); }
  void Seek(std::uint64_t qwFrame) override;
  [[nodiscard]] bool IsCut() const noexcept override { return m_sound->IsCut(); }

 private:
  template <typename Sample>
  std::size_t ReadAny(std::span<Sample> samples);

  C_SoundInputPtr m_sound;
  C_SampleSum m_sum;
};

}  // namespace tool
