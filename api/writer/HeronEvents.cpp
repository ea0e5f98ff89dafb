// SPDX-License-Identifier: Apache-2.0
#include "writer/HeronEvents.h"

#include <cstddef>
#include <limits>
#include <map>

#include "ByteReader.h"
#include "codec/HeronEventStream.h"
#include "heron/Configuration.h"

namespace api {
namespace {

constexpr std::uint64_t kGroupFrames = 32;
// The number of events in a group has six bits.
constexpr std::size_t kMostInGroup = 63;

constexpr const char* kPartly = "cannot be read back from a Heron stream";
constexpr const char* kCrowded =
    "a Heron stream holds no more than 63 events within 640 ms, and this one may be lost";
constexpr const char* kBeyond = "it lies after the end of the sound";
constexpr const char* kNoRoom = "the coded audio is too long for events after it";

std::uint32_t FrameLength(int nSampleRate) {
  return static_cast<std::uint32_t>(heron::FrameLength(nSampleRate));
}

std::uint32_t CountFrames(std::uint32_t dwSamples, std::uint32_t dwFrameLength) {
  return dwSamples / dwFrameLength + (dwSamples % dwFrameLength == 0 ? 0 : 1);
}

}  // namespace

std::vector<std::uint8_t> CodeHeronEvents(std::span<const S_NoteEvent> events,
                                          std::uint32_t dwSamples, int nSampleRate) {
  const std::uint32_t dwFrameLength = FrameLength(nSampleRate);
  std::vector<heroneventstream::S_HeronEvent> coded;
  for (const S_NoteEvent& event : events) {
    if (event.qwFrame > std::numeric_limits<std::uint32_t>::max()) break;
    coded.push_back({static_cast<std::uint32_t>(event.qwFrame) / dwFrameLength,
                     static_cast<std::uint8_t>(event.wMain),
                     static_cast<std::uint8_t>(event.wSub)});
  }
  if (coded.empty()) return {};
  vcm::C_ByteWriter bytes;
  unsigned int dwGroups = 0;
  heroneventstream::WriteEventStream({0, CountFrames(dwSamples, dwFrameLength)}, coded, &dwGroups,
                                     &bytes);
  return bytes.Take();
}

std::vector<std::string> LostOfHeronEvents(std::span<const S_NoteEvent> events,
                                           std::uint32_t dwSamples, int nSampleRate,
                                           bool bWritten) {
  const std::uint64_t qwGroup = kGroupFrames * FrameLength(nSampleRate);
  std::map<std::uint64_t, std::size_t> sizes;
  for (const S_NoteEvent& event : events) ++sizes[event.qwFrame / qwGroup];
  std::vector<std::string> lost;
  for (std::size_t n = 0; n < events.size(); ++n) {
    const std::uint64_t qwFrame = events[n].qwFrame;
    // A group that begins in the sound has all its events.
    const bool bBeyond = qwFrame / qwGroup * qwGroup >= dwSamples;
    const bool bCrowded = sizes[qwFrame / qwGroup] > kMostInGroup;
    const char* const pszReason = !bWritten  ? kNoRoom
                                  : bBeyond  ? kBeyond
                                  : bCrowded ? kCrowded
                                             : kPartly;
    lost.push_back("event " + std::to_string(n + 1) + " at frame " + std::to_string(qwFrame) +
                   ": " + pszReason);
  }
  return lost;
}

}  // namespace api
