// SPDX-License-Identifier: Apache-2.0
//
// What annotations cost when a sound is saved and loaded, by their kind, the kind of the file and
// how many there are. The time of one must not depend on how many there are.
//
//   cmake --preset bench && cmake --build --preset bench --target annotation_bench
//   build/bench/bin/annotation_bench --benchmark_filter=Cues
#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

#include "Annotations.h"
#include "BenchFiles.h"
#include "ExampleSound.h"

namespace {

constexpr std::size_t kSamples = 16000;

struct S_Kind {
  const char* pszName;
  void (*pfnAdd)(I_WavData& sound, unsigned int dwNumber);
  tagAudioFileType eType;
  bool bStream;
};
constexpr S_Kind kKinds[] = {
    {"EventsInWave", annotations::AddEvent, AUDIO_FILE_WAVE, false},
    {"EventsInVemd", annotations::AddEvent, AUDIO_FILE_VEMD, false},
    {"EventsInContainer", annotations::AddEvent, AUDIO_FILE_KESTREL, false},
    {"EventsInHeronStream", annotations::AddEvent, AUDIO_FILE_HERON_4BIT, true},
    {"SegmentsInWave", annotations::AddSegment, AUDIO_FILE_WAVE, false},
    {"RegionsInWave", annotations::AddRegion, AUDIO_FILE_WAVE, false},
    {"ChunksInWave", annotations::AddChunk, AUDIO_FILE_WAVE, false},
    {"CuesInContainer", annotations::AddCue, AUDIO_FILE_KESTREL, false},
    {"LabelsInContainer", annotations::AddLabel, AUDIO_FILE_KESTREL, false},
};

C_SoundPtr SoundWithMany(const S_Kind& kind, unsigned int dwCount) {
  C_SoundPtr sound = ExampleSound({}, kSamples);
  for (unsigned int i = 0; i < dwCount; ++i) kind.pfnAdd(*sound, i);
  return sound;
}

void SaveMany(benchmark::State& state, const S_Kind& kind) {
  const C_SoundPtr sound = SoundWithMany(kind, static_cast<unsigned int>(state.range(0)));
  const C_BenchFile file;
  for ([[maybe_unused]] auto iteration : state) Save(*sound, file, kind.eType, kind.bStream);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void LoadMany(benchmark::State& state, const S_Kind& kind) {
  const C_BenchFile file;
  Save(*SoundWithMany(kind, static_cast<unsigned int>(state.range(0))), file, kind.eType,
       kind.bStream);
  for ([[maybe_unused]] auto iteration : state) Load(file);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

struct S_Work {
  const char* pszName;
  decltype(&SaveMany) pfnRun;
  bool bLoads;
};
constexpr S_Work kWorks[] = {{"Save", SaveMany, false}, {"Load", LoadMany, true}};

[[maybe_unused]] const bool g_bRegistered = [] {
  for (const S_Work& work : kWorks) {
    for (const S_Kind& kind : kKinds) {
      // The library writes events after a bare stream, but does not read them.
      if (work.bLoads && kind.bStream) continue;
      const std::string strName = std::string(work.pszName) + kind.pszName;
      benchmark::RegisterBenchmark(strName.c_str(),
                                   [&](benchmark::State& state) { work.pfnRun(state, kind); })
          ->Unit(benchmark::kMillisecond)
          ->Arg(1000)
          ->Arg(10000)
          ->Arg(100000);
    }
  }
  return true;
}();

}  // namespace
