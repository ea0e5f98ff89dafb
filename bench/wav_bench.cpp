// SPDX-License-Identifier: Apache-2.0
//
// How fast WAV files load and save, and what annotations cost. Where libsndfile is installed, it
// does the same beside us. Loading times are those of files that are in memory already.
//
//   cmake --preset bench && cmake --build --preset bench --target wav_bench
//   build/bench/bin/wav_bench --benchmark_enable_random_interleaving --benchmark_repetitions=9
//
// The time of another run says little, because both sides depend on what else the machine does:
// compare what stands side by side.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>
#ifdef VOXPLAY_BENCH_SNDFILE
#include <sndfile.h>
#endif

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "CompressedBytes.h"
#include "ExampleSound.h"
#include "WavFileFormat.h"
#include "file/WavFile.h"

namespace {

constexpr std::size_t kFramesPerSecond = 16000;
constexpr std::size_t kLong = 100'000'000;  // bytes of PCM

// Files in memory, so that the library is measured and not a disk.
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

void Save(I_WavData& sound, const C_BenchFile& file) {
  if (!sound.Convert(AUDIO_FILE_WAVE, file.Path().c_str(), true, false, nullptr, false, 0)) {
    std::abort();
  }
}

void Load(const std::string& strPath) {
  C_WavFileFormat format;
  I_WavFile* pIFile = format.CreateWavFile(strPath.c_str(), true, true, nullptr, nullptr);
  if (pIFile == nullptr) std::abort();
  benchmark::DoNotOptimize(pIFile->GetWavDataBuffer());
  pIFile->Release();
}

#ifdef VOXPLAY_BENCH_SNDFILE
void LoadWithSndfile(const std::string& strPath) {
  SF_INFO info{};
  SNDFILE* const pFile = sf_open(strPath.c_str(), SFM_READ, &info);
  if (pFile == nullptr) std::abort();
  const auto nSamples = static_cast<std::size_t>(info.frames * info.channels);
  auto* const pSamples = static_cast<short*>(std::malloc(nSamples * sizeof(short)));
  benchmark::DoNotOptimize(sf_read_short(pFile, pSamples, static_cast<sf_count_t>(nSamples)));
  sf_close(pFile);
  std::free(pSamples);
}
#endif

void CountBytes(benchmark::State& state, std::size_t cb) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(cb));
}

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
  for ([[maybe_unused]] auto iteration : state) Load(file.Path());
  CountBytes(state, sound->GetBufferLength());
}
BENCHMARK(WaveLoad_Seconds)->Arg(1)->Arg(60);

// ---- long sounds beside others

// Codes that keep a sound of each kind of ADPCM about as loud as it is. Sounds that clip all the
// time would take another way.
constexpr std::array<std::uint8_t, 16> kMsCodes = {2, 14, 3, 13, 15, 4, 12, 4,
                                                   1, 14, 2, 13, 14, 4, 12, 12};
constexpr std::array<std::uint8_t, 16> kImaCodes = {1, 9, 2, 10, 3, 11, 4,  12,
                                                    0, 8, 1, 9,  4, 12, 10, 4};

// Compressed bytes of a long sound.
C_Bytes Encoded(const S_Blocks& blocks) {
  const bool bG711 = blocks.wTag == WAVE_TAG_ALAW || blocks.wTag == WAVE_TAG_MULAW;
  C_Bytes bytes(bG711 ? kLong / 2 : kLong / 4);
  std::uint32_t dwNoise = 1;
  const auto& codes = blocks.wTag == WAVE_TAG_MS_ADPCM ? kMsCodes : kImaCodes;
  for (std::uint8_t& by : bytes) {
    dwNoise = dwNoise * 1664525 + 1013904223;
    by = static_cast<std::uint8_t>(bG711 ? dwNoise >> 24
                                         : codes[dwNoise >> 28] << 4U | codes[dwNoise >> 24 & 15U]);
  }
  if (bG711) return bytes;
  for (std::size_t i = 0; i + blocks.wBlockAlign <= bytes.size(); i += blocks.wBlockAlign) {
    for (std::size_t k = 0; k < 8; ++k) bytes[i + k] = 0;
    bytes[i + (blocks.wTag == WAVE_TAG_MS_ADPCM ? 1 : 2)] = 60;
  }
  return bytes;
}

// The sounds that are compared: linear, both G.711 laws, and both kinds of ADPCM.
C_Bytes LongFile(int nTag, bool bForOthers) {
  const auto wTag = static_cast<std::uint16_t>(nTag);
  if (wTag == WAVE_TAG_PCM) {
    return C_RiffBytes("WAVE")
        .Chunk("fmt ", FmtBytes(1, 1, 16000, 16))
        .Chunk("data", C_Bytes(kLong, 3))
        .Take();
  }
  S_Blocks blocks{wTag, 1, 1, 0, 8};
  if (wTag == WAVE_TAG_DVI_ADPCM) blocks = {wTag, 1, 256, 505, 4};
  if (wTag == WAVE_TAG_MS_ADPCM) blocks = {wTag, 1, 256, 500, 4};
  const C_Bytes encoded = Encoded(blocks);
  // Others know DVI ADPCM by its registered tag.
  if (bForOthers && wTag == WAVE_TAG_DVI_ADPCM) blocks.wTag = 0x11;
  C_RiffBytes riff("WAVE");
  const C_Bytes fmt =
      blocks.wTag == 0x11
          ? Join({U16(0x11), U16(1), U32(8000), U32(8000), U16(256), U16(4), U16(2), U16(505)})
          : BlockFmt(blocks);
  return riff.Chunk("fmt ", fmt).Chunk("data", encoded).Take();
}

