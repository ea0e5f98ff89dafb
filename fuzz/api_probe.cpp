// SPDX-License-Identifier: Apache-2.0
//
// Probes any first bytes. What the probe says must be what the reader does, and its text must be
// whole whatever room it gets.
//
//   scripts/fuzz.sh 60 api_probe
//
// Input: a whole file.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "Require.h"
#include "voxplay.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  voxplay_kind kind{};
  std::size_t cbText = 0;
  Require(voxplay_probe(pData, cbData, &kind, sizeof kind, nullptr, 0, &cbText) == VOXPLAY_OK);
  std::vector<char> text(cbText + 1, 'x');
  voxplay_kind again{};
  Require(voxplay_probe(pData, cbData, &again, sizeof again, text.data(), text.size(), &cbText) ==
          VOXPLAY_OK);
  Require(std::memcmp(&kind, &again, sizeof kind) == 0);
  Require(cbText + 1 == text.size() && std::strlen(text.data()) == cbText && cbText > 0);
  const std::size_t cbShort = cbText / 2;
  std::vector<char> part(cbShort + 1);
  Require(voxplay_probe(pData, cbData, &kind, sizeof kind, part.data(), part.size(), nullptr) ==
          VOXPLAY_OK);
  Require(std::string(part.data()) == std::string(text.data(), cbShort));

  voxplay_reader* const pReader = voxplay_reader_new();
  if (voxplay_reader_open_memory(pReader, pData, cbData, 0) == VOXPLAY_OK) {
    voxplay_info info{};
    Require(voxplay_reader_info(pReader, &info, sizeof info) == VOXPLAY_OK);
    Require(kind.container == info.container);
    Require(kind.supported == 1 || kind.codec == VOXPLAY_CODEC_NONE);
  }
  voxplay_reader_free(pReader);
  return 0;
}
