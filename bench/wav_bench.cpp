// SPDX-License-Identifier: Apache-2.0
//
// How fast WAV files load and save, and what annotations cost:
//
//   cmake --preset bench && cmake --build --preset bench --target wav_bench
//   build/bench/bin/wav_bench
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>

#include "ExampleSound.h"
#include "FuzzFile.h"
#include "WavFileFormat.h"

namespace {

constexpr std::size_t kFramesPerSecond = 16000;

// Files in memory, so that the library is measured and not a disk.
void Save(I_WavData& sound, const C_FuzzFile& file) {
  if (!sound.Convert(AUDIO_FILE_WAVE, file.Path(), true, false, nullptr, false, 0)) std::abort();
}

void Load(const C_FuzzFile& file) {
  C_WavFileFormat format;
  I_WavFile* pIFile = format.CreateWavFile(file.Path(), true, true, nullptr, nullptr);
  if (pIFile == nullptr) std::abort();
  benchmark::DoNotOptimize(pIFile->GetWavDataBuffer());
  pIFile->Release();
}

void CountBytes(benchmark::State& state, I_WavData& sound) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(sound.GetBufferLength()));
}

void WaveSave_Seconds(benchmark::State& state) {
  const C_SoundPtr sound =
      ExampleSound({}, kFramesPerSecond * static_cast<std::size_t>(state.range(0)));
  const C_FuzzFile file;
  for ([[maybe_unused]] auto iteration : state) Save(*sound, file);
  CountBytes(state, *sound);
}
BENCHMARK(WaveSave_Seconds)->Arg(1)->Arg(60);

void WaveLoad_Seconds(benchmark::State& state) {
  const C_SoundPtr sound =
      ExampleSound({}, kFramesPerSecond * static_cast<std::size_t>(state.range(0)));
  const C_FuzzFile file;
  Save(*sound, file);
  for ([[maybe_unused]] auto iteration : state) Load(file);
  CountBytes(state, *sound);
}
BENCHMARK(WaveLoad_Seconds)->Arg(1)->Arg(60);

// Time per event must not depend on how many there are.
void WaveLoad_Events(benchmark::State& state) {
  const C_SoundPtr sound = ExampleSound({}, kFramesPerSecond);
  for (unsigned int i = 0; i < static_cast<unsigned int>(state.range(0)); ++i) {
    sound->GetEventTagMgr()->AddEventBySamplePos(1, 2, i, "", 0);
  }
  const C_FuzzFile file;
  Save(*sound, file);
  for ([[maybe_unused]] auto iteration : state) Load(file);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(WaveLoad_Events)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
