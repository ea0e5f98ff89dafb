// SPDX-License-Identifier: Apache-2.0
//
// Joins the files of a folder in one pack, and splits a pack into files again.
//
//   build/fuzz/bin/corpus_pack join FOLDER PACK
//   build/fuzz/bin/corpus_pack split PACK FOLDER
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "CorpusPack.h"

namespace {

namespace fs = std::filesystem;

// Shorter inputs come first, and equal lengths in order of their bytes, so that the same inputs
// always make the same pack.
bool Join(const fs::path& folder, const fs::path& pack) {
  std::vector<C_InputBytes> inputs;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const auto bytes = ReadWholeFile(entry.path());
    if (!bytes) return false;
    inputs.push_back(*bytes);
  }
  std::ranges::sort(inputs, [](const C_InputBytes& a, const C_InputBytes& b) {
    return a.size() != b.size() ? a.size() < b.size() : a < b;
  });
  return WritePack(pack, inputs);
}

bool Split(const fs::path& pack, const fs::path& folder) {
  const auto inputs = ReadPack(pack);
  if (!inputs) return false;
  fs::create_directories(folder);
  for (std::size_t i = 0; i < inputs->size(); ++i) {
    const C_InputBytes& input = (*inputs)[i];
    std::ofstream file(folder / ("pack" + std::to_string(i)), std::ios::binary);
    file.write(reinterpret_cast<const char*>(input.data()),
               static_cast<std::streamsize>(input.size()));
    if (!file.flush()) return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string strMode = argc == 4 ? argv[1] : "";
  if (strMode != "join" && strMode != "split") {
    static_cast<void>(
        std::fputs("usage: corpus_pack join FOLDER PACK | split PACK FOLDER\n", stderr));
    return EXIT_FAILURE;
  }
  const bool bDone = strMode == "join" ? Join(argv[2], argv[3]) : Split(argv[2], argv[3]);
  return bDone ? EXIT_SUCCESS : EXIT_FAILURE;
}
