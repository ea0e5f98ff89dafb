// SPDX-License-Identifier: Apache-2.0
//
// Loads any bytes as a file and converts the sound to a file of any kind, which is read again: the
// sound must still be there, as far as its new kind can hold it.
//
//   scripts/fuzz.sh 60 conversion
//
// Input: one byte that chooses the kind, one with the options, then a whole file.
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "ByteReader.h"
#include "FuzzFile.h"
#include "LabelsArePlaced.h"
#include "Require.h"
#include "SoundsAreEqual.h"
#include "WavFileFormat.h"
#include "codec/HeronCodec.h"
#include "file/HeronFile.h"
#include "file/KestrelFile.h"
#include "file/VefFile.h"
#include "file/WavFile.h"
#include "sound/WavData.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

// The quick ones more often.
constexpr std::array<tagAudioFileType, 12> kKinds = {
    AUDIO_FILE_WAVE,       AUDIO_FILE_VEMD,       AUDIO_FILE_KESTREL,    AUDIO_FILE_HERON_4BIT,
    AUDIO_FILE_HERON_5BIT, AUDIO_FILE_HERON_6BIT, AUDIO_FILE_HERON_2BIT, AUDIO_FILE_HERON_3BIT,
    AUDIO_FILE_WAVE,       AUDIO_FILE_VEMD,       AUDIO_FILE_WAVE,       AUDIO_FILE_KESTREL};
// Longer sounds take more time and show nothing new.
constexpr unsigned int kMostPcm = 1000;
constexpr unsigned int kMostPcmForHeron = 250;
constexpr std::size_t kCodecHead = 6;

struct S_Options {
  tagAudioFileType eKind;
  bool bEncode;
  bool bHead;
  bool bForce;
};

unsigned int g_dwGroups = 0;
void CheckProgress(const S_CodecProgress* pProgress) {
  if (pProgress->dwKind != S_CodecProgress::kProgress) return;
  Require(pProgress->dwValue >= g_dwGroups);
  g_dwGroups = pProgress->dwValue;
}

bool IsHeron(tagAudioFileType eKind) {
  return eKind >= AUDIO_FILE_HERON_4BIT && eKind <= AUDIO_FILE_HERON_3BIT;
}

bool CanBeConverted(I_WavInfo& info) {
  const unsigned short wStored = info.GetStoreBitsPerSample();
  const bool bWhole = wStored == 8 || wStored == 16 || wStored == 32;
  return bWhole && info.GetBitsPerSample() <= wStored;
}

Bytes WithSpHeader(std::span<const std::uint8_t> stream, tagAudioFileType eKind,
                   unsigned int dwRate) {
  vcm::C_ByteWriter writer;
  writer.U32(0xFF00FF00);
  writer.Text("VOXELTRONIC SP", 16);
  writer.U8(254);
  writer.U8(2);
  writer.U16(static_cast<std::uint16_t>(eKind));
  writer.U16(16);
  writer.U32(dwRate);
  writer.Zeros(18);
  writer.Bytes(stream);
  return writer.Take();
}

// Samples of 12 bits are written as 16.
void CheckSound(I_WavData& sound, const C_FuzzFile& target, tagAudioFileType eKind) {
  C_WavFile again;
  if (!LabelsArePlaced(target.Path())) return;
  Require(again.LoadByName(target.Path(), true, nullptr, nullptr));
  Require(again.GetFileFormat() == eKind);
  if (sound.GetWavInfo()->GetBitsPerSample() == 12) {
    Require(again.GetWavInfo()->GetBitsPerSample() == 16);
    Require(again.GetWavInfo()->GetSampleSize() == sound.GetWavInfo()->GetSampleSize());
    return;
  }
  Require(SoundsAreEqual(sound, *again.GetWavData()));
}

// The PCM and the events beside the stream are those of the sound; the stream decodes.
template <typename CodecFile>
void CheckContainer(I_WavData& sound, const C_FuzzFile& target, tagAudioFileType eKind) {
  C_VefFile stored;
  Require(stored.LoadByName(target.Path(), true, nullptr, nullptr));
  Require(stored.GetCodingType() == static_cast<unsigned int>(eKind));
  Require(stored.GetWavInfo()->GetSampleSize() == sound.GetWavInfo()->GetSampleSize());
  Require(EventsAreEqual(*sound.GetEventTagMgr()->GetEventList(),
                         *stored.GetWavData()->GetEventTagMgr()->GetEventList()));
  CodecFile decoded;
  Require(decoded.LoadByName(target.Path(), false, nullptr, nullptr));
  Require(decoded.GetWavInfo()->GetChannels() == 1 &&
          decoded.GetWavInfo()->GetBitsPerSample() == 16);
}

