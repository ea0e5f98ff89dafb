// SPDX-License-Identifier: Apache-2.0
#include "object/CoreString.h"

#include <cstring>
#include <limits>

namespace toolbox {
namespace {

// Number of UTF-16 units that a byte of UTF-8 begins: 0 for a byte that continues a character, 2
// for the first byte of a four-byte character, 1 for any other.
CFIndex UnitsOf(char ch) {
  const auto byLead = static_cast<unsigned char>(ch);
  if ((byLead & 0xC0) == 0x80) return 0;
  return byLead >= 0xF0 ? 2 : 1;
}

}  // namespace
}  // namespace toolbox

extern "C" {

CFIndex CFStringGetLength(CFStringRef text) {
  if (text == nullptr) return 0;
  CFIndex nUnits = 0;
  for (const char ch : text->text) nUnits += toolbox::UnitsOf(ch);
  return nUnits;
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex nLength, CFStringEncoding dwEncoding) {
  constexpr CFIndex kMostBytesOfAUnit = 3;
  constexpr CFIndex kLongest = std::numeric_limits<CFIndex>::max() / kMostBytesOfAUnit;
  if (dwEncoding != kCFStringEncodingUTF8 || nLength < 0 || nLength > kLongest) return -1;
  return nLength * kMostBytesOfAUnit;
}

Boolean CFStringGetCString(CFStringRef text, char* pszBuffer, CFIndex cbBuffer,
                           CFStringEncoding dwEncoding) {
  if (text == nullptr || pszBuffer == nullptr || dwEncoding != kCFStringEncodingUTF8) return 0;
  const std::size_t cbText = text->text.size() + 1;
  if (cbBuffer < 0 || static_cast<std::size_t>(cbBuffer) < cbText) return 0;
  std::memcpy(pszBuffer, text->text.c_str(), cbText);
  return 1;
}

}  // extern "C"
