// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "base/Failure.h"
#include "sound/SoundInput.h"

// A sound whose samples tell where they are: each channel of a frame is its number, divided by
// 2^20.
class C_MadeSound final : public tool::I_SoundInput {
 public:
  C_MadeSound(std::uint32_t dwRate, std::uint32_t dwChannels, std::uint64_t qwFrames) {
    m_info.dwRate = dwRate;
    m_info.dwChannels = dwChannels;
    m_info.qwFrames = qwFrames;
  }
  static constexpr float kUnit = 1.0F / 1048576.0F;

  // Reading fails from this frame on.
  void FailAt(std::uint64_t qwFrame) { m_qwFailure = qwFrame; }

  [[nodiscard]] const tool::S_SoundInfo& Info() const noexcept override { return m_info; }
  [[nodiscard]] voxplay::NotesView Notes() const noexcept override { return {}; }
  [[nodiscard]] std::uint64_t DamagedFrames() const noexcept override { return 0; }
  std::size_t Read(std::span<std::int16_t> /*samples*/) override { return 0; }
  std::size_t Read(std::span<std::int32_t> /*samples*/) override { return 0; }
  std::size_t Read(std::span<double> /*samples*/) override { return 0; }
  [[nodiscard]] bool IsCut() const noexcept override { return false; }
  std::size_t Read(std::span<float> samples) override {
    if (m_qwFrame >= m_qwFailure) throw tool::C_Failure("made.wav", "cannot be read", "a test");
    const std::uint64_t qwLeft = m_info.qwFrames - m_qwFrame;
    const auto nFrames = static_cast<std::size_t>(
        std::min<std::uint64_t>(samples.size() / m_info.dwChannels, qwLeft));
    for (std::size_t n = 0; n < nFrames * m_info.dwChannels; ++n) {
      samples[n] = static_cast<float>(m_qwFrame + n / m_info.dwChannels) * kUnit;
    }
    m_qwFrame += nFrames;
    return nFrames;
  }
  void Seek(std::uint64_t qwFrame) override { m_qwFrame = qwFrame; }

 private:
  tool::S_SoundInfo m_info;
  std::uint64_t m_qwFrame = 0;
  std::uint64_t m_qwFailure = UINT64_MAX;
};