void CheckStream(I_WavData& sound, const C_FuzzFile& target, const S_Options& options) {
  const Bytes file = target.Bytes();
  const unsigned int dwRate = sound.GetWavInfo()->GetSampleRate();
  std::span<const std::uint8_t> stream(file);
  if (options.bHead) {
    Require(file.size() > kCodecHead && file[0] + 256U * file[1] == options.eKind);
    Require(file[2] + 256U * file[3] == (dwRate & 0xFFFF) && file[4] == 0 && file[5] == 0);
    stream = stream.subspan(kCodecHead);
  }
  const C_WavDataPtr decoded(new C_WavData);
  decoded->SetWavInfoData(dwRate, 0, 1, 16, 16, true);
  if (IsHeron(options.eKind)) {
    C_HeronCodec codec;
    Require(codec.Decode(stream.data(), static_cast<unsigned int>(stream.size()), decoded.get()));
  }
  const C_FuzzFile withHeader(WithSpHeader(stream, options.eKind, dwRate));
  C_WavFileFormat format;
  const C_WavFilePtr opened(format.CreateWavFile(withHeader.Path(), true, true, nullptr, nullptr));
  // Files of two and three bits are recognised in containers only.
  const bool bKnown = options.eKind < AUDIO_FILE_HERON_2BIT;
  Require((opened != nullptr) == bKnown);
  if (!opened) return;
  I_WavData& loaded = *opened->GetWavData();
  if (IsHeron(options.eKind)) {
    Require(loaded.GetBufferLength() == decoded->GetBufferLength());
  } else {
    Require(loaded.GetBufferLength() % 640 == 0 && loaded.GetBufferLength() > 0);
  }
}

void CheckTarget(I_WavData& sound, const C_FuzzFile& target, const S_Options& options) {
  if (options.eKind == AUDIO_FILE_WAVE || options.eKind == AUDIO_FILE_VEMD) {
    CheckSound(sound, target, options.eKind);
  } else if (options.bEncode) {
    CheckStream(sound, target, options);
  } else if (IsHeron(options.eKind)) {
    CheckContainer<C_Heron4BitFile>(sound, target, options.eKind);
  } else {
    CheckContainer<C_KestrelFile>(sound, target, options.eKind);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  if (cbData < 2) return 0;
  const S_Options options = {kKinds[pData[0] % kKinds.size()], pData[1] % 2 != 0,
                             pData[1] / 2 % 2 != 0, pData[1] / 4 % 2 != 0};
  const C_FuzzFile source({pData + 2, cbData - 2});
  if (!LabelsArePlaced(source.Path())) return -1;
  C_WavFileFormat format;
  const C_WavFilePtr opened(format.OpenWavFile(source.Path()));
  if (!opened || opened->GetWavInfo()->GetByteLength() > kMostPcm) return -1;
  const C_WavFilePtr file(format.CreateWavFile(source.Path(), true, true, nullptr, nullptr));
  if (!file || file->GetWavData()->GetBufferLength() > kMostPcm) return -1;
  I_WavData& sound = *file->GetWavData();
  if (IsHeron(options.eKind) && sound.GetBufferLength() > kMostPcmForHeron) return -1;

  const C_FuzzFile target;
  // The file object hands the conversion to its sound.
  const bool bByFile = pData[1] / 16 % 2 != 0;
  g_dwGroups = 0;
  const auto pfnProgress = pData[1] / 8 % 2 != 0 ? &CheckProgress : nullptr;
  const bool bDone = bByFile ? file->Convert(options.eKind, target.Path(), options.bEncode,
                                             options.bHead, pfnProgress, options.bForce, 0)
                             : sound.Convert(options.eKind, target.Path(), options.bEncode,
                                             options.bHead, pfnProgress, options.bForce, 0);
  // An empty sound is not written at all.
  if (sound.GetBufferLength() == 0) Require(!bDone && target.Bytes().empty());
  if (!CanBeConverted(*sound.GetWavInfo())) {
    Require(!bDone || options.eKind == AUDIO_FILE_WAVE || options.eKind == AUDIO_FILE_VEMD);
  }
  if (bDone) CheckTarget(sound, target, options);
  return 0;
}
