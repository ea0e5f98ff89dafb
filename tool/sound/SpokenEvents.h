// SPDX-License-Identifier: Apache-2.0
//
// In WAV and VEMD files, the library reads some labels of other programs as events, for example
// "take_1". Each of them stays a label beside its event.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <tuple>
#include <vector>

#include "voxplay.hpp"

namespace tool {

// What makes two events the same one.
struct S_EventKey {
  std::uint64_t qwFrame = 0;
  std::uint16_t wMain = 0;
  std::uint16_t wSub = 0;
  std::uint32_t dwData = 0;

  [[nodiscard]] auto Parts() const noexcept { return std::tie(qwFrame, wMain, wSub, dwData); }
  friend bool operator==(const S_EventKey& a, const S_EventKey& b) noexcept {
    return a.Parts() == b.Parts();
  }
  friend bool operator<(const S_EventKey& a, const S_EventKey& b) noexcept {
    return a.Parts() < b.Parts();
  }
};
S_EventKey KeyOf(const voxplay::Event& event);

struct S_SpokenEvent {
  std::size_t nLabel = 0;  // in the list of the notes
  S_EventKey key;
};

// In the order of the labels; none for other containers (voxplay_container).
std::vector<S_SpokenEvent> SpokenEvents(const voxplay::NotesView& notes, std::uint32_t dwContainer);

// How often there is each of some events.
class C_EventCounts {
 public:
  C_EventCounts() = default;
  explicit C_EventCounts(const std::vector<S_SpokenEvent>& spoken);

  void Add(const S_EventKey& key) { ++m_counts[key]; }
  // Takes one away; false when there is none.
  bool Take(const S_EventKey& key);

 private:
  std::map<S_EventKey, std::size_t> m_counts;
};

}  // namespace tool
