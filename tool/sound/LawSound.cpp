// SPDX-License-Identifier: Apache-2.0
#include "sound/LawSound.h"

#include <algorithm>
#include <utility>

#include "sound/DataChunk.h"
#include "sound/ForeignSound.h"
#include "sound/WrappedSound.h"

namespace tool {
namespace {

class C_LawSound final : public C_WrappedSound<C_LawSound> {
 public:
  C_LawSound(C_SoundInputPtr sound, C_SoundInputPtr samples)
      : C_WrappedSound(std::move(sound)), m_samples(std::move(samples)) {}

  // Where the end of the file is missing, there are fewer frames than it says.
  void Seek(std::uint64_t qwFrame) override {
    m_samples->Seek(std::min(qwFrame, m_samples->Info().qwFrames));
  }
  template <typename Sample>
  std::size_t ReadAny(std::span<Sample> samples) {
    return m_samples->Read(samples);
  }

 private:
  C_SoundInputPtr m_samples;
};

bool IsLaw(const S_SoundInfo& info) {
  return info.ours && info.ours->container == VOXPLAY_CONTAINER_WAV &&
         (info.ours->codec == VOXPLAY_CODEC_ALAW || info.ours->codec == VOXPLAY_CODEC_MULAW);
}

}  // namespace

C_SoundInputPtr WithStandardLaws(C_SoundInputPtr sound, const std::string& strName,
                                 const PFN_OpenBytes& fnOpen) {
  if (!IsLaw(sound->Info())) return sound;
  const S_SoundInfo& info = sound->Info();
  const voxplay::ChunkPlace* const pData = DataChunkOf(info);
  if (pData == nullptr || info.qwFrames == 0) return sound;
  C_FileBytes codes = fnOpen();
  codes.Confine(pData->offset, std::min(pData->held, info.qwFrames * info.dwChannels));
  const bool bALaw = info.ours->codec == VOXPLAY_CODEC_ALAW;
  auto samples = OpenLawCodes(std::move(codes), strName, bALaw, info.dwChannels);
  return std::make_unique<C_LawSound>(std::move(sound), std::move(samples));
}

}  // namespace tool
