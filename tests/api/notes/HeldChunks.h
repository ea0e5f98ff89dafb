// SPDX-License-Identifier: Apache-2.0
//
// The chunks of files for the tests of notes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "RiffBytes.h"
#include "notes/RiffNotes.h"

namespace api::test {

inline S_FourCC ID(std::string_view text) { return {text[0], text[1], text[2], text[3]}; }

inline S_HeldChunk Held(std::string_view id, const C_Bytes& payload, bool bCut = false) {
  return {ID(id), payload, bCut};
}

// What was written, as it is found in a file.
inline std::vector<S_HeldChunk> HeldOf(const S_RiffNotes& written) {
  std::vector<S_HeldChunk> held;
  for (const auto* pChunks : {&written.marks, &written.others}) {
    for (const S_NoteChunk& chunk : *pChunks) held.push_back({chunk.id, chunk.data, false});
  }
  return held;
}

inline S_Notes Read(const std::vector<S_HeldChunk>& chunks, E_RiffForm eForm = E_RiffForm::Wave) {
  return ReadRiffNotes(chunks, eForm, false);
}
inline S_Notes ReadCut(const std::vector<S_HeldChunk>& chunks,
                       E_RiffForm eForm = E_RiffForm::Wave) {
  return ReadRiffNotes(chunks, eForm, true);
}
inline S_RiffNotes Written(const S_Notes& notes, E_RiffForm eForm = E_RiffForm::Wave) {
  return WriteRiffNotes(notes, eForm, 16000);
}
inline S_Notes Through(const S_Notes& notes, E_RiffForm eForm) {
  return Read(HeldOf(Written(notes, eForm)), eForm);
}

inline std::vector<std::string> NamesOf(const std::vector<S_NoteChunk>& chunks) {
  std::vector<std::string> names;
  for (const S_NoteChunk& chunk : chunks) names.emplace_back(chunk.id.begin(), chunk.id.end());
  return names;
}

// The payload of the last chunk with this identifier; empty when there is none.
inline C_Bytes PayloadOf(const std::vector<S_NoteChunk>& chunks, std::string_view id) {
  C_Bytes payload;
  for (const S_NoteChunk& chunk : chunks) {
    if (chunk.id == ID(id)) payload = chunk.data;
  }
  return payload;
}

// Parts of lists in the usual form: the pad byte is not counted.
inline C_Bytes PaddedPart(std::string_view id, const C_Bytes& payload) {
  return Join({ChunkBytes(id, payload), C_Bytes(payload.size() % 2)});
}
inline C_Bytes OthersLabel(std::uint32_t dwID, std::string_view text,
                           std::string_view type = "labl") {
  return PaddedPart(type, Join({U32(dwID), Ascii(text), {0}}));
}
// With country 49, language 9, dialect 1 and code page 1252.
inline C_Bytes OthersText(std::uint32_t dwID, std::uint32_t dwFrames, std::string_view text) {
  return PaddedPart("ltxt", Join({U32(dwID),
                                  U32(dwFrames),
                                  Ascii("rgn "),
                                  U16(49),
                                  U16(9),
                                  U16(1),
                                  U16(1252),
                                  Ascii(text),
                                  {0}}));
}

}  // namespace api::test
