// SPDX-License-Identifier: Apache-2.0
//
// Writes and reads any sound with any annotations: nothing that a file can hold may be lost or
// changed.
//
//   scripts/fuzz.sh 60 wav_write_read
//
// Input: form and widths (1 byte), channels (1), rate (4), the counts of events, silence segments,
// regions, loops and extra chunks (1 each), then their fields, then the samples. Fields beyond the
// end of the input are 0.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "ByteReader.h"
#include "FuzzFile.h"
#include "Require.h"
#include "SoundsAreEqual.h"
#include "file/WavFile.h"
#include "interface/I_WavDataInfo.h"

namespace {

template <typename Info>
Info& InfoOf(C_WavFile& file, tagWavDataInfo eType) {
  void* pInfo = nullptr;
  Require(file.GetDataInfo(eType, &pInfo));
  return *static_cast<Info*>(pInfo);
}

struct S_Counts {
  unsigned int dwEvents = 0;
  unsigned int dwSilence = 0;
  unsigned int dwRegions = 0;
  unsigned int dwLoops = 0;
  unsigned int dwExtra = 0;
};

void SetFormat(C_WavFile& file, vcm::C_ByteReader& reader) {
  constexpr std::array<unsigned short, 4> kWidths = {8, 16, 24, 32};
  const unsigned int dwShape = reader.U8();
  file.SetFileFormat(dwShape % 2 == 0 ? AUDIO_FILE_WAVE : AUDIO_FILE_VEMD);
  const unsigned short wBits = kWidths[dwShape / 2 % kWidths.size()];
  const auto wChannels = static_cast<unsigned short>(1 + reader.U8());
  const unsigned int dwRate = reader.U32() | 1;  // events need a rate
  file.SetWavInfoData(dwRate, wChannels, wBits, wBits, wBits > 8);
}

S_Counts ReadCounts(vcm::C_ByteReader& reader) {
  S_Counts counts;
  for (unsigned int* pdwCount :
       {&counts.dwEvents, &counts.dwSilence, &counts.dwRegions, &counts.dwLoops, &counts.dwExtra}) {
    *pdwCount = reader.U8() % 6;
  }
  return counts;
}

void Annotate(I_WavData& wavData, const S_Counts& counts, vcm::C_ByteReader& reader) {
  for (unsigned int i = 0; i < counts.dwEvents; ++i) {
    const unsigned short wMain = reader.U16();
    const unsigned short wSub = reader.U16();
    wavData.GetEventTagMgr()->AddEventBySamplePos(wMain, wSub, reader.U32(), "lost", 1);
  }
  for (unsigned int i = 0; i < counts.dwSilence; ++i) {
    const unsigned int dwStart = reader.U32();
    wavData.AddSilenceSegment(dwStart, reader.U32());
  }
  for (unsigned int i = 0; i < counts.dwRegions; ++i) {
    const unsigned int dwStart = reader.U32();
    wavData.AddUncompressRegion(dwStart, reader.U32());
  }
}

void AddChunks(C_WavFile& file, const S_Counts& counts, vcm::C_ByteReader& reader) {
  auto& sampler = InfoOf<I_WavDataSamplerInfo>(file, WAV_DATA_INFO_SAMPLER);
  for (unsigned int i = 0; i < counts.dwLoops; ++i) {
    const unsigned int dwStart = reader.U32();
    sampler.AddSampleLoop(i, LOOP_FORWARD, dwStart, reader.U32(), 0, 0);
  }
  auto& extra = InfoOf<I_WavDataExtraChunkInfo>(file, WAV_DATA_INFO_EXTRA_CHUNK);
  for (unsigned int i = 0; i < counts.dwExtra; ++i) {
    const auto payload = reader.Bytes(reader.U8());
    extra.AddChunk("junk", payload.data(), static_cast<unsigned int>(payload.size()));
  }
}

// Chunks without payload are not written; the others keep their order.
void CheckChunks(C_WavFile& a, C_WavFile& b) {
  Require(InfoOf<I_WavDataSamplerInfo>(a, WAV_DATA_INFO_SAMPLER).GetSampleLoopNum() ==
          InfoOf<I_WavDataSamplerInfo>(b, WAV_DATA_INFO_SAMPLER).GetSampleLoopNum());
  auto& written = InfoOf<I_WavDataExtraChunkInfo>(a, WAV_DATA_INFO_EXTRA_CHUNK);
  auto& read = InfoOf<I_WavDataExtraChunkInfo>(b, WAV_DATA_INFO_EXTRA_CHUNK);
  int nRead = 0;
  for (int i = 0; i < written.GetSize(); ++i) {
    unsigned char* pbyWritten = nullptr;
    unsigned char* pbyRead = nullptr;
    const unsigned int dwLength = written.GetItemByIndex(i)->GetChunkData(&pbyWritten);
    if (dwLength == 0) continue;
    Require(nRead < read.GetSize());
    Require(read.GetItemByIndex(nRead++)->GetChunkData(&pbyRead) == dwLength);
    Require(std::equal(pbyWritten, pbyWritten + dwLength, pbyRead));
  }
  Require(nRead == read.GetSize());
  Require((read.GetChunkByName("junk") != nullptr) == (nRead > 0));
  Require(read.GetChunkByName("none") == nullptr && !read.DelChunkByName("none"));
  Require(read.DelChunkByName("junk") == (nRead > 0));
  Require(read.GetSize() == std::max(nRead - 1, 0));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  vcm::C_ByteReader reader(std::span(pData, cbData));
  C_WavFile file;
  SetFormat(file, reader);
  const S_Counts counts = ReadCounts(reader);
  Annotate(*file.GetWavData(), counts, reader);
  AddChunks(file, counts, reader);
  const auto samples = reader.Bytes(reader.Remaining());
  Require(file.SetBuffer(samples.data(), static_cast<unsigned int>(samples.size())));

  const C_FuzzFile bytes;
  Require(file.WriteFile(bytes.Path(), true, false, nullptr, false, 0));
  C_WavFile again;
  Require(again.LoadByName(bytes.Path(), true, nullptr, nullptr));
  Require(again.GetFileFormat() == file.GetFileFormat());
  Require(SoundsAreEqual(*file.GetWavData(), *again.GetWavData()));
  CheckChunks(file, again);
  return 0;
}
