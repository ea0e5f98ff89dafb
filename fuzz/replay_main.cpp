// SPDX-License-Identifier: Apache-2.0
//
// Runs a fuzzer on inputs that are there already, without libFuzzer, so that every build with every
// compiler does it.
//
//   build/dev/bin/fuzz_replay FUZZER PATH...     packs, files, and folders of files
//
// An input for which something does not hold stops the program, which then names the input.
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "CorpusPack.h"

using PFN_Fuzzer = int (*)(const std::uint8_t* pData, std::size_t cbData);

#define FUZZER(NAME) extern "C" int Fuzz_##NAME(const std::uint8_t* pData, std::size_t cbData);
#include <FuzzerList.inc>
#undef FUZZER

namespace {

namespace fs = std::filesystem;

struct S_Fuzzer {
  const char* pszName;
  PFN_Fuzzer pfnRun;
};
constexpr S_Fuzzer kFuzzers[] = {
#define FUZZER(NAME) {#NAME, &Fuzz_##NAME},
#include <FuzzerList.inc>
#undef FUZZER
};

// What runs now, for the message when it fails.
char g_szInput[512] = "";

extern "C" void NameInput(int /*nSignal*/) {
  static_cast<void>(!write(STDERR_FILENO, g_szInput, std::strlen(g_szInput)));
}

void Run(const S_Fuzzer& fuzzer, const C_InputBytes& input, const std::string& strName) {
  std::snprintf(g_szInput, sizeof g_szInput, "fuzz_replay: %s fails on %s\n", fuzzer.pszName,
                strName.c_str());
  fuzzer.pfnRun(input.data(), input.size());
}

// The number of inputs; -1 for a path that cannot be read.
int RunAll(const S_Fuzzer& fuzzer, const fs::path& path) {
  if (fs::is_directory(path)) {
    int nInputs = 0;
    for (const auto& entry : fs::directory_iterator(path)) {
      const int nMore = RunAll(fuzzer, entry.path());
      if (nMore < 0) return -1;
      nInputs += nMore;
    }
    return nInputs;
  }
  if (path.extension() == ".pack") {
    const auto inputs = ReadPack(path);
    if (!inputs) return -1;
    for (std::size_t i = 0; i < inputs->size(); ++i) {
      Run(fuzzer, (*inputs)[i], path.string() + " number " + std::to_string(i));
    }
    return static_cast<int>(inputs->size());
  }
  const auto input = ReadWholeFile(path);
  if (!input) return -1;
  Run(fuzzer, *input, path.string());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  const auto* const pFuzzer = std::ranges::find_if(kFuzzers, [&](const S_Fuzzer& fuzzer) {
    return argc > 2 && std::strcmp(fuzzer.pszName, argv[1]) == 0;
  });
  if (pFuzzer == std::end(kFuzzers)) {
    static_cast<void>(std::fputs("usage: fuzz_replay FUZZER PATH...\n", stderr));
    return EXIT_FAILURE;
  }
  static_cast<void>(std::signal(SIGABRT, &NameInput));
  int nInputs = 0;
  for (int i = 2; i < argc; ++i) {
    // A fuzzer without findings has no folder of them.
    if (!fs::exists(argv[i]) && fs::path(argv[i]).parent_path().filename() == "findings") continue;
    const int nMore = RunAll(*pFuzzer, argv[i]);
    if (nMore < 0) {
      std::fprintf(stderr, "fuzz_replay: cannot read %s\n", argv[i]);
      return EXIT_FAILURE;
    }
    nInputs += nMore;
  }
  std::printf("%s: %d inputs\n", pFuzzer->pszName, nInputs);
  return nInputs > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
