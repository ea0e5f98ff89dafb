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
#include <filesystem>
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

// To a new file each time.
template <typename Write>
void SaveNew(benchmark::State& state, Write write) {
  const C_SoundPtr sound = longsounds::Pcm();
  const C_BenchFile file;
  for ([[maybe_unused]] auto iteration : state) {
    write(*sound, file);
    state.PauseTiming();
    std::filesystem::remove(file.Path());
    state.ResumeTiming();
  }
  CountBytes(state, longsounds::kBytes);
}

template <typename LookAt>
void Look(benchmark::State& state, LookAt lookAt) {
  const C_BenchFile& file = FileOf(longsounds::kKinds[0], false);
  for ([[maybe_unused]] auto iteration : state) lookAt(file.Path().c_str());
}

template <typename Run>
void Register(const std::string& strWork, const char* pszWho, Run run) {
  benchmark::RegisterBenchmark((strWork + "/" + pszWho).c_str(), run)
      ->Unit(benchmark::kMillisecond);
}

void RegisterOurs() {
  for (const S_Kind& kind : longsounds::kKinds) {
    if (kind.wTagOfOthers == 0) continue;
    Register(std::string("load/") + kind.pszName, "ours",
             [&kind](benchmark::State& state) { LoadByUs(state, kind); });
  }
  Register("save/16-bits", "ours", [](benchmark::State& state) {
    SaveNew(state, [](I_WavData& sound, const C_BenchFile& file) { Save(sound, file); });
  });
  Register("open/16-bits", "ours", [](benchmark::State& state) {
    Look(state, [](const char* pszPath) {
      C_WavFileFormat format;
      const C_WavFilePtr pFile(format.OpenWavFile(pszPath));
      Require(pFile != nullptr);
    });
  });
}

void Register(const S_Peer& peer) {
  for (const S_Kind& kind : longsounds::kKinds) {
    if (kind.wTagOfOthers == 0) continue;
    Register(std::string("load/") + kind.pszName, peer.pszName,
             [&](benchmark::State& state) { LoadByPeer(state, kind, peer); });
  }
  Register("save/16-bits", peer.pszName, [&peer](benchmark::State& state) {
    SaveNew(state, [&peer](I_WavData& sound, const C_BenchFile& file) {
      peer.pfnSave(SamplesOf(sound), file.Path().c_str());
    });
  });
  Register("open/16-bits", peer.pszName,
           [&peer](benchmark::State& state) { Look(state, peer.pfnLook); });
}

[[maybe_unused]] const bool g_bRegistered = [] {
  RegisterOurs();
  for (const S_Peer* pPeer : kPeers) Register(*pPeer);
  return true;
}();

}  // namespace
