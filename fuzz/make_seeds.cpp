// SPDX-License-Identifier: Apache-2.0
//
// Makes the inputs that the fuzzers start from, with the library's own writers, so that they begin
// deep inside the formats. Each fuzzer has one folder. scripts/fuzz.sh runs this program; by hand:
//
//   build/fuzz/bin/make_seeds build/fuzz/seeds
#include <cstdio>
#include <cstdlib>

#include "Seeds.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    static_cast<void>(std::fputs("usage: make_seeds FOLDER\n", stderr));
    return EXIT_FAILURE;
  }
  C_Seeds seeds(argv[1]);
  AddFiles(seeds);
  AddCodecs(seeds);
  AddOperations(seeds);
  AddApi(seeds);
#ifdef VOXPLAY_AUDIO_SEEDS
  AddAudioFiles(seeds);
#endif
  return EXIT_SUCCESS;
}
