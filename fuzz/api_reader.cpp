// SPDX-License-Identifier: Apache-2.0
//
// Opens any bytes through the public interface: from memory and through functions, reads them in
// pieces and after seeks, and compares with the class library, which opens nothing else and gives
// the same samples.
//
//   scripts/fuzz.sh 60 api_reader
//
// Input: a whole file. How it is read depends on its length and its last byte.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "FuzzFile.h"
#include "LabelsArePlaced.h"
#include "MemoryOutput.h"
#include "ReadMore.h"
#include "Require.h"
#include "WavFileFormat.h"
#include "voxplay.hpp"

namespace {

using Bytes = std::span<const std::uint8_t>;
using Samples = std::vector<std::int16_t>;

// Longer sounds show nothing more, nor do those of thousands of channels.
constexpr std::size_t kMostFrames = 20000;
constexpr std::size_t kMostSamples = 200000;

// The first frames of what is open.
Samples ReadFrames(voxplay_reader* pReader, std::size_t nChannels, std::size_t nPiece,
                   std::size_t nMost) {
  Samples all;
  nPiece = std::min(nPiece, 1 + kMostSamples / nChannels);
  nMost = std::min(nMost, 1 + kMostSamples / nChannels);
  Samples piece(nPiece * nChannels);
  while (all.size() < nMost * nChannels) {
    std::size_t nDone = 0;
    Require(voxplay_reader_read_s16(pReader, piece.data(), nPiece, &nDone) == VOXPLAY_OK);
    Require(nDone <= nPiece);
    if (nDone == 0) break;
    const auto nSamples = static_cast<std::ptrdiff_t>(nDone * nChannels);
    all.insert(all.end(), piece.begin(), piece.begin() + nSamples);
  }
  all.resize(std::min(all.size(), nMost * nChannels));
  return all;
}

void CheckNotes(const voxplay_notes* pNotes) {
  const voxplay::NotesView notes(pNotes);
  std::uint64_t qwFrame = 0;
  for (const voxplay::Event event : notes.events()) {
    Require(event.frame >= qwFrame && event.description != nullptr);
    qwFrame = event.frame;
  }
  for (const voxplay::Label label : notes.labels()) Require(label.text != nullptr);
  for (const voxplay::Chunk chunk : notes.chunks()) {
    Require(chunk.size == 0 || chunk.data != nullptr);
  }
  static_cast<void>(notes.sampler());
}

// Chunks stand within the file, one after the other.
void CheckChunks(const voxplay_reader* pReader, Bytes input) {
  std::uint64_t qwEnd = 0;
  for (std::size_t n = 0; n < voxplay_reader_chunk_count(pReader); ++n) {
    voxplay_chunk_place place{};
    Require(voxplay_reader_chunk(pReader, n, &place, sizeof place) == VOXPLAY_OK);
    Require(place.offset >= qwEnd + 8 && place.held <= place.size);
    Require(place.offset <= input.size() && place.held <= input.size() - place.offset);
    qwEnd = place.offset + place.held;
  }
}

// Seeking gives what reading on gives.
void CheckSeeking(voxplay_reader* pReader, const Samples& all, std::size_t nChannels,
                  std::size_t nPiece) {
  const std::size_t nFrames = all.size() / nChannels;
  for (std::size_t n = 1; n < 4; ++n) {
    const std::size_t nFrame = nFrames * (4 - n) / 4;
    Require(voxplay_reader_seek(pReader, nFrame) == VOXPLAY_OK);
    const std::size_t nMost = std::min<std::size_t>(nPiece + 5, nFrames - nFrame);
    const Samples part = ReadFrames(pReader, nChannels, nPiece, nMost);
    Require(part.size() == nMost * nChannels);
    Require(std::equal(part.begin(), part.end(),
                       all.begin() + static_cast<std::ptrdiff_t>(nFrame * nChannels)));
  }
}

// What the class library opens is opened here, with the same samples.
void CompareWithClasses(Bytes input, voxplay_reader* pReader, bool bOpen) {
  const C_FuzzFile file(input);
  C_WavFileFormat format;
  const C_WavFilePtr loaded(format.CreateWavFile(file.Path(), true, true, nullptr, nullptr));
  if (!loaded) return;
  I_WavInfo& info = *loaded->GetWavInfo();
  // The classes take samples of any width for bytes without a meaning.
  if (info.GetBitsPerSample() > 32) return;
  Require(bOpen);
  voxplay_info open{};
  Require(voxplay_reader_info(pReader, &open, sizeof open) == VOXPLAY_OK);
  Require(open.channels == info.GetChannels() || info.GetByteLength() == 0);
  if (info.GetBitsPerSample() != 16 || info.GetStoreBitsPerSample() != 16) return;
  if (info.GetChannels() == 0) return;
  const std::size_t nFrames = info.GetByteLength() / 2U / info.GetChannels();
  Require(voxplay_reader_seek(pReader, 0) == VOXPLAY_OK);
  const std::size_t nMost = std::min({nFrames, kMostFrames, 1 + kMostSamples / info.GetChannels()});
  const Samples samples = ReadFrames(pReader, info.GetChannels(), 4096, nMost);
  Require(samples.size() == nMost * info.GetChannels());
  const unsigned char* const pbyPcm = loaded->GetWavData()->GetBuffer();
  for (std::size_t n = 0; n < samples.size(); ++n) {
    const int nValue = pbyPcm[2 * n] | pbyPcm[2 * n + 1] << 8;
    Require(static_cast<std::int16_t>(nValue) == samples[n]);
  }
}

// Of several "data" chunks the last one counts, but a pipe is read from the first one on.
bool IsSameThroughPipe(Bytes input) {
  constexpr std::string_view kData = "data";
  const auto first = std::search(input.begin(), input.end(), kData.begin(), kData.end());
  if (first == input.end()) return true;
  return std::search(first + 1, input.end(), kData.begin(), kData.end()) == input.end();
}

// Loading may take much memory for a claim, or end in an assertion about labels.
bool IsForClasses(Bytes input) {
  if (input.size() % 4 != 0 || api::test::IsReadMoreOf(input)) return false;
  const C_FuzzFile file(input);
  return LabelsArePlaced(file.Path());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  const Bytes input(pData, cbData);
  const std::uint8_t byChoice = cbData == 0 ? 0 : input.back();
  const std::uint32_t dwFlags = byChoice % 4 == 1 ? VOXPLAY_READ_STREAM : 0;
  const std::size_t nPiece = 1 + std::size_t{3} * byChoice;
  voxplay_reader* const pReader = voxplay_reader_new();
  const bool bOpen = voxplay_reader_open_memory(pReader, pData, cbData, dwFlags) == VOXPLAY_OK;
  Require(bOpen == (*voxplay_reader_message(pReader) == '\0'));
  C_MemoryInput functions(input, nPiece, byChoice % 16 == 3 ? byChoice / 16 + 2 : 1 << 30);
  const voxplay_input record = byChoice % 8 == 5 ? functions.Pipe() : functions.Record();
  voxplay_reader* const pOther = voxplay_reader_new();
  const bool bOther = voxplay_reader_open_input(pOther, &record, dwFlags) == VOXPLAY_OK;
  if (bOpen) {
    voxplay_info info{};
    Require(voxplay_reader_info(pReader, &info, sizeof info) == VOXPLAY_OK);
    CheckNotes(voxplay_reader_notes(pReader));
    CheckChunks(pReader, input);
    const Samples all = ReadFrames(pReader, info.channels, nPiece, kMostFrames);
    CheckSeeking(pReader, all, info.channels, nPiece);
    const bool bPipe = byChoice % 8 == 5;
    if (bOther && byChoice % 16 != 3 && (!bPipe || IsSameThroughPipe(input))) {
      Require(ReadFrames(pOther, info.channels, 1000, kMostFrames) == all);
    }
  }
  if (dwFlags == 0 && IsForClasses(input)) CompareWithClasses(input, pReader, bOpen);
  voxplay_reader_free(pOther);
  voxplay_reader_free(pReader);
  return 0;
}
