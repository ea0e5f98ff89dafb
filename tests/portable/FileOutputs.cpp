// SPDX-License-Identifier: Apache-2.0
//
// The file classes: what they write of a sound with annotations, and what they read of it.
#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "ByteReader.h"
#include "CompressedBytes.h"
#include "ExampleSound.h"
#include "Outputs.h"
#include "StdioFile.h"
#include "TempFile.h"
#include "Voice.h"
#include "WavFileFormat.h"
#include "codec/KestrelCodec.h"
#include "file/SpHeader.h"

namespace {

// A file of the test's own, removed at the end.
class C_OutputFile {
 public:
  C_OutputFile() : m_file(vcm::TempName("")) {}

  [[nodiscard]] const char* Path() const { return m_file.Path().c_str(); }
  [[nodiscard]] C_Bytes Bytes() const {
    const auto file = vcm::OpenFile(Path(), "rb");
    const auto qwSize = file ? vcm::SizeAndSeekEnd(file.get()) : std::nullopt;
    C_Bytes bytes(static_cast<std::size_t>(qwSize.value_or(0)));
    if (!qwSize || !vcm::SeekTo(file.get(), 0) || !vcm::ReadExact(file.get(), bytes)) {
      throw std::runtime_error("a written file cannot be read");
    }
    return bytes;
  }
  void Write(const C_Bytes& bytes) const {
    auto file = vcm::OpenFile(Path(), "wb");
    if (!file || !vcm::WriteExact(file.get(), bytes) || !vcm::CloseChecked(std::move(file))) {
      throw std::runtime_error("a file cannot be written");
    }
  }

