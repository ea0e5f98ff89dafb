// SPDX-License-Identifier: Apache-2.0
//
// Finds the chunks of a RIFF file as the world writes them. The class library lists chunks by its
// own rules (RiffFile.h) and finds the same ones in all files that it can read.
//
//   what is written                        what is understood
//   "RIFF" or "RF64"                       of RF64, the sizes in "ds64" count
//   a RIFF or "data" size of 0 or 2^32-1   by programs that wrote to a pipe: to the end of the file
//   one from 0x7F000000 on                 the same, in WAVE files that lack more than 64 MiB of it
//   pad bytes after odd sizes, or none     zeros before a chunk's header are passed over; so is
//                                          another byte where only what follows it can be a chunk
//   a chunk that the end of the file cuts  it is listed with what is there
//
// A "data" size of 0 says so only in WAVE and VEMD files whose RIFF size does not say anything
// either, and where no chunks follow that lead exactly to the end of the file.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "notes/Notes.h"
#include "source/ByteSource.h"

namespace api {

struct S_FoundChunk {
  S_FourCC id{};
  S_ByteRange payload;     // as the file claims, after ds64
  std::uint64_t qwHeld{};  // the bytes of it that are there; all of them unless the end cuts it
};

struct S_RiffContents {
  S_FourCC form{};
  bool bRf64 = false;
  bool bToTheEnd = false;  // the size of "data" was not known when it was written
  // The file ends before the end that its RIFF size or its last chunk names, or that is not known.
  bool bCutShort = false;
  // The same, but only where that is known, and nothing else can have made the sizes wrong: many
  // programs count 8 bytes too many.
  bool bLacksBytes = false;
  std::vector<S_FoundChunk> chunks;

  // The last chunk with this identifier, null when there is none. pszID has four characters.
  [[nodiscard]] const S_FoundChunk* Find(const char* pszID) const noexcept;
};

// Empty when the source begins with neither "RIFF" nor "RF64" and a form. Of a source that only
// goes forward, the chunks up to "data" are listed. Throws C_Failure when it cannot be read.
std::optional<S_RiffContents> ScanRiff(I_ByteSource& source);

// The same, and calls fnFound for each chunk before anything after its header is read. So the
// payloads in a source that only goes forward can be read while they come by. Of a source whose
// length is not known, qwHeld is what the chunk claims.
using C_ChunkFound = std::function<void(const S_FoundChunk& chunk)>;
std::optional<S_RiffContents> ScanRiff(I_ByteSource& source, const C_ChunkFound& fnFound);

}  // namespace api
