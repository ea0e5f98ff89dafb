// SPDX-License-Identifier: Apache-2.0
#include "FormatDumps.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <span>
#include <stdexcept>
#include <utility>

#include "CallerOutput.h"
#include "CompressedBytes.h"
#include "PublicSounds.h"
#include "StdioFile.h"
#include "TempFile.h"
#include "file/SpHeader.h"
#include "interface/I_WavDataInfo.h"
#include "sound/WavData.h"
#include "target/ByteTarget.h"
#include "writer/RiffWriter.h"

namespace formatdumps {
namespace {

constexpr std::size_t kLine = 16;

std::vector<std::uint8_t> BytesOf(const char* pszPath) {
  const auto file = vcm::OpenFile(pszPath, "rb");
  const auto qwSize = file ? vcm::SizeAndSeekEnd(file.get()) : std::nullopt;
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(qwSize.value_or(0)));
  if (!qwSize || !vcm::SeekTo(file.get(), 0) || !vcm::ReadExact(file.get(), bytes)) {
    throw std::runtime_error("a written file cannot be read");
  }
  return bytes;
}

// Steps of 1,000, so that each sample is easy to find.
C_WavDataPtr Steps(unsigned int dwRate, std::size_t nFrames) {
  C_Bytes pcm;
  for (std::size_t i = 1; i <= nFrames; ++i) {
    pcm = Join({pcm, U16(static_cast<std::uint16_t>(i * 1000))});
  }
  C_WavDataPtr sound(new C_WavData);
  sound->SetWavInfoData(dwRate, 0, 1, 16, 16, true);
  sound->SetBuffer(pcm.data(), static_cast<unsigned int>(pcm.size()));
  return sound;
}

// A square wave, which a speech coder has something to say about.
C_WavDataPtr Square(unsigned int dwRate, std::size_t nFrames) {
  C_Bytes pcm;
  for (std::size_t i = 0; i < nFrames; ++i) {
    pcm = Join({pcm, U16(static_cast<std::uint16_t>(i / 20 % 2 == 0 ? 4000 : 61536))});
  }
  C_WavDataPtr sound(new C_WavData);
  sound->SetWavInfoData(dwRate, 0, 1, 16, 16, true);
  sound->SetBuffer(pcm.data(), static_cast<unsigned int>(pcm.size()));
  return sound;
}

template <typename Info>
Info& InfoOf(I_WavData& sound, tagWavDataInfo eKind) {
  void* pInfo = nullptr;
  sound.GetInfo(eKind, &pInfo);
  return *static_cast<Info*>(pInfo);
}

struct S_How {
  tagAudioFileType eType = AUDIO_FILE_WAVE;
  bool bEncode = true;  // false: as a VEF container
  bool bHead = false;
  bool bSpHeader = false;
};

std::vector<std::uint8_t> Written(I_WavData& sound, const S_How& how) {
  const vcm::C_RemovedAtEnd file(vcm::TempName(""));
  const char* const pszPath = file.Path().c_str();
  bool bDone = sound.Convert(how.eType, pszPath, how.bEncode, how.bHead, nullptr, true, 0);
  if (bDone && how.bSpHeader) {
    C_SpHeader header;
    header.SetID(static_cast<unsigned short>(how.eType));
    header.SetFreq(sound.GetWavInfo()->GetSampleRate());
    bDone = PrependSpHeader(header, pszPath);
  }
  if (!bDone) throw std::runtime_error("a file cannot be written");
  return BytesOf(pszPath);
}

S_Dump Wav() {
  const C_WavDataPtr sound = Steps(16000, 8);
  sound->GetEventTagMgr()->AddEventBySamplePos(3, 7, 2, "", 0);
  sound->AddSilenceSegment(3, 5);
  sound->AddUncompressRegion(6, 7);
  auto& sampler = InfoOf<I_WavDataSamplerInfo>(*sound, WAV_DATA_INFO_SAMPLER);
  sampler.SetSamplePeriod(62500);
  sampler.SetMIDIUnityNote(60);
  sampler.AddSampleLoop(9, LOOP_FORWARD, 4, 7, 0, 2);
  auto& chunks = InfoOf<I_WavDataExtraChunkInfo>(*sound, WAV_DATA_INFO_EXTRA_CHUNK);
  chunks.AddChunk("note", "kept", 4);
  return {"wav", Written(*sound, {})};
}

S_Dump Vemd() {
  const C_Bytes pcm = {0x80, 0xFF, 0x80, 0x00, 0x80};
  C_WavDataPtr sound(new C_WavData);
  sound->SetWavInfoData(8000, 0, 1, 8, 8, false);
  sound->SetBuffer(pcm.data(), static_cast<unsigned int>(pcm.size()));
  return {"vemd", Written(*sound, {.eType = AUDIO_FILE_VEMD})};
}

// The following three are files of the C interface.

S_Dump Float() {
  C_MemoryOutput output;
  voxplay::Writer writer(output.Record(),
                         FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_FLOAT, 32, 8000));
  const std::vector<float> samples = {0.5F, -1.0F};
  writer.write(std::span(samples));
  writer.finish();
  return {"float", output.Bytes()};
}

S_Dump Padded() {
  voxplay::Notes notes;
  notes.add(voxplay::Cue{5, 1, {'d', 'a', 't', 'a'}, 0, 0, 1});
  notes.add(voxplay::Label{5, {'l', 'a', 'b', 'l'}, "ab"});
  notes.add(voxplay::Chunk{{'n', 'o', 't', 'e'}, "odd", 3});
  const auto format = FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 8, 8000);
  return {"padded", WrittenBytes(format, {256, 512, 768}, notes)};
}

