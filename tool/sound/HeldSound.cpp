// SPDX-License-Identifier: Apache-2.0
#include "sound/HeldSound.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace tool {
namespace {

class C_HeldSound final : public I_SoundInput {
 public:
  C_HeldSound(C_SoundInputPtr sound, std::uint64_t qwHeld)
      : m_sound(std::move(sound)), m_info(m_sound->Info()) {
    m_info.ours->claimed_frames = m_info.qwFrames;
    m_info.ours->frames = qwHeld;
    m_info.qwFrames = qwHeld;
  }

  [[nodiscard]] const S_SoundInfo& Info() const noexcept override { return m_info; }
  [[nodiscard]] voxplay::NotesView Notes() const noexcept override { return m_sound->Notes(); }
  [[nodiscard]] std::uint64_t DamagedFrames() const noexcept override {
    return m_sound->DamagedFrames();
  }
  std::size_t Read(std::span<std::int16_t> samples) override { return ReadAny(samples); }
  std::size_t Read(std::span<std::int32_t> samples) override { return ReadAny(samples); }
  std::size_t Read(std::span<float> samples) override { return ReadAny(samples); }
  std::size_t Read(std::span<double> samples) override { return ReadAny(samples); }
  void Seek(std::uint64_t qwFrame) override {
    m_qwPosition = std::min(qwFrame, m_info.qwFrames);
    m_sound->Seek(m_qwPosition);
  }
  [[nodiscard]] bool IsCut() const noexcept override { return true; }

 private:
  template <typename Sample>
  std::size_t ReadAny(std::span<Sample> samples) {
    const std::uint64_t qwLeft = m_info.qwFrames - m_qwPosition;
    const std::size_t nChannels = m_info.dwChannels;
    if (samples.size() / nChannels > qwLeft) {
      samples = samples.first(static_cast<std::size_t>(qwLeft) * nChannels);
    }
    const std::size_t nFrames = samples.empty() ? 0 : m_sound->Read(samples);
    m_qwPosition += nFrames;
    return nFrames;
  }

  C_SoundInputPtr m_sound;
  S_SoundInfo m_info;
  std::uint64_t m_qwPosition = 0;
};

bool HasPlainSamples(const S_SoundInfo& info) {
  return info.ours &&
         (info.ours->codec == VOXPLAY_CODEC_PCM || info.ours->codec == VOXPLAY_CODEC_FLOAT);
}

bool HoldsSamples(const voxplay::ChunkPlace& chunk) {
  return std::ranges::equal(chunk.id, std::string_view("data"));
}

// Of plain samples. The last chunk of them is the one that counts.
std::uint64_t HeldFrames(const S_SoundInfo& info) {
  const auto data = std::find_if(info.chunks.rbegin(), info.chunks.rend(), HoldsSamples);
  const std::uint64_t qwFrameBytes =
      std::uint64_t{info.ours->stored_bits} / 8 * info.ours->channels;
  if (data == info.chunks.rend() || qwFrameBytes == 0) return info.qwFrames;
  return std::min(data->held / qwFrameBytes, info.qwFrames);
}

}  // namespace

C_SoundInputPtr WithoutMissingFrames(C_SoundInputPtr sound) {
  if (!HasPlainSamples(sound->Info())) return sound;
  const std::uint64_t qwHeld = HeldFrames(sound->Info());
  if (qwHeld == sound->Info().qwFrames) return sound;
  return std::make_unique<C_HeldSound>(std::move(sound), qwHeld);
}

}  // namespace tool
