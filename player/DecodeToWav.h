// SPDX-License-Identifier: Apache-2.0
//
// Turns any sound file that the library knows into a WAV file that the platform can play.
#pragma once

inline constexpr int kDecodedToWav = 0;
inline constexpr int kReopenFailed = 1;
inline constexpr int kDecodingFailed = 2;

// Decodes pszInput and writes the PCM to pszWavPath. A file that the library does not know is
// treated as a Kestrel stream without a header: a temporary copy gets a header and is read instead.
// Returns kDecodedToWav, kReopenFailed when that copy could not be opened a second time, or
// kDecodingFailed.
int DecodeToWav(const char* pszInput, const char* pszWavPath);
