// SPDX-License-Identifier: Apache-2.0
#include "sound/HeldSound.h"

#include <algorithm>
#include <utility>

#include "sound/DataChunk.h"
#include "sound/WrappedSound.h"

namespace tool {
namespace {

class C_HeldSound final : public C_WrappedSound<C_HeldSound> {
 public:
  C_HeldSound(C_SoundInputPtr sound, S_SoundInfo info, bool bCut)
      : C_WrappedSound(std::move(sound)), m_info(std::move(info)), m_bCut(bCut) {}

  [[nodiscard]] const S_SoundInfo& Info() const noexcept override { return m_info; }
  void Seek(std::uint64_t qwFrame) override {
    m_qwPosition = std::min(qwFrame, m_info.qwFrames);
    Wrapped().Seek(m_qwPosition);
  }
  [[nodiscard]] bool IsCut() const noexcept override { return m_bCut || Wrapped().IsCut(); }

  template <typename Sample>
  std::size_t ReadAny(std::span<Sample> samples) {
    const std::uint64_t qwLeft = m_info.qwFrames - m_qwPosition;
    const std::size_t nChannels = m_info.dwChannels;
    if (samples.size() / nChannels > qwLeft) {
      samples = samples.first(static_cast<std::size_t>(qwLeft) * nChannels);
    }
    const std::size_t nFrames = samples.empty() ? 0 : Wrapped().Read(samples);
    m_qwPosition += nFrames;
    return nFrames;
  }

 private:
  S_SoundInfo m_info;
  bool m_bCut;
  std::uint64_t m_qwPosition = 0;
};

bool HasPlainSamples(const S_SoundInfo& info) {
  return info.ours &&
         (info.ours->codec == VOXPLAY_CODEC_PCM || info.ours->codec == VOXPLAY_CODEC_FLOAT);
}

// Of plain samples.
std::uint64_t HeldFrames(const S_SoundInfo& info) {
  const voxplay::ChunkPlace* const pData = DataChunkOf(info);
  const std::uint64_t qwFrameBytes =
      std::uint64_t{info.ours->stored_bits} / 8 * info.ours->channels;
  if (pData == nullptr || qwFrameBytes == 0) return info.qwFrames;
  return std::min(pData->held / qwFrameBytes, info.qwFrames);
}

}  // namespace

C_SoundInputPtr WithoutMissingFrames(C_SoundInputPtr sound) {
  if (!HasPlainSamples(sound->Info())) return sound;
  const std::uint64_t qwHeld = HeldFrames(sound->Info());
  if (qwHeld == sound->Info().qwFrames) return sound;
  S_SoundInfo info = sound->Info();
  info.ours->claimed_frames = info.qwFrames;
  info.ours->frames = qwHeld;
  info.qwFrames = qwHeld;
  return std::make_unique<C_HeldSound>(std::move(sound), std::move(info), true);
}

C_SoundInputPtr FirstFrames(C_SoundInputPtr sound, std::uint64_t qwFrames) {
  S_SoundInfo info = sound->Info();
  info.qwFrames = std::min(info.qwFrames, qwFrames);
  return std::make_unique<C_HeldSound>(std::move(sound), std::move(info), false);
}

}  // namespace tool
