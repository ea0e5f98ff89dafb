// SPDX-License-Identifier: Apache-2.0
//
// Chunks for the tests of the info objects.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "RiffBytes.h"
#include "RiffFile.h"
#include "TempFolder.h"

// A chunk in memory.
inline std::unique_ptr<C_RiffChunk> MakeChunk(const C_Bytes& payload) {
  auto chunk = std::make_unique<C_RiffChunk>("test", static_cast<unsigned int>(payload.size()));
  chunk->SetData(payload.data());
  return chunk;
}

template <typename Info>
bool Load(Info& info, const C_Bytes& payload) {
  return info.LoadInfo(MakeChunk(payload).get());
}

inline C_Bytes PayloadOf(I_RiffChunk& chunk) {
  C_Bytes payload(chunk.GetDataLength());
  EXPECT_TRUE(chunk.GetData(payload.data(), chunk.GetDataLength(), 0));
  return payload;
}

// What an info object saves into a chunk of the length that it asks for.
template <typename Info>
C_Bytes Saved(Info& info) {
  C_RiffChunk chunk("test", info.GetChunkLength());
  EXPECT_TRUE(info.SaveInfo(&chunk));
  return PayloadOf(chunk);
}

// A chunk that is cut off: it claims dwClaimed bytes, but the file ends after this payload.
class C_CutChunk {
 public:
  C_CutChunk(std::uint32_t dwClaimed, const C_Bytes& payload) {
    const auto bytes = C_RiffBytes("WAVE").Chunk("test", dwClaimed, payload).Take();
    EXPECT_TRUE(m_file.Open(m_folder.Write("cut", bytes).c_str(), "WAVE"));
  }
  C_RiffChunk* Get() { return m_file.GetChunkAt(0); }

 private:
  C_TempFolder m_folder;
  C_RiffFile m_file;
};

// A chunk of another maker's reader: its nFailing-th read fails.
class C_FailingChunk final : public I_RiffChunk {
 public:
  C_FailingChunk(C_Bytes payload, int nFailing)
      : m_payload(std::move(payload)), m_nFailing(nFailing) {}
  unsigned int GetDataLength() override { return static_cast<unsigned int>(m_payload.size()); }
  bool GetData(void* pDst, unsigned int dwLength, unsigned int dwOffset) override {
    if (++m_nReads == m_nFailing) return false;
    std::memcpy(pDst, m_payload.data() + dwOffset, dwLength);
    return true;
  }
  void SetData(const void* /*pSrc*/) override {}
  [[nodiscard]] bool HasFailed() const { return m_nReads >= m_nFailing; }

 private:
  C_Bytes m_payload;
  int m_nFailing;
  int m_nReads = 0;
};

// Loads the payload once for each read that it takes, and lets that read fail. Returns the number
// of reads.
template <typename Load>
int CountReportedFailures(const C_Bytes& payload, const Load& load) {
  for (int nFailing = 1;; ++nFailing) {
    C_FailingChunk chunk(payload, nFailing);
    const bool bLoaded = load(chunk);
    EXPECT_NE(bLoaded, chunk.HasFailed()) << nFailing;
    if (bLoaded) return nFailing - 1;
  }
}

inline C_Bytes Words(std::initializer_list<std::uint32_t> words) {
  vcm::C_ByteWriter writer;
  for (const std::uint32_t dwWord : words) writer.U32(dwWord);
  return writer.Take();
}

constexpr std::uint32_t kDataID = 0x61746164;  // "data"
