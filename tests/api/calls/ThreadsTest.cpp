// SPDX-License-Identifier: Apache-2.0
//
// Eight threads at once, each with objects of its own, and all kinds of files. scripts/races.sh
// runs it under the thread sanitizer.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "PublicSounds.h"
#include "ReadKinds.h"

namespace {

struct S_Made {
  std::vector<std::uint8_t> bytes;
  std::vector<std::int16_t> decoded;
};

S_Made Make(const S_PublicKind& kind) {
  S_Made made{SoundBytes(kind, 2000), {}};
  voxplay::Reader reader(AsBytes(made.bytes), kind.dwReadFlags);
  made.decoded = ReadRest(reader, 333);
  return made;
}

// A stream of frames through a pair of coders; a number that depends on every sample.
std::uint32_t CodeFrames() {
  voxplay::kestrel::Encoder encoder(24000);
  voxplay::kestrel::Decoder decoder(24000);
  const auto samples = PublicSamples(VOXPLAY_KESTREL_FRAME * 20);
  std::array<std::uint16_t, VOXPLAY_KESTREL_MAX_WORDS> words{};
  std::array<std::int16_t, VOXPLAY_KESTREL_FRAME> decoded{};
  std::uint32_t dwSum = 0;
  for (std::size_t n = 0; n < 20; ++n) {
    const std::span<const std::int16_t> all(samples);
    encoder.encode(all.subspan(n * VOXPLAY_KESTREL_FRAME).first<VOXPLAY_KESTREL_FRAME>(), words);
    decoder.decode(words, decoded);
    for (const int nSample : decoded) dwSum = dwSum * 31 + static_cast<std::uint32_t>(nSample);
  }
  return dwSum;
}

TEST(ThreadsTest, EightThreadsWithTheirOwnObjects_GiveTheSame) {
  std::map<std::string, S_Made> expected;
  for (const auto& kind : ReadKinds()) expected[kind.strName] = Make(kind);
  const std::uint32_t dwFrames = CodeFrames();
  std::atomic<int> nWrong = 0;
  const auto fnWork = [&] {
    for (int n = 0; n < 3; ++n) {
      for (const auto& kind : ReadKinds()) {
        const S_Made made = Make(kind);
        const S_Made& wanted = expected.at(kind.strName);
        if (made.bytes != wanted.bytes || made.decoded != wanted.decoded) ++nWrong;
      }
      if (CodeFrames() != dwFrames) ++nWrong;
    }
  };
  std::vector<std::thread> threads;
  for (int n = 0; n < 8; ++n) threads.emplace_back(fnWork);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(nWrong, 0);
}

}  // namespace
