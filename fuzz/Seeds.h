// SPDX-License-Identifier: Apache-2.0
//
// What the sources of make_seeds share.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "interface/I_WavData.h"

using C_SeedBytes = std::vector<std::uint8_t>;

class C_Seeds {
 public:
  explicit C_Seeds(std::string strRoot) : m_strRoot(std::move(strRoot)) {}

  // Adds the same input for each of these fuzzers.
  void Add(std::initializer_list<const char*> fuzzers, std::span<const std::uint8_t> bytes) {
    for (const char* pszFuzzer : fuzzers) {
      const std::string strFolder = m_strRoot + "/" + pszFuzzer;
      std::filesystem::create_directories(strFolder);
      std::ofstream file(strFolder + "/" + std::to_string(m_nSeeds++), std::ios::binary);
      file.write(reinterpret_cast<const char*>(bytes.data()),
                 static_cast<std::streamsize>(bytes.size()));
      if (!file.flush()) std::abort();
    }
  }
  void AddText(std::initializer_list<const char*> fuzzers, const std::string& strText) {
    Add(fuzzers, C_SeedBytes(strText.begin(), strText.end()));
  }

 private:
  std::string m_strRoot;
  int m_nSeeds = 0;
};

// seed_files.cpp: whole files.
C_SeedBytes WaveFile(I_WavData& sound, tagAudioFileType eType);
void AddFiles(C_Seeds& seeds);
// seed_codecs.cpp: streams and frames.
void AddCodecs(C_Seeds& seeds);
// seed_operations.cpp: sequences of operations, chunks and texts.
void AddOperations(C_Seeds& seeds);
// seed_api.cpp: what goes through the public interface.
void AddApi(C_Seeds& seeds);
// seed_audio.cpp: files that the toolbox opens.
void AddAudioFiles(C_Seeds& seeds);
