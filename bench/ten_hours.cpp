// SPDX-License-Identifier: Apache-2.0
//
// Writes and reads long sounds through the public interface, each in a process of its own, and
// prints the time and the most memory that the process had. The memory must not grow with the
// length.
//
//   ten_hours FOLDER [HOURS]     ten hours unless given; FOLDER gets one file at a time
//
// "file" is a file by name, "functions" is the same file through functions of the program.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "voxplay.hpp"

namespace {

constexpr std::size_t kPiece = 16000;

struct S_Kind {
  const char* pszName;
  voxplay_container eContainer;
  voxplay_codec eCodec;
  std::uint32_t dwBits;
};
constexpr std::array kKinds = {
    S_Kind{"WAV 16", VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16},
    S_Kind{"Kestrel", VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL, 0},
    S_Kind{"Heron 4", VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 4},
};

// A hum with noise.
std::vector<std::int16_t> Piece() {
  std::vector<std::int16_t> samples(kPiece);
  std::uint32_t dwNoise = 1;
  for (std::size_t n = 0; n < samples.size(); ++n) {
    dwNoise = dwNoise * 1664525U + 1013904223U;
    const int nHum = static_cast<int>(n % 160) * 60 - 4800;
    samples[n] = static_cast<std::int16_t>(nHum + static_cast<int>(dwNoise >> 22));
  }
  return samples;
}

void Write(const std::string& strPath, const S_Kind& kind, std::size_t nSeconds) {
  voxplay::Format format{};
  format.container = static_cast<std::uint32_t>(kind.eContainer);
  format.codec = static_cast<std::uint32_t>(kind.eCodec);
  format.sample_rate = 16000;
  format.channels = 1;
  format.bits_per_sample = kind.dwBits;
  const auto samples = Piece();
  voxplay::Writer writer(strPath, format);
  for (std::size_t n = 0; n < nSeconds; ++n) writer.write(std::span(samples));
  writer.finish();
}

void ReadAll(voxplay::Reader& reader) {
  std::vector<std::int16_t> samples(kPiece);
  while (reader.read(std::span(samples)) != 0) {
  }
}

void ReadFile(const std::string& strPath) {
  voxplay::Reader reader(strPath);
  ReadAll(reader);
}

void ReadByFunctions(const std::string& strPath) {
  std::FILE* const pFile = std::fopen(strPath.c_str(), "rb");
  if (pFile == nullptr) std::abort();
  voxplay_input input{};
  input.user = pFile;
  input.read = [](void* pUser, void* pBytes, std::size_t cbBytes) {
    auto* const pInput = static_cast<std::FILE*>(pUser);
    const std::size_t cbRead = std::fread(pBytes, 1, cbBytes, pInput);
    return std::ferror(pInput) != 0 ? -1 : static_cast<std::int64_t>(cbRead);
  };
  input.seek = [](void* pUser, std::uint64_t qwPosition) {
    return fseeko(static_cast<std::FILE*>(pUser), static_cast<off_t>(qwPosition), SEEK_SET);
  };
  voxplay::Reader reader(input);
  ReadAll(reader);
  std::fclose(pFile);
}

// Does the work in a process of its own.
void Measure(const S_Kind& kind, const char* pszWork, const std::function<void()>& fnWork) {
  const auto begin = std::chrono::steady_clock::now();
  std::fflush(stdout);
  const pid_t nChild = fork();
  if (nChild == 0) {
    try {
      fnWork();
      _exit(EXIT_SUCCESS);
    } catch (const std::exception& error) {
      std::fprintf(stderr, "ten_hours: %s\n", error.what());
      _exit(EXIT_FAILURE);
    }
  }
  int nStatus = 0;
  rusage usage{};
  if (wait4(nChild, &nStatus, 0, &usage) != nChild || nStatus != 0) std::exit(EXIT_FAILURE);
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
  std::printf("%-8s %-16s %8.2f s %8.2f MiB\n", kind.pszName, pszWork, taken.count(),
              static_cast<double>(usage.ru_maxrss) / 1024.0);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fputs("usage: ten_hours FOLDER [HOURS]\n", stderr);
    return EXIT_FAILURE;
  }
  const std::string strPath = std::string(argv[1]) + "/ten_hours";
  const std::size_t nSeconds = (argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 10) * 3600;
  for (const S_Kind& kind : kKinds) {
    Measure(kind, "write", [&] { Write(strPath, kind, nSeconds); });
    Measure(kind, "read, file", [&] { ReadFile(strPath); });
    Measure(kind, "read, functions", [&] { ReadByFunctions(strPath); });
    std::remove(strPath.c_str());
  }
  return EXIT_SUCCESS;
}
