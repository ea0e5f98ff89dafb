// SPDX-License-Identifier: Apache-2.0
//
// The graph that plays a finished audio file: a file player that feeds the default output. Both
// functions throw CAXException, with the failed operation as its text, and tear nothing down when
// they do.
#pragma once

#include <AudioToolbox/AudioToolbox.h>

#include "CAAudioUnit.h"

// The format that the player schedules and plays every file in: float stereo at 44.1 kHz, not
// interleaved, so that sizes and bits are those of one channel.
inline constexpr AudioStreamBasicDescription kPlaybackFormat = {
    44100.0,
    kAudioFormatLinearPCM,
    kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked | kAudioFormatFlagIsNonInterleaved,
    4,
    1,
    4,
    2,
    32,
    0};

// How a file is scheduled, in terms of the stream description and not of the file.
struct S_FileSchedule {
  UInt64 qwPacketCount = 0;
  UInt32 dwFramesPerPacket = 0;
  Float64 dSampleRate = 44100.0;  // never 0: positions are divided by it
};

// Builds the graph and stores it in *pGraph and its file player in *pFileUnit. After a failure both
// hold what was made so far.
void MakeFileGraph(AUGraph* pGraph, CAAudioUnit* pFileUnit,
                   const AudioStreamBasicDescription& format, AudioFileID audioFile);

// Schedules the whole file to start with the first render cycle. Returns the duration in seconds.
double PrepareFileUnit(S_FileSchedule* pSchedule, const CAAudioUnit& fileUnit,
                       const AudioStreamBasicDescription& format, AudioFileID audioFile);
