// SPDX-License-Identifier: Apache-2.0
//
// Treats any bytes as a RIFF file: lists the chunks, reads every payload, parses payloads as chunks
// and writes the file back.
//
//   scripts/fuzz.sh 60 riff_list
//
// Input: a whole file. Seeds: files of our own writers, one per form and mix of chunks.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "FuzzFile.h"
#include "Require.h"
#include "RiffFile.h"
#include "StdioFile.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

// A payload is returned, unchanged, if the file holds all of it, and not otherwise.
void CheckPayload(C_RiffChunk& chunk, Bytes file) {
  const std::uint64_t qwEnd = std::uint64_t{chunk.GetDataPos()} + chunk.GetDataLength();
  const bool bHeld = chunk.GetDataLength() > 0 && qwEnd <= file.size();
  std::vector<std::uint8_t> payload(bHeld ? chunk.GetDataLength() : 0);
  const auto dwLength = static_cast<unsigned int>(payload.size());
  Require(chunk.GetData(payload.data(), dwLength, 0) == bHeld);
  const auto inFile = file.subspan(chunk.GetDataPos(), payload.size());
  Require(std::equal(payload.begin(), payload.end(), inFile.begin()));
  Require(!chunk.GetData(payload.data(), 2, 0xFFFFFFFFu));
}

// A chunk that the end of the file cuts has a part that the file holds; no other chunk has one.
void CheckHeldPart(C_RiffChunk& chunk, Bytes file) {
  const auto part = chunk.CreateHeldPart();
  const std::size_t cbHeld =
      std::min<std::size_t>(chunk.GetDataLength(), file.size() - chunk.GetDataPos());
  Require((part != nullptr) == (cbHeld < chunk.GetDataLength()));
  if (!part) return;
  Require(part->HasChunkID(chunk.GetChunkID()) && part->GetDataLength() == cbHeld);
  std::vector<std::uint8_t> payload(cbHeld);
  if (cbHeld == 0) return;
  Require(part->GetData(payload.data(), part->GetDataLength(), 0));
  const auto inFile = file.subspan(chunk.GetDataPos(), cbHeld);
  Require(std::equal(payload.begin(), payload.end(), inFile.begin()));
}

void CheckList(C_RiffChunkList& list, Bytes file) {
  std::uint64_t qwBehind = 0;
  for (int i = 0; i < list.GetCount(); ++i) {
    C_RiffChunk& chunk = *list.GetAt(i);
    Require(chunk.GetDataPos() >= qwBehind + 8 && chunk.GetDataPos() <= file.size());
    Require(list.FindChunk(chunk.GetChunkID(), i) == &chunk);
    qwBehind = std::uint64_t{chunk.GetDataPos()} + chunk.GetDataLength();
    CheckHeldPart(chunk, file);
    CheckPayload(chunk, file);
  }
}

// The size in the header and the last chunk say whether the file was cut.
void CheckCut(C_RiffFile& riff, Bytes file) {
  const std::uint32_t dwSize = file[4] + 256U * file[5] + 65536U * file[6] + 16777216U * file[7];
  const std::uint32_t dwList = dwSize - 4;  // wraps for a header that is too small
  bool bCut = file.size() < 12 + std::uint64_t{dwList};
  for (int i = 0; i < riff.GetChunkCount(); ++i) {
    C_RiffChunk& chunk = *riff.GetChunkAt(i);
    bCut |= std::uint64_t{chunk.GetDataPos()} + chunk.GetDataLength() > file.size();
  }
  Require(riff.IsCutShort() == bCut);
  Require(!riff.HasReadError());
}

// The same bytes as a bare list, through a stream of the caller's own.
void CheckBareList(const C_FuzzFile& bytes, Bytes file) {
  const vcm::C_FilePtr stream = vcm::OpenFile(bytes.Path(), "rb");
  C_RiffChunkList list;
  Require(list.LoadChunks(stream.get(), static_cast<unsigned int>(file.size())));
  std::uint64_t qwLength = 0;
  for (int i = 0; i < list.GetCount(); ++i) {
    qwLength += std::uint64_t{8} + list.GetAt(i)->GetDataLength();
  }
  Require(list.GetTrueChunksLength() == qwLength);
  Require(list.GetChunksLength() == static_cast<std::uint32_t>(qwLength));
}

void CheckFile(C_RiffFile& riff, Bytes file) {
  CheckCut(riff, file);
  CheckList(riff.GetChunks(), file);
  for (int i = 0; i < riff.GetChunkCount(); ++i) {
    C_RiffChunk& chunk = *riff.GetChunkAt(i);
    Require(chunk.LoadSubChunks());
    CheckList(chunk.GetSubChunks(), file);
  }
}

// A list that was read and written has the same chunks when it is read again. Lists with payloads
// that the end of the file cuts are skipped: zeros are written for the missing bytes, up to 4 GiB.
void CheckSave(C_RiffFile& riff, const char* pszFormType, std::size_t cbFile) {
  if (riff.GetChunks().GetTrueChunksLength() > cbFile) return;
  const C_FuzzFile target;
  Require(riff.Save(target.Path(), pszFormType));
  Require(target.Bytes().size() == 12 + riff.GetChunks().GetTrueChunksLength());
  C_RiffFile again;
  Require(again.Open(target.Path(), pszFormType));
  Require(again.GetChunkCount() == riff.GetChunkCount());
  for (int i = 0; i < riff.GetChunkCount(); ++i) {
    Require(again.GetChunkAt(i)->HasChunkID(riff.GetChunkAt(i)->GetChunkID()));
    Require(again.GetChunkAt(i)->GetDataPos() == riff.GetChunkAt(i)->GetDataPos());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  const C_FuzzFile file({pData, cbData});
  for (const char* pszFormType : {"WAVE", "VEMD", "VEFF"}) {
    C_RiffFile riff;
    if (!riff.Open(file.Path(), pszFormType)) continue;
    CheckFile(riff, {pData, cbData});
    CheckSave(riff, pszFormType, cbData);
  }
  if (cbData % 8 == 0) CheckBareList(file, {pData, cbData});
  return 0;
}
