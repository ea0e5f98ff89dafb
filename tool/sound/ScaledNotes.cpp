// SPDX-License-Identifier: Apache-2.0
#include "sound/ScaledNotes.h"

#include <algorithm>
#include <limits>
#include <map>

#include "sound/CueFrame.h"
#include "sound/SamplerRecord.h"
#include "sound/ScaledFrames.h"

namespace tool {
namespace {

constexpr std::uint64_t kNanoseconds = 1'000'000'000;

class C_NotesScale {
 public:
  C_NotesScale(std::uint32_t dwFrom, std::uint32_t dwTo) : m_dwFrom(dwFrom), m_dwTo(dwTo) {}

  [[nodiscard]] std::uint64_t Frame(std::uint64_t qwFrame) const {
    return ScaledFrames(qwFrame, m_dwFrom, m_dwTo);
  }
  // Both ends are scaled, so that what touched before touches still.
  [[nodiscard]] std::uint64_t Count(std::uint64_t qwFirst, std::uint64_t qwCount) const {
    const std::uint64_t qwMost = std::numeric_limits<std::uint64_t>::max() - qwFirst;
    return Frame(qwFirst + std::min(qwCount, qwMost)) - Frame(qwFirst);
  }
  [[nodiscard]] std::uint32_t Short(std::uint64_t qwFrame) const { return Narrow(Frame(qwFrame)); }
  [[nodiscard]] static std::uint32_t Narrow(std::uint64_t qwValue) {
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(std::min(qwValue, kMost));
  }

  [[nodiscard]] voxplay::Event operator()(voxplay::Event event) const {
    event.frame = Frame(event.frame);
    return event;
  }
  [[nodiscard]] voxplay::Range operator()(const voxplay::Range& range) const {
    return {Frame(range.first), Count(range.first, range.count)};
  }
  [[nodiscard]] voxplay::Cue operator()(voxplay::Cue cue) const {
    cue.position = Short(FrameOf(cue));
    cue.sample_offset = cue.position;
    // The blocks of the sound before are not those of the new one.
    cue.chunk_start = 0;
    cue.block_start = 0;
    return cue;
  }
  // The last frame is part of a loop, so it is the frame after it that is scaled.
  [[nodiscard]] voxplay::Loop operator()(voxplay::Loop loop) const {
    const std::uint64_t qwEnd = Frame(std::uint64_t{loop.last} + 1);
    loop.first = Short(loop.first);
    loop.last = std::max(loop.first, Narrow(std::max<std::uint64_t>(qwEnd, 1) - 1));
    return loop;
  }
  [[nodiscard]] voxplay::Sampler operator()(voxplay::Sampler sampler) const {
    if (sampler.sample_period != 0) sampler.sample_period = Narrow(kNanoseconds / m_dwTo);
    return sampler;
  }

 private:
  std::uint32_t m_dwFrom;
  std::uint32_t m_dwTo;
};

// Of cue points with the same identifier, the first one counts.
std::map<std::uint32_t, std::uint32_t> CuePositions(const voxplay::NotesView& notes) {
  std::map<std::uint32_t, std::uint32_t> positions;
  for (const voxplay::Cue cue : notes.cues()) positions.emplace(cue.id, FrameOf(cue));
  return positions;
}

void ScaleTexts(voxplay::Notes& scaled, const voxplay::NotesView& notes,
                const C_NotesScale& scale) {
  const auto positions = CuePositions(notes);
  scaled.clear(VOXPLAY_NOTE_REGION_TEXT);
  for (voxplay::RegionText text : notes.region_texts()) {
    const auto position = positions.find(text.cue_id);
    const std::uint64_t qwFirst = position == positions.end() ? 0 : position->second;
    text.count = C_NotesScale::Narrow(scale.Count(qwFirst, text.count));
    scaled.add(text);
  }
}

}  // namespace

voxplay::Notes ScaledNotes(const voxplay::NotesView& notes, std::uint32_t dwFrom,
                           std::uint32_t dwTo) {
  voxplay::Notes scaled(notes);
  if (dwFrom == dwTo) return scaled;
  const C_NotesScale scale(dwFrom, dwTo);
  for (const auto eKind : {VOXPLAY_NOTE_EVENT, VOXPLAY_NOTE_SILENCE, VOXPLAY_NOTE_REGION,
                           VOXPLAY_NOTE_CUE, VOXPLAY_NOTE_LOOP}) {
    scaled.clear(eKind);
  }
  for (const voxplay::Event event : notes.events()) scaled.add(scale(event));
  for (const voxplay::Range range : notes.silence()) scaled.add_silence(scale(range));
  for (const voxplay::Range range : notes.regions()) scaled.add_region(scale(range));
  for (const voxplay::Cue cue : notes.cues()) scaled.add(scale(cue));
  for (const voxplay::Loop loop : notes.loops()) scaled.add(scale(loop));
  if (IsPresent(notes.sampler())) scaled.set_sampler(scale(notes.sampler()));
  ScaleTexts(scaled, notes, scale);
  return scaled;
}

}  // namespace tool
