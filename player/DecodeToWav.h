// SPDX-License-Identifier: Apache-2.0
//
// Any sound file that the library knows, as a WAV file that the platform can play.
#pragma once

inline constexpr int kDecodedToWav = 0;
inline constexpr int kReopenFailed = 1;
inline constexpr int kDecodingFailed = 2;

// Decodes pszInput and writes the PCM to pszWavPath. What the library does not know is taken for a
// Kestrel stream without a header, given one in a temporary copy, and read again from there.
// kDecodedToWav, kReopenFailed when that copy could not be read a second time, kDecodingFailed.
int DecodeToWav(const char* pszInput, const char* pszWavPath);
