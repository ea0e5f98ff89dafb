// SPDX-License-Identifier: Apache-2.0
//
// Writes the events of any frames as an event stream and compares it with what a slow writer, which
// looks at one frame at a time, makes of the same events. Reads the records again: they must cover
// the frames and hold the commands. Puts heads before streams and finds the audio after them.
//
//   scripts/fuzz.sh 60 heron_event_stream
//
// Input: first frame, frames, groups written before, samples per frame, then the events.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include "FuzzInput.h"
#include "Require.h"
#include "annotation/EventTagMgr.h"
#include "codec/HeronEventStream.h"
#include "codec/HeronStream.h"

namespace {

using heroneventstream::S_FrameRange;
using heroneventstream::S_HeronEvent;
using Bytes = std::vector<std::uint8_t>;

// Enough for a group that is full, and for a gap of more than 65,535 frames twice.
constexpr std::size_t kMostEvents = 100;
constexpr unsigned int kMostFrames = 140000;

void AddGap(std::uint64_t qwFrames, Bytes& out) {
  if (qwFrames == 0) return;
  if (qwFrames <= 255) {
    out.insert(out.end(), {8, static_cast<std::uint8_t>(qwFrames)});
    return;
  }
  while (qwFrames > 65535) {
    out.insert(out.end(), {16, 0xFF, 0xFF});
    qwFrames -= 65535;
  }
  out.insert(out.end(), {16, static_cast<std::uint8_t>(qwFrames & 0xFF),
                         static_cast<std::uint8_t>(qwFrames >> 8)});
}

using FrameMap = std::map<std::uint64_t, std::vector<S_HeronEvent>>;

// The commands of 32 frames. A group of 128 bytes or more takes no second event of a frame.
Bytes GroupOf(std::uint64_t qwGroup, const FrameMap& frames) {
  Bytes commands;
  for (auto it = frames.lower_bound(qwGroup); it != frames.end() && it->first < qwGroup + 32;
       ++it) {
    for (const S_HeronEvent& event : it->second) {
      commands.insert(commands.end(), {event.byMain, event.bySub});
      if (commands.size() >= 128) break;
    }
  }
  return commands;
}

Bytes SlowStream(const S_FrameRange& range, const std::vector<S_HeronEvent>& events,
                 unsigned int dwCounter) {
  Bytes out;
  FrameMap frames;
  for (const S_HeronEvent& event : events) frames[event.dwFrame].push_back(event);
  const std::uint64_t qwEnd = std::uint64_t{range.dwStart} + range.dwCount;
  std::uint64_t qwGroup = range.dwStart;
  std::uint64_t qwBefore = range.dwStart;
  bool bAny = false;
  while (qwGroup < qwEnd && !events.empty()) {
    const Bytes commands = GroupOf(qwGroup, frames);
    if (!commands.empty()) {
      if (qwGroup != 0) AddGap(qwGroup - qwBefore, out);
      qwBefore = qwGroup;
      bAny = true;
      out.push_back(static_cast<std::uint8_t>((dwCounter % 4 + 4) * 8));
      out.push_back(static_cast<std::uint8_t>(commands.size() / 2 * 4 + dwCounter % 4));
      out.insert(out.end(), commands.begin(), commands.end());
      ++dwCounter;
    }
    if (qwEnd - qwGroup < 32) break;
    qwGroup += 32;
  }
  AddGap(bAny ? qwGroup - qwBefore : range.dwCount, out);
  return out;
}

// Adds up the gaps of a stream whose groups have at most 63 events each, so that their counts are
// whole.
std::uint64_t FramesIn(std::span<const std::uint8_t> stream) {
  std::uint64_t qwFrames = 0;
  while (!stream.empty()) {
    Require(stream.size() >= 2);
    std::size_t cbRecord = 2;
    if (stream[0] == 8) {
      Require(stream[1] > 0);
      qwFrames += stream[1];
    } else if (stream[0] == 16) {
      cbRecord = 3;
      Require(stream.size() >= cbRecord);
      qwFrames += stream[1] + 256U * stream[2];
    } else {
      Require(stream[0] == (stream[1] % 4 + 4) * 8 && stream[1] / 4 > 0);
      cbRecord = 2 + std::size_t{2} * (stream[1] / 4);
      Require(stream.size() >= cbRecord);
    }
    stream = stream.subspan(cbRecord);
  }
  return qwFrames;
}

void CheckWriter(const S_FrameRange& range, const std::vector<S_HeronEvent>& events,
                 unsigned int dwGroups) {
  vcm::C_ByteWriter writer;
  unsigned int dwCounter = dwGroups;
  Require(heroneventstream::WriteEventStream(range, events, &dwCounter, &writer) == range.dwCount);
  const Bytes& stream = writer.Data();
  Require(stream == SlowStream(range, events, dwGroups));
  if (events.size() > 63) return;
  // The incomplete last group is left out when there are groups of events.
  const std::uint64_t qwFrames = FramesIn(stream);
  Require(qwFrames <= range.dwCount && range.dwCount - qwFrames < 32);
}

// The frames of a manager's events are those of their samples, in order.
std::vector<S_HeronEvent> EventsOf(C_FuzzInput& input, unsigned int dwSamplesPerFrame) {
  C_EventTagMgr manager;
  manager.SetSampleRate(16000);
  std::vector<S_HeronEvent> expected;
  std::uint32_t dwSample = 0;
  while (!input.Ended() && expected.size() < kMostEvents) {
    const std::uint8_t byStep = input.U8();
    // Many events in few frames fill groups; great steps make gaps of every length.
    if (byStep >= 0x80) dwSample += byStep % 4 == 0 ? input.U16() * 256U : byStep * 64U;
    const std::uint16_t wMain = input.U16();
    const std::uint8_t bySub = input.U8();
    manager.AddEventBySamplePos(wMain, bySub, dwSample, nullptr, 0);
    expected.push_back(
        {dwSample / dwSamplesPerFrame, static_cast<unsigned char>(wMain & 0xFF), bySub});
  }
  std::stable_sort(expected.begin(), expected.end(),
                   [](const auto& a, const auto& b) { return a.dwFrame < b.dwFrame; });
  Require(heroneventstream::EventsOf(manager, dwSamplesPerFrame) == expected);
  return expected;
}

// What the head says of a stream, looked up in a table of this fuzzer's own.
void CheckHead(std::uint32_t dwType, std::uint32_t dwAudio, std::uint32_t dwEvents) {
  static constexpr std::array<std::array<int, 3>, 5> kTable = {
      {{32, 4, 1}, {33, 5, 2}, {34, 6, 3}, {35, 2, 4}, {36, 3, 5}}};
  const auto variant = heronstream::VariantOfType(dwType);
  const bool bKnown = dwType >= 32 && dwType <= 36;
  Require(variant.has_value() == bKnown);
  if (!variant) return;
  const auto& row = kTable[dwType - 32];
  Require(variant->nBitDepth == row[1] && variant->byModeCode == row[2]);
  const auto dwHead = heronstream::MakeHead(*variant, dwAudio, dwEvents);
  Require(dwHead.has_value() == (dwEvents == 0 || dwAudio < 1U << 24));
  if (!dwHead) return;
  Require((*dwHead & 0xFF) == static_cast<unsigned int>(row[2]));
  Require(*dwHead >> 8 == (dwEvents == 0 ? 0 : dwAudio));
}

void CheckAudio(std::span<const std::uint8_t> stream) {
  const auto audio = heronstream::FindAudio(stream);
  if (stream.size() < 4) {
    Require(!audio);
    return;
  }
  const std::size_t nOffset = stream[1] + 256U * stream[2] + 65536U * stream[3];
  const bool bEnd = nOffset == 0 || nOffset >= 4;
  Require(audio.has_value() == (stream[0] >= 1 && stream[0] <= 5 && bEnd));
  if (!audio) return;
  Require(audio->coded.data() == stream.data() + 4);
  const std::size_t nEnd = nOffset == 0 ? stream.size() : std::min(nOffset, stream.size());
  Require(audio->coded.size() == nEnd - 4);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  CheckAudio({pData, cbData});
  C_FuzzInput input(pData, cbData);
  CheckHead(input.Flag() ? 31 + input.Below(7) : input.U8(),
            input.Flag() ? 0xFFFFFF + input.Below(3) : input.U16(), input.U8());
  const std::uint8_t byShape = input.U8();
  const S_FrameRange range{byShape % 2 == 0 ? 0U : input.U16(),
                           byShape % 4 < 2 ? unsigned{input.U16()} : input.U32() % kMostFrames};
  const unsigned int dwGroups = byShape % 8 < 4 ? 0 : input.U32();
  const auto events = EventsOf(input, 1 + input.U8() * 4U);
  CheckWriter(range, events, dwGroups);
  return 0;
}
