// SPDX-License-Identifier: Apache-2.0
//
// What the tests of RIFF files share.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "RiffBytes.h"
#include "RiffFile.h"
#include "TempFolder.h"

class C_RiffFixture : public ::testing::Test {
 protected:
  bool Open(C_RiffFile& file, const C_Bytes& bytes, const char* pszFormType = "WAVE") {
    return file.Open(m_folder.Write("in", bytes).c_str(), pszFormType);
  }
  // Saves the file and returns the bytes of the target.
  C_Bytes Saved(C_RiffFile& file, const char* pszFormType = "WAVE") {
    EXPECT_TRUE(file.Save(m_folder.Path("out").c_str(), pszFormType));
    return m_folder.Read("out");
  }

  C_TempFolder m_folder;
};

inline std::string IDOf(C_RiffChunk* pChunk) { return {pChunk->GetChunkID(), 4}; }

// "fmt @20+16" for each chunk: identifier, payload position, size.
inline std::vector<std::string> Listing(const C_RiffFile& file) {
  std::vector<std::string> lines;
  for (int i = 0; i < file.GetChunkCount(); ++i) {
    C_RiffChunk* pChunk = file.GetChunkAt(i);
    lines.push_back(IDOf(pChunk) + "@" + std::to_string(pChunk->GetDataPos()) + "+" +
                    std::to_string(pChunk->GetDataLength()));
  }
  return lines;
}

inline C_Bytes PayloadOf(C_RiffChunk* pChunk) {
  C_Bytes payload(pChunk->GetDataLength());
  EXPECT_TRUE(pChunk->GetData(payload.data(), pChunk->GetDataLength(), 0));
  return payload;
}

inline std::ptrdiff_t OpenDescriptors() {
  const std::filesystem::directory_iterator entries("/proc/self/fd");
  return std::distance(begin(entries), end(entries));
}

using Lines = std::vector<std::string>;
