// SPDX-License-Identifier: Apache-2.0
//
// What the functions for notes do when memory is refused.
#include <gtest/gtest.h>

#include <exception>
#include <memory>
#include <new>
#include <string>

#include "FaultyNew.h"
#include "base/Failure.h"
#include "calls/Guard.h"
#include "voxplay.h"

namespace {

struct S_NotesFreer {
  void operator()(voxplay_notes* pNotes) const { voxplay_notes_free(pNotes); }
};
using C_NotesPtr = std::unique_ptr<voxplay_notes, S_NotesFreer>;

constexpr const char* kLongText = "a text that is too long to be held by a string itself";

// Calls work with the first allocation refused, then with the second one, and so on, until all are
// granted. Returns how many were refused.
template <typename Work>
int RefuseEach(voxplay_note_kind eKind, Work work) {
  for (int nCall = 1; nCall < 100; ++nCall) {
    const C_NotesPtr notes(voxplay_notes_new());
    C_FaultyNew faulty(nCall, false);
    const voxplay_status eStatus = work(notes.get());
    faulty.Stop();
    if (!faulty.WasHit()) {
      EXPECT_EQ(eStatus, VOXPLAY_OK);
      EXPECT_EQ(voxplay_notes_count(notes.get(), eKind), 1U);
      return nCall - 1;
    }
    EXPECT_EQ(eStatus, VOXPLAY_NO_MEMORY) << nCall;
    EXPECT_EQ(voxplay_notes_count(notes.get(), eKind), 0U) << nCall;
  }
  ADD_FAILURE() << "there is no end of allocations";
  return 0;
}

TEST(NotesMemory, RefusedWhileAdding_LeavesTheNotesAsTheyWere) {
  const voxplay_event event{7, 1, 2, 3, kLongText};
  const voxplay_label label{7, {'l', 'a', 'b', 'l'}, kLongText};
  const voxplay_chunk chunk{{'b', 'e', 'x', 't'}, kLongText, 20};
  EXPECT_GE(RefuseEach(VOXPLAY_NOTE_EVENT,
                       [&](voxplay_notes* pNotes) {
                         return voxplay_notes_add_event(pNotes, &event, sizeof(event));
                       }),
            2);
  EXPECT_GE(RefuseEach(VOXPLAY_NOTE_LABEL,
                       [&](voxplay_notes* pNotes) {
                         return voxplay_notes_add_label(pNotes, &label, sizeof(label));
                       }),
            2);
  EXPECT_GE(RefuseEach(VOXPLAY_NOTE_CHUNK,
                       [&](voxplay_notes* pNotes) {
                         return voxplay_notes_add_chunk(pNotes, &chunk, sizeof(chunk));
                       }),
            2);
}

TEST(NotesMemory, RefusedForAnObject_GivesNull) {
  const C_NotesPtr notes(voxplay_notes_new());
  const voxplay_event event{7, 1, 2, 3, kLongText};
  ASSERT_EQ(voxplay_notes_add_event(notes.get(), &event, sizeof(event)), VOXPLAY_OK);
  for (int nCall = 1; nCall <= 3; ++nCall) {
    C_FaultyNew faulty(nCall, false);
    const voxplay_notes* const pCopy = voxplay_notes_copy(notes.get());
    faulty.Stop();
    EXPECT_EQ(pCopy, nullptr) << nCall;
  }
  C_FaultyNew faulty(1, true);
  const voxplay_notes* const pNew = voxplay_notes_new();
  faulty.Stop();
  EXPECT_EQ(pNew, nullptr);
}

TEST(NotesMemory, RefusedForAMessage_GivesAShorterOne) {
  std::string strMessage;
  const std::string strName = "speech.kst";
  const api::C_Failure failure(VOXPLAY_DAMAGED, kLongText);
  for (const auto& pFailure :
       {std::make_exception_ptr(std::bad_alloc()), std::make_exception_ptr(failure)}) {
    C_FaultyNew faulty(1, true);
    const voxplay_status eStatus =
        api::Guarded(&strMessage, strName, [&] { std::rethrow_exception(pFailure); });
    faulty.Stop();
    EXPECT_NE(eStatus, VOXPLAY_OK);
    EXPECT_EQ(strMessage, "no memory");
    strMessage = std::string();
  }
}

}  // namespace