 private:
  vcm::C_RemovedAtEnd m_file;
};

template <typename List>
void WriteRanges(const List& list, vcm::C_ByteWriter& writer) {
  for (int i = 0; i < list.GetSize(); ++i) {
    writer.U32(list.GetItemByIndex(i)->GetStartSamplePos());
    writer.U32(list.GetItemByIndex(i)->GetEndSamplePos());
  }
}

// Format, annotations and samples of a sound, as its operations give them.
C_Bytes Described(I_WavData& sound) {
  vcm::C_ByteWriter writer;
  I_WavInfo& info = *sound.GetWavInfo();
  writer.U32(info.GetSampleRate());
  writer.U32(info.GetTimeLength());
  writer.U16(info.GetChannels());
  writer.U16(info.GetBitsPerSample());
  writer.U16(info.GetStoreBitsPerSample());
  writer.U8(info.IsValueSigned() ? 1 : 0);
  const auto& events = *sound.GetEventTagMgr()->GetEventList();
  for (int i = 0; i < events.GetSize(); ++i) {
    I_EventTag& event = *events.GetItemByIndex(i);
    writer.U16(event.GetMainCommandIndex());
    writer.U16(event.GetSubCommandIndex());
    writer.U32(event.GetSamplePos());
    writer.U32(event.GetTime());
  }
  WriteRanges(*sound.GetSilenceSegmentList(), writer);
  WriteRanges(*sound.GetUncompressRegionList(), writer);
  writer.Bytes({sound.GetBuffer(), sound.GetBufferLength()});
  return writer.Take();
}

// What a file says about its sound. bAsStored reads the PCM that a container stores; otherwise its
// stream is decoded.
C_Bytes Loaded(const C_OutputFile& file, bool bAsStored, const std::string& strName) {
  C_WavFileFormat format;
  const C_WavFilePtr loaded(format.CreateWavFile(file.Path(), true, bAsStored, nullptr, nullptr));
  if (!loaded) throw std::runtime_error(strName);
  return Described(*loaded->GetWavData());
}

void WriteAs(I_WavData& sound, tagAudioFileType eType, bool bEncode, const C_OutputFile& file,
             const std::string& strName) {
  if (!sound.Convert(eType, file.Path(), bEncode, false, nullptr, true, 0)) {
    throw std::runtime_error(strName);
  }
}

void AddWave(C_Outputs& outputs, tagAudioFileType eType, const S_VoiceFormat& format) {
  const std::string strName = std::string(eType == AUDIO_FILE_WAVE ? "wave " : "vemd ") +
                              std::to_string(format.wBits) + " in " +
                              std::to_string(format.wStoreBits) + " bits " +
                              std::to_string(format.wChannels) + " channels";
  const C_WavDataPtr sound = VoiceSound(format, 400);
  AddAnnotations(*sound);
  const C_OutputFile file;
  WriteAs(*sound, eType, true, file, strName);
  outputs.Add(strName + " written", file.Bytes());
  outputs.Add(strName + " read", Loaded(file, true, strName));
}

void AddWaves(C_Outputs& outputs) {
  constexpr std::array<std::pair<unsigned short, unsigned short>, 6> kWidths = {
      {{8, 8}, {12, 16}, {16, 16}, {24, 24}, {24, 32}, {32, 32}}};
  for (const auto& [wBits, wStoreBits] : kWidths) {
    for (const unsigned short wChannels : {std::uint16_t{1}, std::uint16_t{2}, std::uint16_t{3}}) {
      AddWave(outputs, AUDIO_FILE_WAVE, {11025, wChannels, wBits, wStoreBits});
    }
    AddWave(outputs, AUDIO_FILE_VEMD, {22050, 1, wBits, wStoreBits});
  }
}

// The samples take up more than 2 GiB, which are a hole in the file, and the cue points come after
// them.
void AddLongWave(C_Outputs& outputs) {
  constexpr std::uint32_t cbSamples = 0x90000000U;
  const std::string strName = "wave of 2.25 GiB opened";
  const C_Bytes cue = ChunkBytes("cue ", CueBytes({{1, 0x40000000U, 0x40000000U}}));
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", cbSamples, {});
  const C_Bytes head =
      riff.RiffSize(static_cast<std::uint32_t>(riff.Take().size() - 8 + cbSamples + cue.size()))
          .Take();
  const C_OutputFile file;
  file.Write(head);
  auto stream = vcm::OpenFile(file.Path(), "r+b");
  if (!stream || !vcm::SeekTo(stream.get(), std::uint64_t{head.size()} + cbSamples) ||
      !vcm::WriteExact(stream.get(), cue) || !vcm::CloseChecked(std::move(stream))) {
    throw std::runtime_error(strName);
  }
  C_WavFileFormat format;
  const C_WavFilePtr opened(format.OpenWavFile(file.Path()));
  void* pInfo = nullptr;
  if (!opened || !opened->GetDataInfo(WAV_DATA_INFO_CUE, &pInfo)) throw std::runtime_error(strName);
  auto& cueInfo = *static_cast<I_WavDataCueInfo*>(pInfo);
  vcm::C_ByteWriter writer;
  writer.U32(opened->GetFileLength());
  writer.U32(opened->GetWavInfo()->GetByteLength());
  for (int i = 0; i < cueInfo.GetCuePointCount(); ++i) {
    writer.U32(cueInfo.GetCuePointByIndex(i)->GetPosition());
  }
  outputs.Add(strName, writer.Data());
}

void AddCompressedWaves(C_Outputs& outputs) {
  const auto voice = VoiceSound({8000, 1, 8, 8}, 2000);
  for (const S_Blocks& blocks : OneOfEachKind()) {
    const std::string strName =
        "tag " + std::to_string(blocks.wTag) + " of " + std::to_string(blocks.wBits) + " bits read";
    const std::size_t cbEncoded = std::size_t{50} * blocks.wBlockAlign + 19;
    const C_Bytes encoded(voice->GetBuffer(), voice->GetBuffer() + cbEncoded);
    const C_OutputFile file;
    file.Write(CompressedWav(blocks, encoded).Take());
    outputs.Add(strName, Loaded(file, true, strName));
  }
}

// A stream file and a container of one codec.
void AddCodecFiles(C_Outputs& outputs, I_WavData& sound, tagAudioFileType eType,
                   const std::string& strName) {
  const C_OutputFile stream;
  WriteAs(sound, eType, true, stream, strName);
  C_SpHeader header;
  header.SetID(static_cast<unsigned short>(eType));
  header.SetFreq(sound.GetWavInfo()->GetSampleRate());
  // The factory knows some of the types by an SP header, and all of them by a container.
  if (eType == AUDIO_FILE_KESTREL || kHeronSpTypes.Has(eType)) {
    if (!PrependSpHeader(header, stream.Path())) throw std::runtime_error(strName);
    outputs.Add(strName + " stream read", Loaded(stream, false, strName));
  }
  outputs.Add(strName + " stream written", stream.Bytes());
  const C_OutputFile container;
  WriteAs(sound, eType, false, container, strName);
  outputs.Add(strName + " container written", container.Bytes());
  outputs.Add(strName + " container read as stored", Loaded(container, true, strName));
  outputs.Add(strName + " container decoded", Loaded(container, false, strName));
}

void AddKestrelFiles(C_Outputs& outputs) {
  for (unsigned int dwBitRate = 4800; dwBitRate <= 32000; dwBitRate += 800) {
    if (!C_KestrelCodec().IsSupportedBitRate(dwBitRate)) continue;
    const C_WavDataPtr sound = VoiceSound({}, 2500);
    AddAnnotations(*sound);
    sound->GetAudioCodecParam()->SetBitRate(dwBitRate);
    AddCodecFiles(outputs, *sound, AUDIO_FILE_KESTREL, "kestrel file " + std::to_string(dwBitRate));
  }
}

// Heron mixes channels and converts widths on its way.
void AddHeronFiles(C_Outputs& outputs) {
  for (unsigned int dwType = kHeronTypes.dwFirst; dwType <= kHeronTypes.dwLast; ++dwType) {
    const C_WavDataPtr sound = VoiceSound({8000, 2, 32, 32}, 2500);
    AddAnnotations(*sound);
    AddCodecFiles(outputs, *sound, static_cast<tagAudioFileType>(dwType),
                  "heron file " + std::to_string(dwType));
  }
}

void AddOperation(C_Outputs& outputs, const char* pszName, const S_VoiceFormat& format,
                  void (*pfnChange)(I_WavData& sound)) {
  const C_WavDataPtr sound = VoiceSound(format, 3000);
  pfnChange(*sound);
  outputs.Add(std::string("operation ") + pszName + " " + std::to_string(format.wBits) + " bits",
              Described(*sound));
}

}  // namespace

