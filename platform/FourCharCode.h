// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioToolbox.h>

#include <cstddef>

// Room for the longest text of a four-character code: "0x00000001" and its zero.
inline constexpr std::size_t kFourCharCodeRoom = 11;

// Writes a four-character code for debugging and returns the buffer, which has room for
// `kFourCharCodeRoom` characters: 'lpcm' with its quotes when the first character, the code's most
// significant byte, can be printed; else 0x00000001. What can be printed does not depend on the
// process's locale: 0x20 to 0x7E, but no backslash.
char* FourCharCodeText(UInt32 dwCode, char* pszText) noexcept;
