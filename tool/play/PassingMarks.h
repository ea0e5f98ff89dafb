// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "voxplay.hpp"

namespace tool {

// The events and cue points of a sound, in the order in which they are heard.
class C_PassingMarks {
 public:
  explicit C_PassingMarks(const voxplay::NotesView& notes);

  struct S_Mark {
    std::uint64_t qwFrame = 0;
    std::string strText;  // "event 3/7, data 48: description"; may hold any bytes
  };
  // Those that have not been given yet, up to a frame.
  std::vector<S_Mark> Passed(std::uint64_t qwFrame);
  // The next ones are those from this frame on.
  void Jump(std::uint64_t qwFrame);

 private:
  std::vector<S_Mark> m_marks;
  std::size_t m_nNext = 0;
  std::uint64_t m_qwLast = 0;
};

}  // namespace tool
