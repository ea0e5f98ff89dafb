// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioToolbox.h>

#include <cstddef>

// Size of the longest text of a four-character code: "0x00000001" and its terminating zero.
inline constexpr std::size_t kFourCharCodeRoom = 11;

// Writes a four-character code for debugging and returns the buffer, which must hold
// `kFourCharCodeRoom` characters. The text looks like 'lpcm', including the quotes, when the first
// character (the most significant byte of the code) is printable, otherwise like 0x00000001.
// Printable means 0x20 to 0x7E except the backslash, whatever the locale of the process.
char* FourCharCodeText(UInt32 dwCode, char* pszText) noexcept;
