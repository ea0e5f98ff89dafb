// SPDX-License-Identifier: Apache-2.0
#include "sound/SpokenEvents.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <unordered_map>

#include "base/Interrupt.h"
#include "sound/ShortSound.h"

namespace tool {
namespace {

// So many are asked about at a time, because each takes memory in a short sound of its own.
constexpr std::size_t kLabelsAtATime = 4096;
constexpr std::string_view kLabelType = "labl";

// All that read as events have one. This spares most labels the question.
bool MaySpeak(const voxplay::Label& label) {
  return std::string_view(label.type, sizeof label.type) == kLabelType &&
         std::strchr(label.text, '_') != nullptr;
}

// Asks the library about some labels: each stands at a frame of its own in a file, which tells what
// is read there.
class C_Question {
 public:
  explicit C_Question(std::uint32_t dwContainer) {
    m_format.container = dwContainer;
    m_format.codec = VOXPLAY_CODEC_PCM;
    m_format.sample_rate = 1;
    m_format.channels = 1;
    m_format.bits_per_sample = 8;
  }

  void Add(std::size_t nLabel, voxplay::Label label) {
    const auto dwPlace = static_cast<std::uint32_t>(m_labels.size());
    voxplay::Cue cue{};
    cue.id = dwPlace + 1;
    cue.position = dwPlace;
    cue.sample_offset = dwPlace;
    std::ranges::copy(std::string_view("data"), cue.chunk);
    label.cue_id = cue.id;
    m_notes.add(cue);
    m_notes.add(label);
    m_labels.push_back(nLabel);
  }
  [[nodiscard]] bool IsFull() const { return m_labels.size() == kLabelsAtATime; }

  // Adds what they say. The frames are those of the file that was made to ask.
  void Ask(std::vector<S_SpokenEvent>& said) {
    ThrowIfInterrupted();
    if (m_labels.empty()) return;
    const S_ShortSound sound = WriteShortSound(m_format, m_notes);
    const voxplay::Reader reader(sound.bytes);
    for (const voxplay::Event event : reader.notes().events()) {
      said.push_back({m_labels.at(static_cast<std::size_t>(event.frame)), KeyOf(event)});
    }
    m_labels.clear();
    m_notes = voxplay::Notes();
  }

 private:
  voxplay::Format m_format{};
  voxplay::Notes m_notes;
  std::vector<std::size_t> m_labels;
};

std::vector<S_SpokenEvent> SaidBy(const voxplay::Records<voxplay::Label>& labels,
                                  std::uint32_t dwContainer) {
  std::vector<S_SpokenEvent> said;
  C_Question question(dwContainer);
  for (std::size_t n = 0; n < labels.size(); ++n) {
    const voxplay::Label label = labels[n];
    if (MaySpeak(label)) question.Add(n, label);
    if (question.IsFull()) question.Ask(said);
  }
  question.Ask(said);
  return said;
}

}  // namespace

S_EventKey KeyOf(const voxplay::Event& event) {
  return {event.frame, event.main_command, event.sub_command, event.data};
}

// A label stands where the first cue point of its id does, and nowhere without one.
std::vector<S_SpokenEvent> SpokenEvents(const voxplay::NotesView& notes,
                                        std::uint32_t dwContainer) {
  if (dwContainer != VOXPLAY_CONTAINER_WAV && dwContainer != VOXPLAY_CONTAINER_VEMD) return {};
  std::vector<S_SpokenEvent> spoken;
  const std::vector<S_SpokenEvent> said = SaidBy(notes.labels(), dwContainer);
  if (said.empty()) return spoken;
  std::unordered_map<std::uint32_t, std::uint32_t> places;
  for (const voxplay::Cue cue : notes.cues()) places.try_emplace(cue.id, cue.position);
  for (const S_SpokenEvent& one : said) {
    const auto place = places.find(notes.labels()[one.nLabel].cue_id);
    if (place == places.end()) continue;
    spoken.push_back({one.nLabel, one.key});
    spoken.back().key.qwFrame = place->second;
  }
  return spoken;
}

C_EventCounts::C_EventCounts(const std::vector<S_SpokenEvent>& spoken) {
  for (const S_SpokenEvent& event : spoken) Add(event.key);
}

bool C_EventCounts::Take(const S_EventKey& key) {
  const auto found = m_counts.find(key);
  if (found == m_counts.end() || found->second == 0) return false;
  --found->second;
  return true;
}

}  // namespace tool
