// SPDX-License-Identifier: Apache-2.0
//
// The event stream after the audio of a Heron stream: which frames have events, and the low bytes
// of their commands. Little-endian records in order of time:
//
//   bytes                    record
//   8, n                     gap of n frames, 1 to 255
//   16, u16 n                gap of n frames, up to 65535; longer gaps take several records
//   (c + 4) * 8, k, pairs    events of a group of 32 frames: a rolling counter c of 0 to 3 makes
//                            the marker 32, 40, 48 or 56. The byte k holds the number of events
//                            times 4, and c in its low 2 bits; beyond 63 events the high bits of
//                            the number are lost. Each pair is the low byte of the main command
//                            and the low byte of the sub command of one event
//
// Groups begin at the first frame of the range. A gap reaches from the start of the group in the
// record before it, or from the first frame, to the start of the next group with events. The last
// gap ends with the last whole group. Without events, one gap covers the whole range.
#pragma once

#include <span>
#include <vector>

#include "ByteReader.h"
#include "interface/I_EventTag.h"

namespace heroneventstream {

struct S_HeronEvent {
  unsigned int dwFrame = 0;
  unsigned char byMain = 0;
  unsigned char bySub = 0;

  friend bool operator==(const S_HeronEvent&, const S_HeronEvent&) = default;
};

struct S_FrameRange {
  unsigned int dwStart = 0;
  unsigned int dwCount = 0;
};

// The events of a sound, each with the frame that its sample position lies in. They are in
// ascending order of frames and, within one frame, in the order of the manager. dwSamplesPerFrame
// must not be 0. An event that was set as a time needs a sample rate: without one the program
// stops.
std::vector<S_HeronEvent> EventsOf(I_EventTagMgr& eventMgr, unsigned int dwSamplesPerFrame);

// Appends the stream of the frames in the range to *pOut. The events must be in ascending order of
// frames. *pdwGroups is the number of event groups written so far; it keeps counting from call to
// call. Returns the number of frames in the range.
unsigned int WriteEventStream(const S_FrameRange& range, std::span<const S_HeronEvent> events,
                              unsigned int* pdwGroups, vcm::C_ByteWriter* pOut);

}  // namespace heroneventstream
