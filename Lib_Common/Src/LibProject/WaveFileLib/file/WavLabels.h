// SPDX-License-Identifier: Apache-2.0
//
// How the annotations of a sound are stored in a RIFF file: as cue points with "adtl" labels.
//
//   annotation            cue point at       label text          labelled text
//   event (main, sub)     sample position    "u_<main>_<sub>"    none
//   silence segment       first sample       "VX_Silence"        sample count, purpose "rgn "
//   uncompressed region   first sample       "VX_PCM"            sample count, purpose "rgn "
//
// Cue point identifiers count from 1: events first, then silence segments, then regions.
//
// Kept: an event's description and data are not stored. Old readers take the text for the two
// indices and nothing else. Pinned by DescriptionAndDataOfEvents_DoNotTravel.
#pragma once

#include <string>

#include "interface/I_WavData.h"
#include "interface/I_WavDataInfo.h"

namespace wavlabels {

inline constexpr const char* kSilenceLabel = "VX_Silence";
inline constexpr const char* kRegionLabel = "VX_PCM";

struct S_LabelMeaning {
  enum class Kind { Other, Event, Silence, Region };

  Kind eKind = Kind::Other;
  unsigned short wMain = 0;  // of an event
  unsigned short wSub = 0;

  friend bool operator==(const S_LabelMeaning&, const S_LabelMeaning&) = default;
};

// What a label text means. Never fails: a text of any other form is Other, a text in place of a
// number counts as 0, and an index that is too big keeps its low 16 bits. pszText must not be null.
S_LabelMeaning ParseLabel(const char* pszText);

// The text of an event's label.
std::string EventLabel(unsigned short wMain, unsigned short wSub);

// Adds an event to the sound for each label of an event, and replaces the sound's silence segments
// and uncompressed regions by those of the labels. A label of these kinds whose identifier has no
// cue point stops the program, except in a file that is cut short: its cue points may have stood in
// the missing part, so the label is passed over. A sound without a sample rate gets no events,
// because they could not be placed.
void LoadAnnotations(I_WavData& wavData, I_WavDataListInfo& listInfo, I_WavDataCueInfo& cueInfo,
                     bool bCutShort);

// Replaces all cue points, labels and labelled texts by those of the sound's annotations.
void SaveAnnotations(I_WavData& wavData, I_WavDataListInfo& listInfo, I_WavDataCueInfo& cueInfo);

}  // namespace wavlabels
