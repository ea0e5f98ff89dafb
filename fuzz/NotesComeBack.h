// SPDX-License-Identifier: Apache-2.0
//
// Compares the notes that a writer was given with those that a reader finds. Without a sentence
// they are the same, in the same order. With sentences, each note that is missing is named in one,
// and nothing appears that no sentence explains.
#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Require.h"
#include "voxplay.hpp"

namespace notescomeback {

using C_Texts = std::vector<std::string>;

inline std::string Joined(const C_Texts& parts) {
  std::string strAll;
  for (const std::string& strPart : parts) strAll += strPart + '\0';
  return strAll;
}

template <typename... Numbers>
std::string TextOf(Numbers... numbers) {
  return Joined({std::to_string(numbers)...});
}

template <std::size_t cbID>
std::string IDOf(const char (&id)[cbID]) {
  return {id, cbID};
}

inline std::string AsText(const voxplay::Event& event) {
  return TextOf(event.frame, event.main_command, event.sub_command, event.data) +
         (event.description == nullptr ? "" : event.description);
}
inline std::string AsText(const voxplay::Range& range) { return TextOf(range.first, range.count); }
inline std::string AsText(const voxplay::Cue& cue) {
  return TextOf(cue.id, cue.position, cue.chunk_start, cue.block_start, cue.sample_offset) +
         IDOf(cue.chunk);
}
inline std::string AsText(const voxplay::Label& label) {
  return TextOf(label.cue_id) + IDOf(label.type) + label.text;
}
inline std::string AsText(const voxplay::RegionText& text) {
  return TextOf(text.cue_id, text.count, text.country, text.language, text.dialect,
                text.code_page) +
         IDOf(text.purpose) + text.text;
}
inline std::string AsText(const voxplay::Loop& loop) {
  return TextOf(loop.id, loop.type, loop.first, loop.last, loop.fraction, loop.play_count);
}
inline std::string AsText(const voxplay::Chunk& chunk) {
  const auto* const pBytes = static_cast<const char*>(chunk.data);
  return IDOf(chunk.id) + (chunk.size == 0 ? std::string() : std::string(pBytes, chunk.size));
}
inline std::string AsText(const voxplay::Sampler& sampler) {
  const auto* const pBytes = static_cast<const char*>(sampler.data);
  return TextOf(sampler.manufacturer, sampler.product, sampler.sample_period,
                sampler.midi_unity_note, sampler.midi_pitch_fraction, sampler.smpte_format,
                sampler.smpte_offset) +
         (sampler.data_size == 0 ? std::string() : std::string(pBytes, sampler.data_size));
}

template <typename Record>
C_Texts AsTexts(const voxplay::Records<Record>& records) {
  C_Texts texts;
  for (const Record& record : records) texts.push_back(AsText(record));
  return texts;
}

inline auto CountOf(const C_Texts& texts, const std::string& strText) {
  return std::ranges::count(texts, strText);
}

inline auto CountNamed(const C_Texts& lost, const std::string& strBegin) {
  return std::ranges::count_if(
      lost, [&](const std::string& strLost) { return strLost.starts_with(strBegin); });
}

// Of notes that are alike, as many must be named as are missing.
inline void RequireMissingAreNamed(const std::string& strKind, const C_Texts& given,
                                   const C_Texts& found, const C_Texts& lost) {
  for (const std::string& strGiven : given) {
    std::ptrdiff_t nNamed = 0;
    for (std::size_t i = 0; i < given.size(); ++i) {
      const std::string strBegin = strKind + ' ' + std::to_string(i + 1) + ' ';
      if (given[i] == strGiven && CountNamed(lost, strBegin) > 0) ++nNamed;
    }
    Require(CountOf(given, strGiven) - CountOf(found, strGiven) <= nNamed);
  }
}

// How many of the notes that were found were not given.
inline std::ptrdiff_t CountNew(const C_Texts& given, const C_Texts& found) {
  std::map<std::string, std::ptrdiff_t> counts;
  for (const std::string& strFound : found) ++counts[strFound];
  for (const std::string& strGiven : given) --counts[strGiven];
  std::ptrdiff_t nNew = 0;
  for (const auto& [strText, nCount] : counts) nNew += std::max<std::ptrdiff_t>(nCount, 0);
  return nNew;
}

inline void RequireList(const std::string& strKind, const C_Texts& given, const C_Texts& found,
                        const C_Texts& lost) {
  if (lost.empty()) return Require(found == given);
  RequireMissingAreNamed(strKind, given, found, lost);
  // An event loses its data, or a label is taken for one.
  const bool bEvents = strKind == "event";
  const auto nExplained = bEvents ? CountNamed(lost, "event ") + CountNamed(lost, "label ") : 0;
  Require(CountNew(given, found) <= nExplained);
}

inline void RequireSampler(const voxplay::NotesView& given, const voxplay::NotesView& found,
                           const C_Texts& lost) {
  if (CountNamed(lost, "sampler record") == 0) {
    Require(AsText(found.sampler()) == AsText(given.sampler()));
  }
}

}  // namespace notescomeback

inline void RequireNotesComeBack(const voxplay::NotesView& given, const voxplay::NotesView& found,
                                 const std::vector<std::string>& lost) {
  using notescomeback::AsTexts;
  using notescomeback::RequireList;
  RequireList("event", AsTexts(given.events()), AsTexts(found.events()), lost);
  RequireList("silence", AsTexts(given.silence()), AsTexts(found.silence()), lost);
  RequireList("region", AsTexts(given.regions()), AsTexts(found.regions()), lost);
  RequireList("cue point", AsTexts(given.cues()), AsTexts(found.cues()), lost);
  RequireList("label", AsTexts(given.labels()), AsTexts(found.labels()), lost);
  RequireList("region text", AsTexts(given.region_texts()), AsTexts(found.region_texts()), lost);
  RequireList("loop", AsTexts(given.loops()), AsTexts(found.loops()), lost);
  RequireList("chunk", AsTexts(given.chunks()), AsTexts(found.chunks()), lost);
  notescomeback::RequireSampler(given, found, lost);
}
