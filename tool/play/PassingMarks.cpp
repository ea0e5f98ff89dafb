// SPDX-License-Identifier: Apache-2.0
#include "play/PassingMarks.h"

#include <algorithm>
#include <map>

#include "sound/CueFrame.h"

namespace tool {
namespace {

std::string EventText(const voxplay::Event& event) {
  std::string strText =
      "event " + std::to_string(event.main_command) + "/" + std::to_string(event.sub_command);
  if (event.data != 0) strText += ", data " + std::to_string(event.data);
  if (*event.description != '\0') strText += std::string(": ") + event.description;
  return strText;
}

std::map<std::uint32_t, std::string> LabelTexts(const voxplay::NotesView& notes) {
  std::map<std::uint32_t, std::string> texts;
  for (const voxplay::Label label : notes.labels()) texts.try_emplace(label.cue_id, label.text);
  return texts;
}

}  // namespace

C_PassingMarks::C_PassingMarks(const voxplay::NotesView& notes) {
  for (const voxplay::Event event : notes.events()) {
    m_marks.push_back({event.frame, EventText(event)});
  }
  const auto texts = LabelTexts(notes);
  for (const voxplay::Cue cue : notes.cues()) {
    const auto text = texts.find(cue.id);
    const std::string strLabel = text != texts.end() ? ": " + text->second : "";
    m_marks.push_back({FrameOf(cue), "cue point " + std::to_string(cue.id) + strLabel});
  }
  std::ranges::stable_sort(m_marks, {}, &S_Mark::qwFrame);
}

std::vector<C_PassingMarks::S_Mark> C_PassingMarks::Passed(std::uint64_t qwFrame) {
  // The sound has begun anew.
  if (qwFrame < m_qwLast) m_nNext = 0;
  m_qwLast = qwFrame;
  const std::size_t nFirst = m_nNext;
  while (m_nNext < m_marks.size() && m_marks[m_nNext].qwFrame <= qwFrame) ++m_nNext;
  return {m_marks.begin() + static_cast<std::ptrdiff_t>(nFirst),
          m_marks.begin() + static_cast<std::ptrdiff_t>(m_nNext)};
}

void C_PassingMarks::Jump(std::uint64_t qwFrame) {
  m_qwLast = qwFrame;
  const auto next = std::ranges::lower_bound(m_marks, qwFrame, {}, &S_Mark::qwFrame);
  m_nNext = static_cast<std::size_t>(next - m_marks.begin());
}

}  // namespace tool
