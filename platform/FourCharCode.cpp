// SPDX-License-Identifier: Apache-2.0
#include "FourCharCode.h"

#include <cstdio>

namespace {

// Byte 0 is the most significant one.
constexpr int ByteOf(UInt32 dwCode, int nByte) noexcept {
  return static_cast<int>((dwCode >> (24 - 8 * nByte)) & 0xFF);
}

constexpr bool BeginsPrintable(UInt32 dwCode) noexcept {
  // Kept: the first byte decides for all four. When control bytes follow a printable byte they are
  // written raw between the quotes, and a zero among them ends the string early. This stays because
  // every toolbox code is either four characters or a small number, and people search logs for both
  // forms. Pinned by TheFirstByteDecides_TheOthersAreWrittenRaw.
  const int nFirst = ByteOf(dwCode, 0);
  return nFirst >= 0x20 && nFirst < 0x7F && nFirst != '\\';
}

}  // namespace

char* FourCharCodeText(UInt32 dwCode, char* pszText) noexcept {
  if (BeginsPrintable(dwCode)) {
    std::snprintf(pszText, kFourCharCodeRoom, "'%c%c%c%c'", ByteOf(dwCode, 0), ByteOf(dwCode, 1),
                  ByteOf(dwCode, 2), ByteOf(dwCode, 3));
  } else {
    std::snprintf(pszText, kFourCharCodeRoom, "0x%08X", dwCode);
  }
  return pszText;
}