void LongLoad_Tag(benchmark::State& state) {
  const C_BenchFile file(LongFile(static_cast<int>(state.range(0)), false));
  for ([[maybe_unused]] auto iteration : state) Load(file.Path());
  CountBytes(state, kLong);
}
BENCHMARK(LongLoad_Tag)->Arg(1)->Arg(2)->Arg(6)->Arg(7)->Arg(11)->Unit(benchmark::kMillisecond);

#ifdef VOXPLAY_BENCH_SNDFILE
void LongLoadSndfile_Tag(benchmark::State& state) {
  const C_BenchFile file(LongFile(static_cast<int>(state.range(0)), true));
  for ([[maybe_unused]] auto iteration : state) LoadWithSndfile(file.Path());
  CountBytes(state, kLong);
}
BENCHMARK(LongLoadSndfile_Tag)
    ->Arg(1)
    ->Arg(2)
    ->Arg(6)
    ->Arg(7)
    ->Arg(11)
    ->Unit(benchmark::kMillisecond);
#endif

C_SoundPtr LongSound() {
  C_SoundPtr sound(new C_WavData);
  unsigned char* const pbyPcm = sound->AllocBuffer(kLong);
  for (std::size_t i = 0; i < kLong; ++i) pbyPcm[i] = static_cast<unsigned char>(i * 31);
  sound->SetWavInfoData(16000, kLong, 1, 16, 16, true);
  return sound;
}

// To a new file, which is not brought to a disk.
void LongSave(benchmark::State& state) {
  const C_SoundPtr sound = LongSound();
  const C_BenchFile file{};
  for ([[maybe_unused]] auto iteration : state) {
    Save(*sound, file);
    state.PauseTiming();
    std::filesystem::remove(file.Path());
    state.ResumeTiming();
  }
  CountBytes(state, kLong);
}
BENCHMARK(LongSave)->Unit(benchmark::kMillisecond);

// The same bytes at the same place, in one write. At the beginning of a file they would be written
// faster, because the system copies fastest between addresses that are aligned alike.
void LongSaveWrite(benchmark::State& state) {
  const C_SoundPtr sound = LongSound();
  const C_BenchFile file{};
  for ([[maybe_unused]] auto iteration : state) {
    const int nDescriptor = open(file.Path().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    constexpr off_t kHeader = 44;
    if (pwrite(nDescriptor, sound->GetBuffer(), kLong, kHeader) != static_cast<ssize_t>(kLong)) {
      std::abort();
    }
    close(nDescriptor);
    state.PauseTiming();
    std::filesystem::remove(file.Path());
    state.ResumeTiming();
  }
  CountBytes(state, kLong);
}
BENCHMARK(LongSaveWrite)->Unit(benchmark::kMillisecond);

// ---- many short files

void LookAt_Factory(benchmark::State& state) {
  const C_BenchFile file(LongFile(WAVE_TAG_PCM, false));
  const std::string& strPath = file.Path();
  for ([[maybe_unused]] auto iteration : state) {
    C_WavFileFormat format;
    format.OpenWavFile(strPath.c_str())->Release();
  }
}
BENCHMARK(LookAt_Factory);

void LookAt_File(benchmark::State& state) {
  const C_BenchFile file(LongFile(WAVE_TAG_PCM, false));
  const std::string& strPath = file.Path();
  for ([[maybe_unused]] auto iteration : state) {
    C_WavFile wavFile;
    if (!wavFile.OpenByName(strPath.c_str())) std::abort();
  }
}
BENCHMARK(LookAt_File);

// What the system alone takes for it.
void LookAt_System(benchmark::State& state) {
  const C_BenchFile file(LongFile(WAVE_TAG_PCM, false));
  const std::string& strPath = file.Path();
  std::vector<char> bytes(4096);
  for ([[maybe_unused]] auto iteration : state) {
    const int nDescriptor = open(strPath.c_str(), O_RDONLY);
    if (pread(nDescriptor, bytes.data(), bytes.size(), 0) <= 0) std::abort();
    close(nDescriptor);
  }
}
BENCHMARK(LookAt_System);

// Time per event must not depend on how many there are.
void WaveLoad_Events(benchmark::State& state) {
  const C_SoundPtr sound = ExampleSound({}, kFramesPerSecond);
  for (unsigned int i = 0; i < static_cast<unsigned int>(state.range(0)); ++i) {
    sound->GetEventTagMgr()->AddEventBySamplePos(1, 2, i, "", 0);
  }
  const C_BenchFile file{};
  Save(*sound, file);
  for ([[maybe_unused]] auto iteration : state) Load(file.Path());
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(WaveLoad_Events)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
