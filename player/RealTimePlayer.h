// SPDX-License-Identifier: Apache-2.0
//
// Plays a Kestrel file while it is being decoded: a thread decodes into the process-wide queue, and
// the default output unit takes from it. The sound is 16 kHz, 16 bits, mono.
#pragma once

#include <AudioToolbox/AudioToolbox.h>
#include <pthread.h>

#include <atomic>
#include <cstddef>

// What the decoding thread shares with the thread that starts it.
struct S_RealTimeDecoder {
  static constexpr std::size_t kPathField = 1024;

  // Set last, when everything that can be decoded is in the queue.
  std::atomic<unsigned char> byFinished{0};
  char szPath[kPathField] = {};
  pthread_t thread{};
};

// Returns when playback has ended: 0, or 1 when the output could not be set up or memory is
// missing. Never throws. A file that cannot be decoded plays as about a second of silence. So do a
// null name and a name that does not fit the path field. pPlayer is passed to the render callback
// as its reference.
int PlayRealTime(void* pPlayer, S_RealTimeDecoder* pDecoder, const char* pszFileName);

// The library's data callback: appends to the process-wide queue.
void OnDecodedData(void* pData, unsigned int dwLength);

// The output unit's render callback: fills the first buffer from the process-wide queue.
OSStatus RenderPcm(void* pRefCon, AudioUnitRenderActionFlags* pdwActionFlags,
                   const AudioTimeStamp* pTimeStamp, UInt32 dwBusNumber, UInt32 dwNumberFrames,
                   AudioBufferList* pData);
