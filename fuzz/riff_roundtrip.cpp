// SPDX-License-Identifier: Apache-2.0
//
// Writes any list of chunks, some of them made of chunks themselves, and compares the file with
// bytes put together by hand. Reads it, writes what was read and compares again.
//
//   scripts/fuzz.sh 60 riff_roundtrip
//
// Input: the form type, then the chunks: kind, identifier, length and payload.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "FuzzFile.h"
#include "FuzzInput.h"
#include "Require.h"
#include "RiffFile.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kMostChunks = 24;

struct S_PlainChunk {
  std::string strID;
  Bytes payload;
};

struct S_TopChunk : S_PlainChunk {
  std::vector<S_PlainChunk> parts;  // the payload, when it is made of chunks
};

void Add32(std::size_t nValue, Bytes& out) {
  for (int i = 0; i < 4; ++i) out.push_back(static_cast<std::uint8_t>(nValue >> (8 * i) & 0xFF));
}
void AddChunk(const S_PlainChunk& chunk, Bytes& out) {
  out.insert(out.end(), chunk.strID.begin(), chunk.strID.end());
  Add32(chunk.payload.size(), out);
  out.insert(out.end(), chunk.payload.begin(), chunk.payload.end());
}

// Identifiers that begin with zero are taken for padding, so there are none.
S_PlainChunk TakeChunk(C_FuzzInput& input) {
  static constexpr std::array<const char*, 6> kNames = {"fmt ", "data",     "LIST",
                                                        "cue ", "\1\0\0\0", "\xff\xff\xff\xff"};
  S_PlainChunk chunk;
  chunk.strID.assign(input.OneOf(kNames), 4);
  const auto payload = input.Bytes(input.Flag() ? input.U8() % 16U : input.U16() % 600U);
  chunk.payload.assign(payload.begin(), payload.end());
  return chunk;
}

std::vector<S_TopChunk> TakeChunks(C_FuzzInput& input) {
  std::vector<S_TopChunk> chunks;
  while (!input.Ended() && chunks.size() < kMostChunks) {
    S_TopChunk chunk;
    const unsigned int nParts = input.Below(8) < 6 ? 0 : 1 + input.Below(4);
    static_cast<S_PlainChunk&>(chunk) = TakeChunk(input);
    for (unsigned int i = 0; i < nParts; ++i) chunk.parts.push_back(TakeChunk(input));
    if (!chunk.parts.empty()) chunk.payload.clear();
    for (const S_PlainChunk& part : chunk.parts) AddChunk(part, chunk.payload);
    chunks.push_back(chunk);
  }
  return chunks;
}

Bytes Expected(const std::string& strForm, const std::vector<S_TopChunk>& chunks) {
  Bytes list;
  for (const S_TopChunk& chunk : chunks) AddChunk(chunk, list);
  Bytes file = {'R', 'I', 'F', 'F'};
  Add32(4 + list.size(), file);
  file.insert(file.end(), strForm.begin(), strForm.end());
  file.insert(file.end(), list.begin(), list.end());
  return file;
}

void Build(const std::vector<S_TopChunk>& chunks, C_RiffFile& riff) {
  for (const S_TopChunk& chunk : chunks) {
    C_RiffChunk* pChunk =
        riff.AddChunk(chunk.strID.data(), static_cast<unsigned int>(chunk.payload.size()));
    if (chunk.parts.empty()) pChunk->SetData(chunk.payload.data());
    for (const S_PlainChunk& part : chunk.parts) {
      pChunk->GetSubChunks()
          .AddChunk(part.strID.data(), static_cast<unsigned int>(part.payload.size()))
          ->SetData(part.payload.data());
    }
    if (!chunk.parts.empty()) {
      Require(pChunk->GetSubChunks().GetChunksLength() == chunk.payload.size());
    }
  }
}

Bytes PayloadOf(C_RiffChunk& chunk) {
  Bytes payload(chunk.GetDataLength());
  const bool bRead = chunk.GetData(payload.data(), chunk.GetDataLength(), 0);
  Require(bRead == !payload.empty());
  return payload;
}

void CheckRead(C_RiffFile& riff, const std::vector<S_TopChunk>& chunks) {
  Require(!riff.HasReadError() && !riff.IsCutShort());
  Require(riff.GetChunkCount() == static_cast<int>(chunks.size()));
  for (int i = 0; i < riff.GetChunkCount(); ++i) {
    const S_TopChunk& expected = chunks[static_cast<std::size_t>(i)];
    C_RiffChunk& chunk = *riff.GetChunkAt(i);
    Require(chunk.HasChunkID(expected.strID.data()) && chunk.CreateHeldPart() == nullptr);
    Require(PayloadOf(chunk) == expected.payload);
    if (expected.parts.empty()) continue;
    Require(chunk.LoadSubChunks());
    Require(chunk.GetSubChunks().GetCount() == static_cast<int>(expected.parts.size()));
    for (std::size_t n = 0; n < expected.parts.size(); ++n) {
      C_RiffChunk& part = *chunk.GetSubChunks().GetAt(static_cast<int>(n));
      Require(part.HasChunkID(expected.parts[n].strID.data()));
      Require(PayloadOf(part) == expected.parts[n].payload);
    }
  }
}

// The index of the first chunk of that name, found one by one; -1 when there is none.
int SlowFind(const std::vector<S_TopChunk>& chunks, const std::string& strID, int nStart) {
  for (int i = nStart; i < static_cast<int>(chunks.size()); ++i) {
    if (chunks[static_cast<std::size_t>(i)].strID == strID) return i;
  }
  return -1;
}

void CheckFind(C_RiffFile& riff, const std::vector<S_TopChunk>& chunks, int nStart) {
  for (const S_TopChunk& chunk : chunks) {
    const int nFound = SlowFind(chunks, chunk.strID, nStart);
    C_RiffChunk* pFound = riff.FindChunk(chunk.strID.data(), nStart);
    Require(pFound == (nFound < 0 ? nullptr : riff.GetChunkAt(nFound)));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  C_FuzzInput input(pData, cbData);
  const std::string strForm = input.Flag() ? "WAVE" : std::string("\0\xff\x80z", 4);
  const int nStart = static_cast<int>(input.Below(kMostChunks + 2));
  const auto chunks = TakeChunks(input);
  const Bytes expected = Expected(strForm, chunks);
  const C_FuzzFile first;
  C_RiffFile built;
  Build(chunks, built);
  Require(built.Save(first.Path(), strForm.data()) && first.Bytes() == expected);
  Require(built.GetChunks().GetTrueChunksLength() + 12 == expected.size());
  CheckFind(built, chunks, nStart);

  C_RiffFile read;
  Require(!read.Open(first.Path(), "None") && read.GetChunkCount() == 0);
  Require(read.Open(first.Path(), strForm.data()));
  CheckRead(read, chunks);
  const C_FuzzFile second;
  Require(read.Save(second.Path(), strForm.data()) && second.Bytes() == expected);
  return 0;
}
