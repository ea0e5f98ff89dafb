// SPDX-License-Identifier: Apache-2.0
//
// All that a file may hold beside its samples, as voxplay.h describes it. Plain data; what files
// make of it is in notes/RiffNotes.h.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace api {

using S_FourCC = std::array<char, 4>;

struct S_NoteEvent {
  std::uint64_t qwFrame = 0;
  std::uint16_t wMain = 0;
  std::uint16_t wSub = 0;
  std::uint32_t dwData = 0;
  std::string strDescription;
  friend bool operator==(const S_NoteEvent&, const S_NoteEvent&) = default;
};

struct S_NoteRange {
  std::uint64_t qwFirst = 0;
  std::uint64_t qwCount = 0;
  friend bool operator==(const S_NoteRange&, const S_NoteRange&) = default;
};

struct S_NoteCue {
  std::uint32_t dwID = 0;
  std::uint32_t dwPosition = 0;
  S_FourCC chunk{'d', 'a', 't', 'a'};
  std::uint32_t dwChunkStart = 0;
  std::uint32_t dwBlockStart = 0;
  std::uint32_t dwSampleOffset = 0;
  friend bool operator==(const S_NoteCue&, const S_NoteCue&) = default;
};

struct S_NoteLabel {
  std::uint32_t dwCueID = 0;
  S_FourCC type{'l', 'a', 'b', 'l'};
  std::string strText;
  friend bool operator==(const S_NoteLabel&, const S_NoteLabel&) = default;
};

struct S_NoteRegionText {
  std::uint32_t dwCueID = 0;
  std::uint32_t dwCount = 0;
  S_FourCC purpose{'r', 'g', 'n', ' '};
  std::uint16_t wCountry = 0;
  std::uint16_t wLanguage = 0;
  std::uint16_t wDialect = 0;
  std::uint16_t wCodePage = 0;
  std::string strText;
  friend bool operator==(const S_NoteRegionText&, const S_NoteRegionText&) = default;
};

struct S_NoteLoop {
  std::uint32_t dwID = 0;
  std::uint32_t dwType = 0;
  std::uint32_t dwFirst = 0;
  std::uint32_t dwLast = 0;
  std::uint32_t dwFraction = 0;
  std::uint32_t dwPlayCount = 0;
  friend bool operator==(const S_NoteLoop&, const S_NoteLoop&) = default;
};

struct S_NoteSampler {
  bool bPresent = false;
  std::uint32_t dwManufacturer = 0;
  std::uint32_t dwProduct = 0;
  std::uint32_t dwSamplePeriod = 0;
  std::uint32_t dwMidiUnityNote = 0;
  std::uint32_t dwMidiPitchFraction = 0;
  std::uint32_t dwSmpteFormat = 0;
  std::uint32_t dwSmpteOffset = 0;
  std::vector<std::uint8_t> data;
  friend bool operator==(const S_NoteSampler&, const S_NoteSampler&) = default;
};

struct S_NoteChunk {
  S_FourCC id{};
  std::vector<std::uint8_t> data;
  friend bool operator==(const S_NoteChunk&, const S_NoteChunk&) = default;
};

struct S_Notes {
  std::vector<S_NoteEvent> events;      // by frame
  std::vector<S_NoteRange> silence;     // by first frame
  std::vector<S_NoteRange> regions;     // by first frame
  std::vector<S_NoteCue> cues;          // without those of events, silence and regions
  std::vector<S_NoteLabel> labels;      // without theirs
  std::vector<S_NoteRegionText> texts;  // without theirs
  S_NoteSampler sampler;
  std::vector<S_NoteLoop> loops;
  std::vector<S_NoteChunk> chunks;
  friend bool operator==(const S_Notes&, const S_Notes&) = default;
};

}  // namespace api
