// SPDX-License-Identifier: Apache-2.0
//
// Compares the ways in which this machine can encode and decode a frame with the plain way.
//
//   fast_routines        prints the names of the ways, and fails at the first difference
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "KestrelSignals.h"
#include "kestrel/Routines.h"

namespace {

using kestrel::S_Routines;

constexpr int kFramesPerRate = 60;

void Fail(const S_Routines& routines, const char* pszWhat, std::uint32_t dwRate, int nFrame) {
  std::printf("%s: frame %d at %u bit/s is %s in another way\n", routines.pszName, nFrame, dwRate,
              pszWhat);
  std::exit(1);
}

void Compare(const S_Routines& routines, const S_Routines& plain, std::uint32_t dwRate) {
  kestrel::test::C_Signals signals(dwRate);
  const kestrel::S_Configuration configuration = kestrel::Configure(dwRate);
  kestrel::S_EncoderState encoder;
  kestrel::S_EncoderState plainEncoder;
  kestrel::S_DecoderState decoder;
  kestrel::S_DecoderState plainDecoder;
  std::vector<std::uint16_t> words(static_cast<std::size_t>(configuration.nWordsPerFrame));
  std::vector<std::uint16_t> want(words.size());
  for (int n = 0; n < kFramesPerRate; ++n) {
    const kestrel::S_Frame samples = signals.Next();
    routines.pfnEncode(encoder, configuration, samples, words);
    plain.pfnEncode(plainEncoder, configuration, samples, want);
    if (words != want) Fail(routines, "encoded", dwRate, n);
    kestrel::test::Damage(signals, words);
    kestrel::S_Frame decoded;
    kestrel::S_Frame wanted;
    routines.pfnDecode(decoder, configuration, words, decoded);
    plain.pfnDecode(plainDecoder, configuration, words, wanted);
    if (decoded != wanted) Fail(routines, "decoded", dwRate, n);
  }
}

}  // namespace

int main() {
  const auto all = kestrel::AllRoutines();
  for (const S_Routines& routines : all.first(all.size() - 1)) {
    for (std::uint32_t dwRate = 4800; dwRate <= 32000; dwRate += kestrel::kRateStep) {
      Compare(routines, all.back(), dwRate);
    }
    std::printf("%s\n", routines.pszName);
  }
  return 0;
}
