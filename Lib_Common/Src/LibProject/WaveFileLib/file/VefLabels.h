// SPDX-License-Identifier: Apache-2.0
//
// How the events of a sound travel in a VEF container: the event with index i as cue point i + 1 at
// its sample position, with a label "(<command>,<data>)". The command holds the main index in its
// upper 16 bits and the sub index in its lower ones; both numbers are signed decimals of 32 bits.
//
// Kept: silence segments and regions do not travel, unlike in WAV files (WavLabels.h); players of
// these containers would take them for marks of the user's. Pinned by
// SilenceSegmentsAndRegions_AreNotWritten.
#pragma once

#include <optional>
#include <string>

#include "interface/I_WavData.h"
#include "interface/I_WavDataInfo.h"

namespace veflabels {

struct S_EventLabel {
  unsigned short wMain = 0;
  unsigned short wSub = 0;
  unsigned int dwData = 0;

  friend bool operator==(const S_EventLabel&, const S_EventLabel&) = default;
};

std::string EventLabel(const S_EventLabel& event);

// The event that a text was made of; empty for a text that EventLabel never gives, with a space or
// a number beyond 32 bits in it, say.
std::optional<S_EventLabel> ParseEventLabel(const char* pszText);

// Is the text exactly one that the library gives its own labels: "(%d,%d)", "u_%d_%d", "VX_Silence"
// or "VX_PCM" with numbers as they are printed?
bool IsLibraryLabel(const char* pszText);

// The events of the labels replace those of the sound. Labels without a cue point are passed over;
// sounds without a sample rate get no events, which could not be placed.
void LoadEvents(I_WavData& wavData, I_WavDataListInfo& listInfo, I_WavDataCueInfo& cueInfo);

// Cue points and labels become those of the sound's events and, in front of them, those of the
// user. The user's are all but the labels that IsLibraryLabel accepts and the cue points and texts
// of identifiers that have such labels only. Where the user's identifiers are those of events, they
// change to the lowest free ones behind the events, in cue points, labels, texts and loops alike.
void SaveEvents(I_WavData& wavData, I_WavDataListInfo& listInfo, I_WavDataCueInfo& cueInfo,
                I_WavDataSamplerInfo& samplerInfo);

}  // namespace veflabels
