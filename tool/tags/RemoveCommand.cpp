// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <memory>
#include <unordered_set>

#include "base/Failure.h"
#include "base/TimeText.h"
#include "marks/MarkRows.h"
#include "options/WholeNumber.h"
#include "tags/LabelEvents.h"
#include "tags/MarkEdit.h"
#include "tags/Subcommands.h"

namespace tool {
namespace {

struct S_Options {
  S_EditOptions edit;
  std::string strKind;
  std::vector<std::uint64_t> numbers;
  bool bAll = false;
};

const std::vector<std::string> kKinds = {"event", "cue",     "label",  "note",
                                         "text",  "silence", "region", "loop"};

// Puts back what is kept of a list that was cleared.
template <typename Records, typename IsKept, typename Add>
void AddKept(const Records& old, IsKept&& fnIsKept, Add&& fnAdd) {
  for (std::size_t n = 0; n < old.size(); ++n) {
    if (fnIsKept(n)) fnAdd(old[n]);
  }
}

class C_Remover {
 public:
  C_Remover(const S_Options& options, std::uint32_t dwContainer, voxplay::Notes& notes)
      : m_options(options),
        m_dwContainer(dwContainer),
        m_numbers(options.numbers.begin(), options.numbers.end()),
        m_old(notes.view()),
        m_notes(notes) {}

  void RemoveAll() { ClearMarks(m_notes); }

  void Remove() {
    const voxplay_note_kind eList = *ListOfKind(m_options.strKind);
    if (!m_options.bAll) CheckNumbers(voxplay_notes_count(m_old.view().get(), eList));
    eList == VOXPLAY_NOTE_LOOP ? ClearLoops(m_notes) : m_notes.clear(eList);
    const auto IsKept = [this](std::size_t nIndex) { return !IsRemoved(nIndex); };
    const auto Add = [this](const auto& record) { m_notes.add(record); };
    const voxplay::NotesView old = m_old.view();
    switch (eList) {
      case VOXPLAY_NOTE_EVENT:
        AddKept(old.events(), IsKept, Add);
        return RefuseToRemove(m_options.edit.strFile, old, m_notes, m_dwContainer);
      case VOXPLAY_NOTE_CUE:
        AddKept(old.cues(), IsKept, Add);
        return RemoveOrphans();
      case VOXPLAY_NOTE_LABEL:
        return AddKept(old.labels(), IsKept, Add);
      case VOXPLAY_NOTE_REGION_TEXT:
        return AddKept(old.region_texts(), IsKept, Add);
      case VOXPLAY_NOTE_SILENCE:
        return AddKept(old.silence(), IsKept, [this](const auto& r) { m_notes.add_silence(r); });
      case VOXPLAY_NOTE_REGION:
        return AddKept(old.regions(), IsKept, [this](const auto& r) { m_notes.add_region(r); });
      default:
        return AddKept(old.loops(), IsKept, Add);
    }
  }

 private:
  [[nodiscard]] bool IsRemoved(std::size_t nIndex) const {
    if (!IsOfKind(m_old, m_options.strKind, nIndex)) return false;
    return m_options.bAll || m_numbers.contains(nIndex + 1);
  }
  void CheckNumbers(std::size_t nCount) const {
    for (const std::uint64_t qwNumber : m_options.numbers) {
      const auto nIndex = static_cast<std::size_t>(qwNumber - 1);
      if (qwNumber >= 1 && qwNumber <= nCount && IsOfKind(m_old, m_options.strKind, nIndex)) {
        continue;
      }
      throw C_Failure(m_options.edit.strFile, "nothing is changed",
                      "there is no " + m_options.strKind + ' ' + std::to_string(qwNumber));
    }
  }
  // What belonged to cue points that are gone goes as well.
  void RemoveOrphans() {
    std::unordered_set<std::uint32_t> gone;
    for (const voxplay::Cue cue : m_old.view().cues()) gone.insert(cue.id);
    for (const voxplay::Cue cue : m_notes.view().cues()) gone.erase(cue.id);
    const auto labels = m_old.view().labels();
    const auto texts = m_old.view().region_texts();
    const auto Add = [this](const auto& record) { m_notes.add(record); };
    m_notes.clear(VOXPLAY_NOTE_LABEL);
    AddKept(
        labels, [&](std::size_t n) { return !gone.contains(labels[n].cue_id); }, Add);
    m_notes.clear(VOXPLAY_NOTE_REGION_TEXT);
    AddKept(
        texts, [&](std::size_t n) { return !gone.contains(texts[n].cue_id); }, Add);
  }

  const S_Options& m_options;
  std::uint32_t m_dwContainer;
  const std::unordered_set<std::uint64_t> m_numbers;
  const voxplay::Notes m_old;
  voxplay::Notes& m_notes;
};

void CheckOptions(const S_Options& options) {
  if (options.bAll != options.numbers.empty()) {
    throw C_UsageFailure((options.strKind.empty() ? "KIND" : options.strKind) +
                         ": name the numbers of the marks, or --all");
  }
}

int Run(const S_Options& options, C_Console& console) {
  CheckOptions(options);
  return EditMarks(options.edit, console, [&](const C_MarkedFile& file, voxplay::Notes& notes) {
    C_Remover remover(options, file.Info().container, notes);
    if (options.strKind.empty()) return remover.RemoveAll();
    remover.Remove();
  });
}

}  // namespace

void AddRemoveCommand(C_CommandLine& commandLine, CLI::App& tags) {
  const auto options = std::make_shared<S_Options>();
  CLI::App& command = commandLine.Add(
      tags, {"remove",
             "remove marks from a file",
             "Removes marks by their kinds and by the numbers that \"tags list\" shows. With a "
             "cue point go its labels, notes and texts.",
             {{"voxtool tags remove talk.wav event 3 4", "remove the third and the fourth event"},
              {"voxtool tags remove talk.wav label --all", "remove all labels"},
              {"voxtool tags remove talk.wav --all", "remove all marks"}},
             [options](C_Console& console) { return Run(*options, console); }});
  AddEditOptions(command, options->edit);
  AddOption(command, "KIND", options->strKind, "what to remove").OneOf(kKinds);
  const C_Option numbers = AddOption(command, "NUMBER", options->numbers, "which of these");
  numbers.TypeName("NUMBER").Check(WholeNumber(0, UINT64_MAX));
  AddFlag(command, "--all", options->bAll, "all of these, or all marks").Excludes(numbers);
}

}  // namespace tool
