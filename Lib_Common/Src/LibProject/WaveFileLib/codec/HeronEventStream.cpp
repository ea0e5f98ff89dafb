// SPDX-License-Identifier: Apache-2.0
#include "codec/HeronEventStream.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace heroneventstream {
namespace {

constexpr std::uint64_t kGroupFrames = 32;
constexpr std::size_t kFullGroup = 128;  // bytes
constexpr std::uint8_t kShortGap = 8;
constexpr std::uint8_t kLongGap = 16;
constexpr std::uint64_t kShortGapMax = 0xFF;
constexpr std::uint64_t kLongGapMax = 0xFFFF;

void WriteLongGap(std::uint64_t qwFrames, vcm::C_ByteWriter& out) {
  out.U8(kLongGap);
  out.U16(static_cast<std::uint16_t>(qwFrames));
}

void WriteGap(std::uint64_t qwFrames, vcm::C_ByteWriter& out) {
  if (qwFrames == 0) return;
  if (qwFrames <= kShortGapMax) {
    out.U8(kShortGap);
    out.U8(static_cast<std::uint8_t>(qwFrames));
    return;
  }
  for (; qwFrames > kLongGapMax; qwFrames -= kLongGapMax) WriteLongGap(kLongGapMax, out);
  WriteLongGap(qwFrames, out);
}

// Returns the commands of the group that begins at frame qwGroup. Removes the events before the end
// of the group from the front of *pEvents.
std::vector<std::uint8_t> TakeGroup(std::uint64_t qwGroup, std::span<const S_HeronEvent>* pEvents) {
  std::vector<std::uint8_t> commands;
  std::optional<unsigned int> dwFrameBefore;
  for (; !pEvents->empty() && pEvents->front().dwFrame < qwGroup + kGroupFrames;
       *pEvents = pEvents->subspan(1)) {
    const S_HeronEvent& event = pEvents->front();
    if (event.dwFrame < qwGroup) continue;
    // Kept: a full group still takes the first event of each later frame, so that no frame with
    // events is left out. Readers look for at least one. Pinned by
    // FullGroup_TakesOneEventOfEachLaterFrame.
    if (commands.size() >= kFullGroup && event.dwFrame == dwFrameBefore) continue;
    commands.push_back(event.byMain);
    commands.push_back(event.bySub);
    dwFrameBefore = event.dwFrame;
  }
  return commands;
}

void WriteGroup(const std::vector<std::uint8_t>& commands, unsigned int dwGroups,
                vcm::C_ByteWriter& out) {
  const unsigned int dwCounter = dwGroups & 3U;
  out.U8(static_cast<std::uint8_t>((dwCounter + 4) * 8));
  // Kept: with more than 63 events, the count loses its high bits. The byte has six bits for it,
  // and no sound in use comes near that number. Pinned by CountOf64Events_IsCutTo0.
  out.U8(static_cast<std::uint8_t>(commands.size() / 2 * 4 | dwCounter));
  out.Bytes(commands);
}

}  // namespace

std::vector<S_HeronEvent> EventsOf(I_EventTagMgr& eventMgr, unsigned int dwSamplesPerFrame) {
  std::vector<S_HeronEvent> events;
  I_CLArray<I_EventTag*>* pIEventList = eventMgr.GetEventList();
  for (int i = 0; i < pIEventList->GetSize(); ++i) {
    I_EventTag* pIEvent = pIEventList->GetItemByIndex(i);
    if (pIEvent == nullptr) continue;
    // Kept: only the low byte of each command is taken, because the stream has no room for more.
    // Pinned by Commands_LoseTheirHighBytes.
    events.push_back({pIEvent->GetSamplePos() / dwSamplesPerFrame,
                      static_cast<unsigned char>(pIEvent->GetMainCommandIndex()),
                      static_cast<unsigned char>(pIEvent->GetSubCommandIndex())});
  }
  // A change of the sample rate moves the events that were set as times but does not sort the list,
  // so it may be out of order here.
  std::ranges::stable_sort(events, {}, &S_HeronEvent::dwFrame);
  return events;
}

unsigned int WriteEventStream(const S_FrameRange& range, std::span<const S_HeronEvent> events,
                              unsigned int* pdwGroups, vcm::C_ByteWriter* pOut) {
  const std::uint64_t qwEnd = std::uint64_t{range.dwStart} + range.dwCount;
  std::uint64_t qwGroup = range.dwStart;
  std::optional<std::uint64_t> qwEventGroup;
  while (qwGroup < qwEnd && !(events.empty() && !qwEventGroup)) {
    const auto commands = TakeGroup(qwGroup, &events);
    if (!commands.empty()) {
      WriteGap(qwGroup - qwEventGroup.value_or(range.dwStart), *pOut);
      WriteGroup(commands, (*pdwGroups)++, *pOut);
      qwEventGroup = qwGroup;
    }
    if (qwEnd - qwGroup < kGroupFrames) break;
    qwGroup += kGroupFrames;
  }
  // Kept: the frames of an incomplete last group are not counted. Readers take the end of the
  // stream for the end of the sound. Pinned by LastGap_LeavesOutAGroupThatIsNotWhole.
  WriteGap(qwEventGroup ? qwGroup - *qwEventGroup : range.dwCount, *pOut);
  return range.dwCount;
}

}  // namespace heroneventstream
