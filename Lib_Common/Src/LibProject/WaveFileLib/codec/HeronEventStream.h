// SPDX-License-Identifier: Apache-2.0
//
// The event stream behind the audio of a Heron stream: which frames have events, and the low bytes
// of their commands. Little-endian records in order of time:
//
//   bytes                    record
//   8, n                     gap of n frames, 1 to 255
//   16, u16 n                gap of n frames, up to 65535; longer gaps take several records
//   (c + 4) * 8, k, pairs    events of a group of 32 frames: a rolling counter c of 0 to 3 makes
//                            the marker 32, 40, 48 or 56; the byte k holds the number of events
//                            times 4, with c in its low 2 bits and its higher bits lost beyond 63
//                            events; each pair is the main and the sub command of one event, low
//                            byte each
//
// Groups begin at the first frame of the range. A gap counts from the start of the group of the
// record before it, or from the first frame, to the start of the next one with events; the last gap
// ends with the last group that was looked at.
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

// The events of a sound by the frame that their sample position lies in, in ascending order of
// frames and, within one, in the order of the manager. dwSamplesPerFrame is not 0. An event that
// was set as a time needs a sample rate: without one the program stops.
std::vector<S_HeronEvent> EventsOf(I_EventTagMgr& eventMgr, unsigned int dwSamplesPerFrame);

// Appends the stream of the frames in the range to *pOut. The events are in ascending order of
// frames. *pdwGroups counts the event groups that were written, on from call to call. The number of
// frames in the range.
unsigned int WriteEventStream(const S_FrameRange& range, std::span<const S_HeronEvent> events,
                              unsigned int* pdwGroups, vcm::C_ByteWriter* pOut);

}  // namespace heroneventstream
