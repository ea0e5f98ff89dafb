// SPDX-License-Identifier: Apache-2.0
#include "codec/HeronDots.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

void C_HeronDots::Advance(unsigned int dwDone, unsigned int dwTotal) {
  const std::uint64_t qwDots = std::uint64_t{kDots} * std::min(dwDone, dwTotal) / dwTotal;
  GrowTo(static_cast<unsigned int>(qwDots));
}

void C_HeronDots::End(bool bDone) {
  GrowTo(kDots);
  if (m_bVerbose) static_cast<void>(std::fputs(bDone ? "ok" : "fail", stdout));
}

void C_HeronDots::GrowTo(unsigned int dwDots) {
  if (!m_bVerbose || dwDots <= m_dwDots) return;
  for (; m_dwDots < dwDots; ++m_dwDots) static_cast<void>(std::fputc('.', stdout));
  static_cast<void>(std::fflush(stdout));
}
