// SPDX-License-Identifier: Apache-2.0
//
// How the notes that a file cannot hold are named: "event 2 at frame 4800". They are counted
// from 1.
#pragma once

#include <cstddef>
#include <string>

#include "notes/Notes.h"

namespace api {

std::string NameOf(const S_NoteEvent& event, std::size_t nIndex);
// pszKind is "silence" or "region".
std::string NameOf(const char* pszKind, const S_NoteRange& range, std::size_t nIndex);
std::string NameOf(const S_NoteCue& cue, std::size_t nIndex);
std::string NameOf(const S_NoteLabel& label, std::size_t nIndex);
std::string NameOf(const S_NoteRegionText& text, std::size_t nIndex);
std::string NameOf(const S_NoteLoop& loop, std::size_t nIndex);
std::string NameOf(const S_NoteChunk& chunk, std::size_t nIndex);

}  // namespace api
