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

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <span>
#include <string>

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

// Everybody must have decoded everything, or times would say nothing. The last block of a file need
// not be whole, and not everybody decodes it then. Values differ: our expansion of G.711 is not the
// usual one, and others limit loud ADPCM in other ways.
void RequireAllSamples(const S_Kind& kind, const S_Peer& peer, const C_BenchFile& file) {
  const C_BenchFile ourFile(longsounds::File(kind, false));
  C_WavFileFormat format;
  const C_WavFilePtr pOurs(
      format.CreateWavFile(ourFile.Path().c_str(), true, true, nullptr, nullptr));
  Require(pOurs != nullptr);
  const std::size_t nOurs = SamplesOf(*pOurs->GetWavData()).size();
  const std::size_t nTheirs = peer.pfnLoad(file.Path().c_str()).nCount;
  const auto [nLess, nMore] = std::minmax(nOurs, nTheirs);
  Require(nMore - nLess <= kind.blocks.wSamplesPerBlock);
}

void LoadByUs(benchmark::State& state, const S_Kind& kind) {
  const C_BenchFile file(longsounds::File(kind, false));
  for ([[maybe_unused]] auto iteration : state) Load(file);
  CountBytes(state, longsounds::kBytes);
}
void LoadByPeer(benchmark::State& state, const S_Kind& kind, const S_Peer& peer) {
  const C_BenchFile file(longsounds::File(kind, true));
  RequireAllSamples(kind, peer, file);
  for ([[maybe_unused]] auto iteration : state) {
    benchmark::DoNotOptimize(peer.pfnLoad(file.Path().c_str()).values.get());
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
  const C_BenchFile file(longsounds::File(longsounds::kKinds[0], false));
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
