// SPDX-License-Identifier: Apache-2.0
//
// Our WAV files beside those of others, in one run: long sounds are loaded into 16-bit samples and
// saved, and a file is opened, its format read and closed. peers/Peers.h says who the others are
// and why this is a program of its own. It is built only where all of them are installed
// (scripts/install-deps.sh bench):
//
//   cmake --preset bench && cmake --build --preset bench --target peers_bench
//   build/bench/bin/peers_bench --benchmark_enable_random_interleaving --benchmark_repetitions=9
#include <benchmark/benchmark.h>

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <utility>

#include "BenchFiles.h"
#include "LongSounds.h"
#include "peers/Peers.h"

namespace {

using longsounds::S_Kind;
using peers::S_Peer;

constexpr const S_Peer* kPeers[] = {&peers::kSndfile, &peers::kSox, &peers::kFfmpeg};

std::span<const short> SamplesOf(I_WavData& sound) {
  return {static_cast<const short*>(static_cast<const void*>(sound.GetBuffer())),
          sound.GetBufferLength() / sizeof(short)};
}

// Files are made once and kept, because benchmarks run many times in turns.
const C_BenchFile& FileOf(const S_Kind& kind, bool bForOthers) {
  static std::map<std::pair<const S_Kind*, bool>, C_BenchFile> files;
  const std::pair key(&kind, bForOthers);
  const auto found = files.find(key);
  if (found != files.end()) return found->second;
  return files.try_emplace(key, longsounds::File(kind, bForOthers)).first->second;
}

void LoadByUs(benchmark::State& state, const S_Kind& kind) {
  const C_BenchFile& file = FileOf(kind, false);
  for ([[maybe_unused]] auto iteration : state) Load(file);
  CountBytes(state, longsounds::kBytes);
}
// Not all values are the same: our expansion of G.711 is not the usual one, and others limit loud
// ADPCM in other ways. But everybody decodes everything.
void LoadByPeer(benchmark::State& state, const S_Kind& kind, const S_Peer& peer) {
  const C_BenchFile& file = FileOf(kind, true);
  const std::size_t nLeast = longsounds::SamplesOfWholeBlocks(kind.blocks);
  for ([[maybe_unused]] auto iteration : state) {
    const peers::S_Samples samples = peer.pfnLoad(file.Path().c_str());
    benchmark::DoNotOptimize(samples.values.get());
    Require(samples.nCount >= nLeast);
  }
  CountBytes(state, longsounds::kBytes);
}

void SaveByUs(benchmark::State& state, const S_Kind& /*kind*/) {
  const C_SoundPtr sound = longsounds::Pcm();
  SaveToNewFiles(state, [&](const C_BenchFile& file) { Save(*sound, file); });
  CountBytes(state, longsounds::kBytes);
}
void SaveByPeer(benchmark::State& state, const S_Kind& /*kind*/, const S_Peer& peer) {
  const C_SoundPtr sound = longsounds::Pcm();
  SaveToNewFiles(state, [&](const C_BenchFile& file) {
    peer.pfnSave(SamplesOf(*sound), file.Path().c_str());
  });
  CountBytes(state, longsounds::kBytes);
}

void OpenByUs(benchmark::State& state, const S_Kind& kind) {
  const C_BenchFile& file = FileOf(kind, false);
  for ([[maybe_unused]] auto iteration : state) {
    C_WavFileFormat format;
    const C_WavFilePtr pFile(format.OpenWavFile(file.Path().c_str()));
    Require(pFile != nullptr);
  }
}
void OpenByPeer(benchmark::State& state, const S_Kind& kind, const S_Peer& peer) {
  const C_BenchFile& file = FileOf(kind, true);
  for ([[maybe_unused]] auto iteration : state) peer.pfnLook(file.Path().c_str());
}

struct S_Work {
  const char* pszName;
  decltype(&LoadByUs) pfnByUs;
  decltype(&LoadByPeer) pfnByPeer;
  bool bLinearOnly;
};
constexpr S_Work kWorks[] = {{"load/", LoadByUs, LoadByPeer, false},
                             {"save/", SaveByUs, SaveByPeer, true},
                             {"open/", OpenByUs, OpenByPeer, true}};

bool CanBeDone(const S_Work& work, const S_Kind& kind) {
  return work.bLinearOnly ? kind.blocks.wTag == WAVE_TAG_PCM : kind.wTagOfOthers != 0;
}

[[maybe_unused]] const bool g_bRegistered = [] {
  for (const S_Work& work : kWorks) {
    for (const S_Kind& kind : longsounds::kKinds) {
      if (!CanBeDone(work, kind)) continue;
      const std::string strWork = std::string(work.pszName) + kind.pszName + "/";
      benchmark::RegisterBenchmark((strWork + "ours").c_str(), [&](benchmark::State& state) {
        work.pfnByUs(state, kind);
      })->Unit(benchmark::kMillisecond);
      for (const S_Peer* pPeer : kPeers) {
        benchmark::RegisterBenchmark(
            (strWork + pPeer->pszName).c_str(),
            [&work, &kind, pPeer](benchmark::State& state) { work.pfnByPeer(state, kind, *pPeer); })
            ->Unit(benchmark::kMillisecond);
      }
    }
  }
  return true;
}();

}  // namespace
