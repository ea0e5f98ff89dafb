// SPDX-License-Identifier: Apache-2.0
//
// How fast the library's own kinds of files are saved and loaded: RIFF files of form VEMD, VEF
// containers with samples, with a stream beside them or with the samples alone, and bare streams,
// which are loaded with an SP header before them. Then the SP headers by themselves.
//
//   cmake --preset bench && cmake --build --preset bench --target container_bench
//   build/bench/bin/container_bench --benchmark_filter=Kestrel
#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

#include "BenchFiles.h"
#include "Speech.h"
#include "TestSound.h"
#include "file/SpHeader.h"
#include "file/VefFile.h"

namespace {

constexpr std::size_t kSamples = 160'000;  // ten seconds

C_SoundPtr Speech() { return MonoSound(speech::Samples(kSamples)); }

C_SpHeader Header(unsigned short wType) {
  C_SpHeader header;
  header.SetID(wType);
  header.SetFreq(16000);
  return header;
}

// ---- each kind of file

struct S_Kind {
  const char* pszName;
  tagAudioFileType eType;
  bool bStream;  // a bare stream, not a container
};
constexpr S_Kind kKinds[] = {
    {"Wave", AUDIO_FILE_WAVE, false},
    {"Vemd", AUDIO_FILE_VEMD, false},
    {"Kestrel", AUDIO_FILE_KESTREL, true},
    {"KestrelContainer", AUDIO_FILE_KESTREL, false},
    {"Heron2", AUDIO_FILE_HERON_2BIT, true},
    {"Heron4", AUDIO_FILE_HERON_4BIT, true},
    {"Heron4Container", AUDIO_FILE_HERON_4BIT, false},
    {"Heron6", AUDIO_FILE_HERON_6BIT, true},
};

// The only Heron streams that an SP header may stand before are those of 4, 5 and 6 bits.
bool CanBeLoaded(const S_Kind& kind) {
  return !kind.bStream || kind.eType == AUDIO_FILE_KESTREL || kHeronSpTypes.Has(kind.eType);
}
bool HoldsStreamBesidePcm(const S_Kind& kind) {
  return !kind.bStream && kind.eType != AUDIO_FILE_WAVE && kind.eType != AUDIO_FILE_VEMD;
}

void SaveKind(benchmark::State& state, const S_Kind& kind) {
  const C_SoundPtr sound = Speech();
  const C_BenchFile file;
  for ([[maybe_unused]] auto iteration : state) Save(*sound, file, kind.eType, kind.bStream);
  CountItems(state, kSamples);
}

void LoadFile(benchmark::State& state, const S_Kind& kind, bool bStoredPcm) {
  const C_BenchFile file;
  Save(*Speech(), file, kind.eType, kind.bStream);
  if (kind.bStream) {
    const auto wType = static_cast<unsigned short>(kind.eType);
    Require(PrependSpHeader(Header(wType), file.Path().c_str()));
  }
  for ([[maybe_unused]] auto iteration : state) Load(file, bStoredPcm);
  CountItems(state, kSamples);
}
void LoadKind(benchmark::State& state, const S_Kind& kind) { LoadFile(state, kind, true); }
void DecodeKind(benchmark::State& state, const S_Kind& kind) { LoadFile(state, kind, false); }

struct S_Work {
  const char* pszName;
  decltype(&SaveKind) pfnRun;
  bool (*pfnCanBeDone)(const S_Kind& kind);
};
constexpr S_Work kWorks[] = {
    {"Save/", SaveKind, [](const S_Kind& /*kind*/) { return true; }},
    {"Load/", LoadKind, CanBeLoaded},
    {"Decode/", DecodeKind, HoldsStreamBesidePcm},
};

[[maybe_unused]] const bool g_bRegistered = [] {
  for (const S_Work& work : kWorks) {
    for (const S_Kind& kind : kKinds) {
      if (!work.pfnCanBeDone(kind)) continue;
      const std::string strName = std::string(work.pszName) + kind.pszName;
      benchmark::RegisterBenchmark(strName.c_str(), [&](benchmark::State& state) {
        work.pfnRun(state, kind);
      })->Unit(benchmark::kMicrosecond);
    }
  }
  return true;
}();

// ---- containers with the samples alone

void SaveSamplesAlone(C_VefFile& vef, const C_BenchFile& file) {
  Require(vef.WriteFile(file.Path().c_str(), false, false, nullptr, false, 0));
}

void SaveSamplesInContainer(benchmark::State& state) {
  const C_SoundPtr sound = Speech();
  C_VefFile vef;
  vef.AttachWavData(sound.get());
  const C_BenchFile file;
  for ([[maybe_unused]] auto iteration : state) SaveSamplesAlone(vef, file);
  CountItems(state, kSamples);
}
BENCHMARK(SaveSamplesInContainer)->Name("Save/SamplesInContainer")->Unit(benchmark::kMicrosecond);

void LoadSamplesInContainer(benchmark::State& state) {
  const C_SoundPtr sound = Speech();
  C_VefFile vef;
  vef.AttachWavData(sound.get());
  const C_BenchFile file;
  SaveSamplesAlone(vef, file);
  for ([[maybe_unused]] auto iteration : state) {
    C_VefFile loaded;
    Require(loaded.LoadByName(file.Path().c_str(), true, nullptr, nullptr));
  }
  CountItems(state, kSamples);
}
BENCHMARK(LoadSamplesInContainer)->Name("Load/SamplesInContainer")->Unit(benchmark::kMicrosecond);

// ---- SP headers

// Each puts one more header before the file, which therefore grows, but by next to nothing.
void SpHeader_Prepend(benchmark::State& state) {
  const C_BenchFile file;
  Save(*Speech(), file, AUDIO_FILE_KESTREL);
  for ([[maybe_unused]] auto iteration : state) {
    Require(PrependSpHeader(Header(AUDIO_FILE_KESTREL), file.Path().c_str()));
  }
}
BENCHMARK(SpHeader_Prepend)->Unit(benchmark::kMicrosecond)->Iterations(500);

void SpHeader_Strip(benchmark::State& state) {
  const C_BenchFile file;
  const C_BenchFile stripped;
  Save(*Speech(), file, AUDIO_FILE_KESTREL);
  Require(PrependSpHeader(Header(AUDIO_FILE_KESTREL), file.Path().c_str()));
  for ([[maybe_unused]] auto iteration : state) {
    C_SpHeader header;
    Require(StripSpHeader(&header, file.Path().c_str(), stripped.Path().c_str()));
  }
}
BENCHMARK(SpHeader_Strip)->Unit(benchmark::kMicrosecond);

void SpHeader_CopyWith(benchmark::State& state) {
  const C_BenchFile file;
  const C_BenchFile copy;
  Save(*Speech(), file, AUDIO_FILE_KESTREL);
  for ([[maybe_unused]] auto iteration : state) {
    Require(CopyWithSpHeader(file.Path().c_str(), copy.Path().c_str(), Header(AUDIO_FILE_KESTREL)));
  }
}
BENCHMARK(SpHeader_CopyWith)->Unit(benchmark::kMicrosecond);

void SpHeader_Read(benchmark::State& state) {
  const C_BenchFile file;
  Save(*Speech(), file, AUDIO_FILE_KESTREL);
  Require(PrependSpHeader(Header(AUDIO_FILE_KESTREL), file.Path().c_str()));
  for ([[maybe_unused]] auto iteration : state) {
    C_SpHeader header;
    Require(ReadSpHeader(&header, file.Path().c_str()));
  }
}
BENCHMARK(SpHeader_Read)->Unit(benchmark::kMicrosecond);

}  // namespace
