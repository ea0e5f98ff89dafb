// SPDX-License-Identifier: Apache-2.0
//
// Samples per second of the Heron frame coder on a speech-like sound, in each direction, at each
// depth and at two sample rates:
//
//   cmake --preset bench && cmake --build --preset bench --target heron_speed_bench
//   build/bench/bin/heron_speed_bench
//
// The end of a sound is coded as often as the search for the size needs, so the time of encoding
// depends a little on the sound. How good the codec is, bench/heron.sh shows.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "BenchFiles.h"
#include "Speech.h"
#include "heron/Configuration.h"
#include "heron/SoundCoder.h"

namespace {

constexpr std::size_t kSeconds = 4;

std::vector<std::int16_t> Speech(int nSampleRate) {
  return speech::Samples(kSeconds * static_cast<std::size_t>(nSampleRate), nSampleRate);
}

std::vector<std::uint8_t> Coded(const std::vector<std::int16_t>& samples, int nSampleRate,
                                int nBitDepth) {
  std::vector<std::uint8_t> coded;
  Require(heron::EncodeSamples(samples, nSampleRate, nBitDepth, &coded, {}));
  return coded;
}

void EncodeSound(benchmark::State& state) {
  const auto nBitDepth = static_cast<int>(state.range(0));
  const auto nSampleRate = static_cast<int>(state.range(1));
  const auto samples = Speech(nSampleRate);
  for ([[maybe_unused]] auto iteration : state) {
    benchmark::DoNotOptimize(Coded(samples, nSampleRate, nBitDepth).data());
  }
  CountItems(state, samples.size());
}

void DecodeSound(benchmark::State& state) {
  const auto nBitDepth = static_cast<int>(state.range(0));
  const auto nSampleRate = static_cast<int>(state.range(1));
  const auto coded = Coded(Speech(nSampleRate), nSampleRate, nBitDepth);
  std::vector<std::int16_t> samples;
  for ([[maybe_unused]] auto iteration : state) {
    Require(heron::DecodeSamples(coded, nSampleRate, &samples));
  }
  CountItems(state, samples.size());
}

void EachDepthAndRate(benchmark::internal::Benchmark* pBenchmark) {
  pBenchmark->ArgNames({"bits", "rate"})->Unit(benchmark::kMillisecond);
  for (int nBitDepth = heron::kMinBitDepth; nBitDepth <= heron::kMaxBitDepth; ++nBitDepth) {
    for (const int nSampleRate : {8000, 16000}) pBenchmark->Args({nBitDepth, nSampleRate});
  }
}
BENCHMARK(EncodeSound)->Apply(EachDepthAndRate);
BENCHMARK(DecodeSound)->Apply(EachDepthAndRate);

}  // namespace
