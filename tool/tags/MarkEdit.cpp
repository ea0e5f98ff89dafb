// SPDX-License-Identifier: Apache-2.0
#include "tags/MarkEdit.h"

#include "base/Failure.h"
#include "base/TimeText.h"
#include "marks/MarkNotes.h"
#include "sound/SamplerRecord.h"
#include "tags/LabelEvents.h"

namespace tool {
namespace {

void TellOfEvents(const std::string& strFile, const std::vector<S_EventKey>& events,
                  std::uint32_t dwRate, C_Console& console) {
  if (events.empty()) return;
  const S_EventKey& first = events.front();
  const std::size_t nMore = events.size() - 1;
  console.Complain(strFile + ": a label at " + PlaceText(first.qwFrame, dwRate) +
                   " reads as event " + std::to_string(first.wMain) + '/' +
                   std::to_string(first.wSub) + ", too" +
                   (nMore == 0 ? "" : " (and " + CountText(nMore) + " more)"));
}

}  // namespace

void AddEditOptions(CLI::App& command, S_EditOptions& options) {
  AddOption(command, "FILE", options.strFile, "the file, which is changed in place")
      .TypeName("FILE")
      .Required();
  AddOption(command, "-o,--output", options.target.strOutput,
            "write another file instead; \"-\" is standard output")
      .TypeName("FILE");
  AddFlag(command, "-f,--force", options.target.bForce, "replace an existing output");
  AddFlag(command, "--anyway", options.target.bAnyway,
          "also when the file cannot hold all of it, or ends before it");
}

void ClearMarks(voxplay::Notes& notes) {
  for (const voxplay_note_kind eKind :
       {VOXPLAY_NOTE_EVENT, VOXPLAY_NOTE_SILENCE, VOXPLAY_NOTE_REGION, VOXPLAY_NOTE_CUE,
        VOXPLAY_NOTE_LABEL, VOXPLAY_NOTE_REGION_TEXT}) {
    notes.clear(eKind);
  }
  ClearLoops(notes);
}

// The record of the sampler goes with the loops.
void ClearLoops(voxplay::Notes& notes) {
  const voxplay::Notes old(notes);
  notes.clear(VOXPLAY_NOTE_LOOP);
  if (IsPresent(old.view().sampler())) notes.set_sampler(old.view().sampler());
}

C_Option AddTimeOption(CLI::App& command, const std::string& strNames, std::string& strTime,
                       const std::string& strMeaning) {
  const auto Check = [](const std::string& strText) {
    return C_Time::Parse(strText) ? std::string()
                                  : strText + " is not a time: " + std::string(C_Time::kForms);
  };
  return AddOption(command, strNames, strTime, strMeaning).TypeName("TIME").Check(Check);
}

int EditMarks(const S_EditOptions& options, C_Console& console,
              const std::function<void(const C_MarkedFile& file, voxplay::Notes& notes)>& fnEdit) {
  C_MarkedFile file(options.strFile, options.target);
  voxplay::Notes notes(file.Notes());
  try {
    fnEdit(file, notes);
  } catch (const C_BadRow& bad) {
    throw C_Failure(options.strFile, "nothing is changed", bad.what());
  }
  const std::vector<S_EventKey> added =
      FollowLabels(file.Notes(), notes, file.Info().container, options.bNamesEvents);
  const std::vector<std::string> lost = file.Save(notes);
  TellOfEvents(options.strFile, added, file.Info().sample_rate, console);
  for (const std::string& strLost : lost) console.Complain(options.strFile + ": " + strLost);
  return 0;
}

}  // namespace tool
