// SPDX-License-Identifier: Apache-2.0
//
// How fast sounds are edited, in bytes of the sound before the change, for each operation and
// width:
//
//   cmake --preset bench && cmake --build --preset bench --target edit_bench
//   build/bench/bin/edit_bench --benchmark_filter=Gain
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "sound/WavData.h"

namespace {

// Bytes, more than the nearer caches hold. Results of up to 16 MiB get the same memory again, so
// that the operations are measured and not how fast the system hands out pages.
constexpr unsigned int kSounded = 4U << 20;

struct S_Width {
  const char* pszName;
  unsigned short wChannels;
  unsigned short wBits;
  unsigned short wStoreBits;
};
constexpr S_Width kWidths[] = {
    {"16", 1, 16, 16},     {"8", 1, 8, 8},          {"12in16", 1, 12, 16},
    {"24in32", 1, 24, 32}, {"32", 1, 32, 32},       {"16stereo", 2, 16, 16},
    {"8stereo", 2, 8, 8},  {"32stereo", 2, 32, 32}, {"16of6", 6, 16, 16},
};

// Loud and quiet stretches, as in speech.
C_WavDataPtr Sound(const S_Width& width) {
  C_WavDataPtr sound(new C_WavData);
  unsigned char* const pbyPcm = sound->AllocBuffer(kSounded);
  sound->SetWavInfoData(16000, kSounded, width.wChannels, width.wBits, width.wStoreBits,
                        width.wBits > 8);
  I_WavDataBuffer& buffer = *sound->GetIWaveDataBuffer();
  for (unsigned int i = 0; i < kSounded; ++i) pbyPcm[i] = 0;
  std::uint32_t dwRandom = 1;
  const std::uint32_t dwFrames = sound->GetWavInfo()->GetSampleSize();
  for (std::uint32_t i = 0; i < dwFrames; ++i) {
    for (unsigned int dwChannel = 0; dwChannel < width.wChannels; ++dwChannel) {
      dwRandom = dwRandom * 1664525U + 1013904223U;
      const int nLoud = static_cast<int>(dwRandom) >> (33 - width.wBits);
      const bool bLoud = (i >> 12) % 3 != 0;
      buffer.SetSampleValueInt(i, bLoud ? nLoud : nLoud >> 7,
                               static_cast<unsigned short>(dwChannel));
    }
  }
  return sound;
}

using Edit = void (*)(I_WavData& sound);

// Edits the same sound again and again.
void InPlace(benchmark::State& state, const S_Width& width, Edit pfnEdit) {
  const C_WavDataPtr sound = Sound(width);
  for ([[maybe_unused]] auto iteration : state) pfnEdit(*sound);
  state.SetBytesProcessed(state.iterations() * std::int64_t{kSounded});
}

// Edits a copy, which is not timed.
void OfACopy(benchmark::State& state, const S_Width& width, Edit pfnEdit) {
  const C_WavDataPtr sound = Sound(width);
  for ([[maybe_unused]] auto iteration : state) {
    state.PauseTiming();
    const C_WavDataPtr copy(sound->Clone());
    state.ResumeTiming();
    pfnEdit(*copy);
  }
  state.SetBytesProcessed(state.iterations() * std::int64_t{kSounded});
}

void PutChannelIn(I_WavData& sound) {
  const auto wLast = static_cast<unsigned short>(sound.GetWavInfo()->GetChannels() - 1);
  const unsigned int dwHalf = sound.GetWavInfo()->GetSampleSize() / 2;
  const C_WavDataPtr channel(sound.CreateChannelData(wLast, 0, dwHalf));
  if (!sound.SetChannelData(channel.get(), wLast, 0, 0)) std::abort();
}

void Converted(I_WavData& sound, unsigned short wBits, unsigned short wStoreBits) {
  const C_WavDataPtr converted(
      sound.CreateBitsConvertedData(wBits, wStoreBits, wStoreBits > 8, true));
  if (!converted) std::abort();
}

struct S_Operation {
  const char* pszName;
  decltype(&InPlace) pfnRun;
  Edit pfnEdit;
  // Sounds that the operation leaves as they are; null where there are none.
  bool (*pfnIsIdle)(const S_Width& width) = nullptr;
};
const S_Operation kOperations[] = {
    // The sound keeps its loudness.
    {"Gain", InPlace, [](I_WavData& sound) { sound.ApplyGain(-1.0, -1.0); }},
    {"Normalise", InPlace, [](I_WavData& sound) { sound.Normalize(); }},
    {"Silence", InPlace, [](I_WavData& sound) { sound.DetectSilence(100, 1000, true); }},
    {"FindOffset", InPlace,
     [](I_WavData& sound) { benchmark::DoNotOptimize(sound.GetDCOffset()); }},
    {"RemoveOffset", InPlace, [](I_WavData& sound) { sound.RemoveDCOffset(); }},
    {"To8", InPlace, [](I_WavData& sound) { Converted(sound, 8, 8); }},
    {"To16", InPlace, [](I_WavData& sound) { Converted(sound, 16, 16); }},
    {"To24in32", InPlace, [](I_WavData& sound) { Converted(sound, 24, 32); }},
    {"To32", InPlace, [](I_WavData& sound) { Converted(sound, 32, 32); }},
    {"ConvertTo8", OfACopy, [](I_WavData& sound) { sound.ConvertBits(8, 8, false, true); },
     [](const S_Width& width) { return width.wBits == 8; }},
    {"ToMono", OfACopy, [](I_WavData& sound) { sound.ConvertToMono(); },
     [](const S_Width& width) { return width.wChannels == 1; }},
    {"ToStereo", OfACopy, [](I_WavData& sound) { sound.ConvertToStereo(); },
     [](const S_Width& width) { return width.wChannels == 2; }},
    {"ToLeftSide", OfACopy, [](I_WavData& sound) { sound.ConvertToStereoWithSilence(0); }},
    {"ChannelOut", InPlace,
     [](I_WavData& sound) {
       const C_WavDataPtr channel(
           sound.CreateChannelData(0, 0, sound.GetWavInfo()->GetSampleSize()));
       if (!channel) std::abort();
     }},
    {"HalfChannelOutAndIn", InPlace, PutChannelIn},
    {"Clone", InPlace, [](I_WavData& sound) { const C_WavDataPtr copy(sound.Clone()); }},
};

[[maybe_unused]] const bool g_bRegistered = [] {
  for (const S_Operation& operation : kOperations) {
    for (const S_Width& width : kWidths) {
      if (operation.pfnIsIdle != nullptr && operation.pfnIsIdle(width)) continue;
      const std::string strName = std::string(operation.pszName) + "/" + width.pszName;
      benchmark::RegisterBenchmark(strName.c_str(), [&](benchmark::State& state) {
        operation.pfnRun(state, width, operation.pfnEdit);
      })->Unit(benchmark::kMillisecond);
    }
  }
  return true;
}();

}  // namespace