// Written as if sizes had no room for anything, because a file that needs RF64 is too long to show.
S_Dump Rf64() {
  api::test::C_CallerOutput output;
  const auto target = api::OpenOutputTarget(output.Record());
  auto format = FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16, 8000);
  format.flags = VOXPLAY_WRITE_RF64;
  api::C_RiffWriter writer(*target, format, 0);
  const std::vector<std::int16_t> samples = {1000, 2000, 3000, 4000};
  writer.Begin({}, 0);
  writer.Frames().Put(std::span(samples));
  writer.End({}, samples.size());
  return {"rf64", output.Content()};
}

// Nothing of ours writes these; devices and other programs do.
S_Dump MsAdpcm() {
  const C_Bytes block = Join({{0}, Shorts({16, 1000, 900}), {0x12, 0xF0}});
  return {"msadpcm", CompressedWav({WAVE_TAG_MS_ADPCM, 1, 9, 6, 4, 8000}, block).Take()};
}

S_Dump ALaw() {
  const C_Bytes codes = {0xD5, 0x55, 0x80, 0x00};
  return {"alaw", CompressedWav({WAVE_TAG_ALAW, 1, 1, 0, 8, 8000}, codes).Take()};
}

S_Dump Dvi() {
  const C_Bytes block = Join({Shorts({1000}), {10, 0}, {0x10, 0x32, 0x54, 0x76}});
  return {"dvi", CompressedWav({WAVE_TAG_DVI_ADPCM, 1, 8, 9, 4, 8000}, block).Take()};
}

S_Dump MuLaw() {
  const C_Bytes codes = {0x00, 0x7F, 0x80, 0xFF};
  return {"mulaw", CompressedWav({WAVE_TAG_MULAW, 1, 1, 0, 8, 8000}, codes).Take()};
}

S_Dump Kestrel(std::string strName, const S_How& how) {
  const C_WavDataPtr sound = Square(16000, 640);
  sound->GetAudioCodecParam()->SetBitRate(7200);
  return {std::move(strName), Written(*sound, how)};
}

S_Dump Vef() {
  const C_WavDataPtr sound = Steps(16000, 4);
  sound->GetAudioCodecParam()->SetBitRate(7200);
  sound->GetEventTagMgr()->AddEventBySamplePos(1, 2, 3, "", 7);
  return {"vef", Written(*sound, {.eType = AUDIO_FILE_KESTREL, .bEncode = false})};
}

S_Dump Heron() {
  const C_WavDataPtr sound = Square(8000, 80);
  sound->GetEventTagMgr()->AddEventBySamplePos(1, 2, 40, "", 7);
  return {"heron", Written(*sound, {.eType = AUDIO_FILE_HERON_4BIT, .bSpHeader = true})};
}

std::string Hex(std::size_t nValue, int nDigits) {
  char szText[17];
  static_cast<void>(std::snprintf(szText, sizeof szText, "%0*zx", nDigits, nValue));
  return szText;
}

std::string HexLine(std::size_t nOffset, std::span<const std::uint8_t> bytes) {
  std::string strLine = Hex(nOffset, 4) + " ";
  std::string strText;
  for (std::size_t i = 0; i < kLine; ++i) {
    if (i % 8 == 0) strLine += " ";
    strLine += i < bytes.size() ? Hex(bytes[i], 2) + " " : "   ";
    if (i < bytes.size()) {
      strText += bytes[i] >= 0x20 && bytes[i] < 0x7F ? static_cast<char>(bytes[i]) : '.';
    }
  }
  return strLine + " |" + strText + "|\n";
}

}  // namespace

std::vector<S_Dump> AllDumps() {
  return {Wav(),
          Vemd(),
          Float(),
          Padded(),
          Rf64(),
          MsAdpcm(),
          ALaw(),
          Dvi(),
          MuLaw(),
          Kestrel("kestrel", {.eType = AUDIO_FILE_KESTREL, .bSpHeader = true}),
          Kestrel("head", {.eType = AUDIO_FILE_KESTREL, .bHead = true}),
          Vef(),
          Heron()};
}

std::string HexLines(const std::vector<std::uint8_t>& bytes) {
  std::string strLines;
  for (std::size_t nOffset = 0; nOffset < bytes.size(); nOffset += kLine) {
    const std::span<const std::uint8_t> rest = std::span(bytes).subspan(nOffset);
    strLines += HexLine(nOffset, rest.first(std::min(kLine, rest.size())));
  }
  return strLines;
}

std::string MarkOf(const S_Dump& dump) { return "<!-- dump " + dump.strName + " -->\n"; }

std::string WithDumps(std::string strDocument, const std::vector<S_Dump>& dumps) {
  constexpr std::string_view kFence = "```\n";
  for (const S_Dump& dump : dumps) {
    const std::string strBegin = MarkOf(dump) + std::string(kFence);
    const std::size_t nMark = strDocument.find(strBegin);
    if (nMark == std::string::npos) continue;
    const std::size_t nBegin = nMark + strBegin.size();
    const std::size_t nEnd = strDocument.find(kFence, nBegin);
    if (nEnd == std::string::npos) continue;
    strDocument.replace(nBegin, nEnd - nBegin, HexLines(dump.bytes));
  }
  return strDocument;
}

}  // namespace formatdumps
