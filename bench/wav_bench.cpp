// SPDX-License-Identifier: Apache-2.0
//
// How fast WAV files load, save and open. Loading times are those of files that are in memory
// already. peers_bench compares with others, annotation_bench shows what annotations cost.
//
//   cmake --preset bench && cmake --build --preset bench --target wav_bench
//   build/bench/bin/wav_bench --benchmark_enable_random_interleaving --benchmark_repetitions=9
//
// The time of another run says little, because it depends on what else the machine does: compare
// what stands side by side.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "BenchFiles.h"
#include "LongSounds.h"
#include "file/WavFile.h"

namespace {

constexpr std::size_t kFramesPerSecond = 16000;

// ---- files of all lengths

void WaveSave_Seconds(benchmark::State& state) {
  const C_SoundPtr sound =
      ExampleSound({}, kFramesPerSecond * static_cast<std::size_t>(state.range(0)));
  const C_BenchFile file{};
  for ([[maybe_unused]] auto iteration : state) Save(*sound, file);
  CountBytes(state, sound->GetBufferLength());
}
BENCHMARK(WaveSave_Seconds)->Arg(1)->Arg(60);

void WaveLoad_Seconds(benchmark::State& state) {
  const C_SoundPtr sound =
      ExampleSound({}, kFramesPerSecond * static_cast<std::size_t>(state.range(0)));
  const C_BenchFile file{};
  Save(*sound, file);
  for ([[maybe_unused]] auto iteration : state) Load(file);
  CountBytes(state, sound->GetBufferLength());
}
BENCHMARK(WaveLoad_Seconds)->Arg(1)->Arg(60);

// ---- long sounds

[[maybe_unused]] const bool g_bRegistered = [] {
  for (const longsounds::S_Kind& kind : longsounds::kKinds) {
    benchmark::RegisterBenchmark((std::string("LongLoad/") + kind.pszName).c_str(),
                                 [&kind](benchmark::State& state) {
                                   const C_BenchFile file(longsounds::File(kind, false));
                                   for ([[maybe_unused]] auto iteration : state) Load(file);
                                   CountBytes(state, longsounds::kBytes);
                                 })
        ->Unit(benchmark::kMillisecond);
  }
  return true;
}();

// To a new file, which is not brought to a disk.
void LongSave(benchmark::State& state) {
  const C_SoundPtr sound = longsounds::Pcm();
  SaveToNewFiles(state, [&](const C_BenchFile& file) { Save(*sound, file); });
  CountBytes(state, longsounds::kBytes);
}
BENCHMARK(LongSave)->Unit(benchmark::kMillisecond);

// The same bytes at the same place, in one write. At the beginning of a file they would be written
// faster, because the system copies fastest between addresses that are aligned alike.
void LongSaveWrite(benchmark::State& state) {
  const C_SoundPtr sound = longsounds::Pcm();
  const C_BenchFile file{};
  for ([[maybe_unused]] auto iteration : state) {
    const int nDescriptor = open(file.Path().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    constexpr off_t kHeader = 44;
    Require(pwrite(nDescriptor, sound->GetBuffer(), longsounds::kBytes, kHeader) ==
            ssize_t{longsounds::kBytes});
    close(nDescriptor);
    state.PauseTiming();
    std::filesystem::remove(file.Path());
    state.ResumeTiming();
  }
  CountBytes(state, longsounds::kBytes);
}
BENCHMARK(LongSaveWrite)->Unit(benchmark::kMillisecond);

// ---- many short files

void LookAt_Factory(benchmark::State& state) {
  const C_BenchFile file(longsounds::File(longsounds::kKinds[0], false));
  const std::string& strPath = file.Path();
  for ([[maybe_unused]] auto iteration : state) {
    C_WavFileFormat format;
    format.OpenWavFile(strPath.c_str())->Release();
  }
}
BENCHMARK(LookAt_Factory);

void LookAt_File(benchmark::State& state) {
  const C_BenchFile file(longsounds::File(longsounds::kKinds[0], false));
  const std::string& strPath = file.Path();
  for ([[maybe_unused]] auto iteration : state) {
    C_WavFile wavFile;
    Require(wavFile.OpenByName(strPath.c_str()));
  }
}
BENCHMARK(LookAt_File);

// What the system alone takes for it.
void LookAt_System(benchmark::State& state) {
  const C_BenchFile file(longsounds::File(longsounds::kKinds[0], false));
  const std::string& strPath = file.Path();
  std::vector<char> bytes(4096);
  for ([[maybe_unused]] auto iteration : state) {
    const int nDescriptor = open(strPath.c_str(), O_RDONLY);
    Require(pread(nDescriptor, bytes.data(), bytes.size(), 0) > 0);
    close(nDescriptor);
  }
}
BENCHMARK(LookAt_System);

}  // namespace
