// SPDX-License-Identifier: Apache-2.0
//
// The Kestrel frame coder as the rest of the library sees it: 20 ms of 16 kHz, 16-bit mono speech
// (320 samples) to one frame of 16-bit words, and back.
//
//   init(bit rate) -> words per frame     once per stream
//   frame, frame, frame ...               each builds on the previous one
//
// There is one encoder and one decoder per process. They are independent of each other and
// unguarded: at most one encode and one decode may run at a time. Before the first init, both
// behave as if they had been initialised at 16000 bit/s. Code that needs several coders uses
// kestrel::C_Encoder and kestrel::C_Decoder.
#pragma once

#include <cstdio>
#include <span>

// Both inits configure for dwBitRate bit/s and clear the state of their direction.
//
//   dwBitRate                   used                    words per frame   result
//   below 4800 or above 32000   16000                   20                8
//   a multiple of 800           the same                rate / 800        0
//   else                        the nearest, ties up    used / 800        8
//
// *pnWordsPerFrame (6..40) and *pnSamplesPerFrame (320) are set in every case, and the coder is
// usable in every case; 8 only means that it does not run at the requested rate.
int KestrelEncoderInit(unsigned int dwBitRate, int* pnWordsPerFrame, int* pnSamplesPerFrame);
int KestrelDecoderInit(unsigned int dwBitRate, int* pnWordsPerFrame, int* pnSamplesPerFrame);

// Reads 320 samples, writes words-per-frame words. Always 0.
int KestrelEncodeFrame(const short* pSamples320, unsigned short* pwFrameWords);

// Reads words-per-frame words, writes 320 samples. Any words are allowed: a damaged frame repeats
// the last good one once and then decodes to silence. Always 0.
int KestrelDecodeFrame(const unsigned short* pwFrameWords, short* pSamples320);

// Diagnostics only: prints a constant table as rows of nColumns values in "%6d," form, each row
// ended by a line feed; a last row may be shorter. nColumns below 1 prints a single row.
void KestrelPrintTable(std::FILE* pFile, std::span<const short> table, int nColumns);
