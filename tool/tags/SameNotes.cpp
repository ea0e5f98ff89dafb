// SPDX-License-Identifier: Apache-2.0
#include "tags/SameNotes.h"

#include <string_view>
#include <tuple>

namespace tool {
namespace {

template <std::size_t kSize>
std::string_view Characters(const char (&id)[kSize]) {
  return {id, kSize};
}
std::string_view Bytes(const void* pData, std::size_t cbData) {
  return {static_cast<const char*>(pData), cbData};
}

// What each record says.
auto Values(const voxplay::Event& event) {
  return std::tuple(event.frame, event.main_command, event.sub_command, event.data,
                    std::string_view(event.description));
}
auto Values(const voxplay::Range& range) { return std::tuple(range.first, range.count); }
auto Values(const voxplay::Cue& cue) {
  return std::tuple(cue.id, cue.position, Characters(cue.chunk), cue.chunk_start, cue.block_start,
                    cue.sample_offset);
}
auto Values(const voxplay::Label& label) {
  return std::tuple(label.cue_id, Characters(label.type), std::string_view(label.text));
}
auto Values(const voxplay::RegionText& text) {
  return std::tuple(text.cue_id, text.count, Characters(text.purpose), text.country, text.language,
                    text.dialect, text.code_page, std::string_view(text.text));
}
auto Values(const voxplay::Loop& loop) {
  return std::tuple(loop.id, loop.type, loop.first, loop.last, loop.fraction, loop.play_count);
}
auto Values(const voxplay::Chunk& chunk) {
  return std::tuple(Characters(chunk.id), Bytes(chunk.data, chunk.size));
}
auto Values(const voxplay::Sampler& sampler) {
  return std::tuple(sampler.manufacturer, sampler.product, sampler.sample_period,
                    sampler.midi_unity_note, sampler.midi_pitch_fraction, sampler.smpte_format,
                    sampler.smpte_offset, Bytes(sampler.data, sampler.data_size));
}

template <typename Record>
bool AreSameLists(const voxplay::Records<Record>& a, const voxplay::Records<Record>& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t n = 0; n < a.size(); ++n) {
    const Record ofA = a[n];
    const Record ofB = b[n];
    if (Values(ofA) != Values(ofB)) return false;
  }
  return true;
}

}  // namespace

bool AreSame(const voxplay::NotesView& a, const voxplay::NotesView& b) {
  return AreSameLists(a.events(), b.events()) && AreSameLists(a.silence(), b.silence()) &&
         AreSameLists(a.regions(), b.regions()) && AreSameLists(a.cues(), b.cues()) &&
         AreSameLists(a.labels(), b.labels()) && AreSameLists(a.region_texts(), b.region_texts()) &&
         AreSameLists(a.loops(), b.loops()) && AreSameLists(a.chunks(), b.chunks()) &&
         Values(a.sampler()) == Values(b.sampler());
}

bool HaveSameLabels(const voxplay::NotesView& a, const voxplay::NotesView& b) {
  return AreSameLists(a.cues(), b.cues()) && AreSameLists(a.labels(), b.labels());
}

}  // namespace tool
