// SPDX-License-Identifier: Apache-2.0
//
// Files in memory for the benchmarks, so that the library is measured and not a disk.
#pragma once

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>

#include "CompressedBytes.h"
#include "WavFileFormat.h"

class C_BenchFile {
 public:
  explicit C_BenchFile(const C_Bytes& bytes = {}) {
    static int nFiles = 0;
    m_strPath =
        "/dev/shm/voxplay-bench-" + std::to_string(getpid()) + "-" + std::to_string(++nFiles);
    std::ofstream file(m_strPath, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) std::abort();
  }
  ~C_BenchFile() { unlink(m_strPath.c_str()); }
  C_BenchFile(const C_BenchFile&) = delete;
  C_BenchFile& operator=(const C_BenchFile&) = delete;

  [[nodiscard]] const std::string& Path() const { return m_strPath; }

 private:
  std::string m_strPath;
};

// A benchmark of something that fails would say nothing.
inline void Require(bool bDone) {
  if (!bDone) std::abort();
}

inline void Save(I_WavData& sound, const C_BenchFile& file,
                 tagAudioFileType eType = AUDIO_FILE_WAVE, bool bStream = true) {
  Require(sound.Convert(eType, file.Path().c_str(), bStream, false, nullptr, true, 0));
}

// bStoredPcm: of a container, the samples that it holds; otherwise its stream is decoded.
inline void Load(const C_BenchFile& file, bool bStoredPcm = true) {
  C_WavFileFormat format;
  const C_WavFilePtr pFile(
      format.CreateWavFile(file.Path().c_str(), true, bStoredPcm, nullptr, nullptr));
  Require(pFile != nullptr);
  benchmark::DoNotOptimize(pFile->GetWavDataBuffer());
}

inline void CountBytes(benchmark::State& state, std::size_t cb) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(cb));
}
inline void CountItems(benchmark::State& state, std::size_t nItems) {
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(nItems));
}

// Measures write(file), to a new file each time.
template <typename Write>
void SaveToNewFiles(benchmark::State& state, Write write) {
  const C_BenchFile file;
  for ([[maybe_unused]] auto iteration : state) {
    write(file);
    state.PauseTiming();
    unlink(file.Path().c_str());
    state.ResumeTiming();
  }
}
