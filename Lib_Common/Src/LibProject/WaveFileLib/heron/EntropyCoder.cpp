// SPDX-License-Identifier: Apache-2.0
#include "heron/EntropyCoder.h"

#include <utility>

namespace heron {
namespace {

struct S_Ending {
  std::uint64_t qwUp;  // what low rises by
  int nBytes;          // the top bytes of low that are written then
};

// The fewest bytes that lie in the interval whatever follows them. Eight always do.
S_Ending Ending(std::uint64_t qwLow, std::uint64_t qwRange) noexcept {
  int nBytes = 1;
  for (;; ++nBytes) {
    const std::uint64_t qwStep = std::uint64_t{1} << (64 - 8 * nBytes);
    const std::uint64_t qwUp = (0 - qwLow) & (qwStep - 1);
    if (nBytes == 8 || (qwRange >= qwStep && qwUp <= qwRange - qwStep)) return {qwUp, nBytes};
  }
}

}  // namespace

void C_EntropyEncoder::PutRaw() {
  for (int n = 0; n < 4; ++n) m_raw.push_back(static_cast<std::uint8_t>(m_qwRawBits >> 8 * n));
  m_qwRawBits >>= 32;
  m_nRawBits -= 32;
}

std::vector<std::uint8_t> C_EntropyEncoder::Finish() {
  const auto [qwUp, nBytes] = Ending(m_qwLow, m_qwRange);
  m_qwLow += qwUp;
  if (m_qwLow < qwUp) Carry();
  PutTop(nBytes);
  for (; m_nRawBits > 0; m_nRawBits -= 8, m_qwRawBits >>= 8) {
    m_raw.push_back(static_cast<std::uint8_t>(m_qwRawBits));
  }
  m_bytes.insert(m_bytes.end(), m_raw.rbegin(), m_raw.rend());
  return std::move(m_bytes);
}

// The sequence as a whole stays below 1, so there is always a byte that can take the carry.
void C_EntropyEncoder::Carry() noexcept {
  for (std::size_t n = m_bytes.size(); n > 0 && ++m_bytes[n - 1] == 0; --n) continue;
}

void C_EntropyEncoder::PutTop(int nBytes) {
  for (int n = 0; n < nBytes; ++n) {
    m_bytes.push_back(static_cast<std::uint8_t>(m_qwLow >> (56 - 8 * n)));
  }
}

C_EntropyDecoder::C_EntropyDecoder(std::span<const std::uint8_t> bytes) noexcept
    : m_pBytes(bytes.data()), m_nBytes(bytes.size()) {
  m_qwCode = std::uint64_t{Take4(0)} << 32 | Take4(4);
  m_nFront = kAhead;
}

std::uint32_t C_EntropyDecoder::TakeAtAnEnd(const std::uint8_t* pBytes, std::size_t nBytes,
                                            std::size_t nAt) noexcept {
  std::uint32_t nValue = 0;
  for (std::size_t n = 0; n < 4; ++n) {
    nValue = nValue << 8 | (nAt + n < nBytes ? pBytes[nAt + n] : std::uint8_t{0});
  }
  return nValue;
}

}  // namespace heron
