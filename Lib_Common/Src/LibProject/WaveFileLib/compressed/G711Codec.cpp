// SPDX-License-Identifier: Apache-2.0
#include "compressed/G711Codec.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "CheckedSize.h"
#include "Processor.h"
#include "compressed/G711Avx2.h"
#include "compressed/G711Expansion.h"
#include "compressed/SampleBytes.h"

namespace {

using Values = std::array<std::int16_t, 256>;

template <typename Expand>
constexpr Values ValuesOf(Expand expand) {
  Values values{};
  for (unsigned int dwCode = 0; dwCode < values.size(); ++dwCode) {
    values[dwCode] = samplebytes::LittleEndian(expand(dwCode));
  }
  return values;
}

// A law in its two forms, of which the second one is faster.
struct S_Law {
  Values values;
  decltype(&g711::ExpandMuLawAvx2) pfnAvx2;
};
constexpr S_Law kMuLaw = {ValuesOf(g711::ExpandMuLaw), &g711::ExpandMuLawAvx2};
constexpr S_Law kALaw = {ValuesOf(g711::ExpandALaw), &g711::ExpandALawAvx2};

void LookUp(std::int16_t* pSamples, const std::uint8_t* pbyCodes, std::size_t nCodes,
            const Values& values) {
  // Eight at a time, because counting takes as long as looking up.
  constexpr std::size_t kAtOnce = 8;
  std::size_t i = 0;
  for (; nCodes - i >= kAtOnce; i += kAtOnce) {
    for (std::size_t k = i; k < i + kAtOnce; ++k) pSamples[k] = values[pbyCodes[k]];
  }
  for (; i < nCodes; ++i) pSamples[i] = values[pbyCodes[i]];
}

void Expand(const S_Law& law, const unsigned char* pbyEncoded, unsigned int dwEncodedBytes,
            short* pSamples, unsigned int dwCapacity) {
  if (pbyEncoded == nullptr || pSamples == nullptr) return;
  const std::size_t nCodes = std::min<std::size_t>(dwEncodedBytes, dwCapacity / sizeof(short));
  const bool bAvx2 = vcm::UsableInstructions() >= vcm::tagInstructions::kAvx2;
  const std::size_t nDone = bAvx2 ? law.pfnAvx2(pSamples, pbyEncoded, nCodes) : 0;
  LookUp(pSamples + nDone, pbyEncoded + nDone, nCodes - nDone, law.values);
}

}  // namespace

std::optional<unsigned int> C_G711Codec::GetDecodedSize(const C_WavFileCodecInfo& /*codecInfo*/,
                                                        unsigned int dwEncodedBytes) {
  return vcm::CheckedBytes(dwEncodedBytes, sizeof(short));
}

bool C_MuLawCodec::Decode(const C_WavFileCodecInfo& /*codecInfo*/, const unsigned char* pbyEncoded,
                          unsigned int dwEncodedBytes, short* pSamples, unsigned int dwCapacity) {
  Expand(kMuLaw, pbyEncoded, dwEncodedBytes, pSamples, dwCapacity);
  return true;
}

bool C_ALawCodec::Decode(const C_WavFileCodecInfo& /*codecInfo*/, const unsigned char* pbyEncoded,
                         unsigned int dwEncodedBytes, short* pSamples, unsigned int dwCapacity) {
  Expand(kALaw, pbyEncoded, dwEncodedBytes, pSamples, dwCapacity);
  return true;
}