void AddFileOutputs(C_Outputs& outputs) {
  AddWaves(outputs);
  AddLongWave(outputs);
  AddCompressedWaves(outputs);
  AddKestrelFiles(outputs);
  AddHeronFiles(outputs);
}

void AddSoundOutputs(C_Outputs& outputs) {
  for (const unsigned short wBits : {std::uint16_t{8}, std::uint16_t{16}, std::uint16_t{32}}) {
    const S_VoiceFormat mono{16000, 1, wBits, wBits};
    const S_VoiceFormat stereo{16000, 2, wBits, wBits};
    AddOperation(outputs, "mono", stereo, [](I_WavData& sound) { sound.ConvertToMono(); });
    AddOperation(outputs, "stereo", mono, [](I_WavData& sound) { sound.ConvertToStereo(); });
    AddOperation(outputs, "8 bits of", mono,
                 [](I_WavData& sound) { sound.ConvertBits(8, 8, false, true); });
    AddOperation(outputs, "24 bits of", mono,
                 [](I_WavData& sound) { sound.ConvertBits(24, 32, true, false); });
    AddOperation(outputs, "gain", mono, [](I_WavData& sound) { sound.ApplyGain(0.3, 1.7); });
    AddOperation(outputs, "normalise", mono, [](I_WavData& sound) { sound.Normalize(); });
    AddOperation(outputs, "offset", mono, [](I_WavData& sound) { sound.RemoveDCOffset(); });
    AddOperation(outputs, "silence", mono,
                 [](I_WavData& sound) { sound.DetectSilence(200, 100, true); });
  }
}
