// SPDX-License-Identifier: Apache-2.0
//
// Sounds for tests, made from sample values and read back as sample values.
#pragma once

#include <cstddef>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

#include "ExampleSound.h"
#include "sound/WavData.h"

struct S_Format {
  unsigned short wChannels = 1;
  unsigned short wBits = 16;
  unsigned short wStoreBits = 16;
  bool bSigned = true;
  unsigned int dwRate = 16000;
};

using C_Values = std::vector<int>;

// Numbers that are the same in every run.
class C_Random {
 public:
  explicit C_Random(unsigned int dwSeed) : m_engine(dwSeed) {}
  unsigned int operator()() { return static_cast<unsigned int>(m_engine()); }

 private:
  std::mt19937 m_engine;
};

// The interleaved values as the format stores them, not clipped.
inline std::vector<unsigned char> PcmBytes(const C_Values& values, const S_Format& format) {
  std::vector<unsigned char> pcm;
  const unsigned int dwOffset = format.bSigned ? 0U : 1U << (format.wBits - 1U);
  for (const int nValue : values) {
    const unsigned int dwCode = (static_cast<unsigned int>(nValue) + dwOffset) &
                                (format.wBits == 32 ? ~0U : (1U << format.wBits) - 1U);
    for (unsigned int i = 0; i < format.wStoreBits / 8U; ++i) {
      pcm.push_back(static_cast<unsigned char>(dwCode >> (8U * i)));
    }
  }
  return pcm;
}

// Replaces format and samples of a sound.
inline void SetSound(I_WavData& sound, const C_Values& values, const S_Format& format = {}) {
  const auto pcm = PcmBytes(values, format);
  sound.SetWavInfoData(format.dwRate, 0, format.wChannels, format.wBits, format.wStoreBits,
                       format.bSigned);
  unsigned char* pbyBuffer = sound.AllocBuffer(static_cast<unsigned int>(pcm.size()));
  if (!pcm.empty()) std::memcpy(pbyBuffer, pcm.data(), pcm.size());
}

inline std::vector<unsigned char> BytesOf(I_WavData& sound) {
  const unsigned char* pbyBuffer = sound.GetBuffer();
  return pbyBuffer == nullptr
             ? std::vector<unsigned char>{}
             : std::vector<unsigned char>(pbyBuffer, pbyBuffer + sound.GetBufferLength());
}

// All values of a sound, interleaved, taken from its bytes without the sound's own accessors.
inline C_Values ValuesOf(I_WavData& sound) {
  const auto pcm = BytesOf(sound);
  I_WavInfo* pInfo = sound.GetWavInfo();
  const std::size_t cbSample = pInfo->GetStoreBitsPerSample() / 8U;
  const long long llHalf = 1LL << (pInfo->GetBitsPerSample() - 1);
  C_Values values;
  for (std::size_t nAt = 0; nAt + cbSample <= pcm.size(); nAt += cbSample) {
    long long llCode = 0;
    for (std::size_t i = cbSample; i > 0; --i) llCode = llCode * 256 + pcm[nAt + i - 1];
    if (!pInfo->IsValueSigned()) {
      llCode -= llHalf;
    } else if (llCode >= llHalf) {
      llCode -= 2 * llHalf;
    }
    values.push_back(static_cast<int>(llCode));
  }
  return values;
}

// The (start, end) pairs of a list of segments or regions.
template <typename List>
std::vector<std::pair<unsigned int, unsigned int>> RangesOf(const List* pList) {
  std::vector<std::pair<unsigned int, unsigned int>> ranges;
  for (int i = 0; i < pList->GetSize(); ++i) {
    auto* pItem = pList->GetItemByIndex(i);
    ranges.emplace_back(pItem->GetStartSamplePos(), pItem->GetEndSamplePos());
  }
  return ranges;
}
