// SPDX-License-Identifier: Apache-2.0
#pragma once

// Opens the null device in place of a standard input, output or error that the caller of the
// program has closed. Otherwise the next file or the audio service's socket would take its number,
// and everything printed would go there. Call this before anything else is opened.
void FillStandardStreams();
