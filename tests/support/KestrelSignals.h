// SPDX-License-Identifier: Apache-2.0
//
// Signals that look for limits in a frame coder, and damage to its frames. They are the same in
// every run.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <span>

#include "kestrel/Frame.h"

namespace kestrel::test {

// A frame of a kind that is likely to find a limit.
class C_Signals {
 public:
  explicit C_Signals(unsigned int nSeed) : m_random(nSeed) {}

  unsigned int Below(unsigned int nLimit) { return static_cast<unsigned int>(m_random() % nLimit); }
  std::int16_t Sample() {
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(m_random()));
  }

  S_Frame Next() {
    const unsigned int nKind = Below(6);
    const unsigned int nShift = Below(16);
    const unsigned int nPeriod = 1 + Below(40);
    S_Frame frame;
    for (std::size_t n = 0; n < frame.size(); ++n) {
      const auto nQuiet = static_cast<std::int16_t>(Sample() >> nShift);
      switch (nKind) {
        case 0:
          frame[n] = nQuiet;
          break;
        case 1:
          frame[n] = Sample() < 0 ? std::int16_t{-32768} : std::int16_t{32767};
          break;
        case 2:
          frame[n] = Below(50) == 0 ? Sample() : std::int16_t{0};
          break;
        case 3:
          frame[n] = n / nPeriod % 2 == 0 ? std::int16_t{32767} : std::int16_t{-32768};
          break;
        case 4:
          frame[n] = n < 40 ? Sample() : nQuiet;
          break;
        default:
          frame[n] = static_cast<std::int16_t>(n == nPeriod ? -32768 : 0);
      }
    }
    return frame;
  }

 private:
  std::mt19937 m_random;
};

// What a line may do to a frame: nothing, other words at its end, a wrong bit, or noise.
inline void Damage(C_Signals& signals, std::span<std::uint16_t> words) {
  const auto anyWord = [&] { return static_cast<std::uint16_t>(signals.Sample()); };
  const auto nAt = signals.Below(static_cast<unsigned int>(words.size()));
  const auto rest = words.subspan(nAt);
  switch (signals.Below(8)) {
    case 0:
      std::generate(words.begin(), words.end(), anyWord);
      break;
    case 1:
      words[nAt] = static_cast<std::uint16_t>(words[nAt] ^ 1u << signals.Below(16));
      break;
    case 2:
      std::generate(rest.begin(), rest.end(), anyWord);
      break;
    case 3:
      std::fill(rest.begin(), rest.end(), std::uint16_t{0xFFFF});
      break;
    default:
      break;
  }
}

}  // namespace kestrel::test
