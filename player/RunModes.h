// SPDX-License-Identifier: Apache-2.0
//
// The three modes of the command line, run on the player in the holder. A mode that fails releases
// the player and clears the holder's pointer to it; otherwise the player lives until the holder is
// released.
#pragma once

#include "VoxplayLoader.h"

// Results of RunPlay and RunGetLength, each with a message of its own.
inline constexpr int kResultNotSupported = -1;
inline constexpr int kResultDecodeFailed = -2;
inline constexpr int kResultLoadFailed = -3;
inline constexpr int kResultPlayFailed = -4;

// Plays the file to its end: in real-time mode when ulRealTime is not 0, otherwise in normal mode.
// Prints "Playing..." and "Finished". Returns 0, kResultNotSupported, kResultDecodeFailed or
// kResultPlayFailed.
int RunPlay(VoxplayLoader& loader, const char* pszFileName, unsigned long ulRealTime);

// Looks at the position once. When it has reached the duration in the holder, stops the player and
// returns true.
bool PollProgress(VoxplayLoader& loader);

// The last position that was a multiple of 100 ms, over all polls of the process.
int GetLastReportedMs();

// Returns the length in whole seconds, kResultNotSupported or kResultDecodeFailed.
int RunGetLength(VoxplayLoader& loader, const char* pszFileName);
