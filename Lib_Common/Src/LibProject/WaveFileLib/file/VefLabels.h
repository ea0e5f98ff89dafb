// SPDX-License-Identifier: Apache-2.0
//
// How the events of a sound are stored in a VEF container. The event with index i becomes cue point
// i + 1 at its sample position, with the label "(<command>,<data>)". The command holds the main
// index in its upper 16 bits and the sub index in its lower 16 bits. Both numbers are signed
// decimals of 32 bits.
//
// Kept: silence segments and regions are not stored, unlike in WAV files (WavLabels.h). Players of
// these containers would take them for marks of the user. Pinned by
// SilenceSegmentsAndRegions_AreNotWritten.
#pragma once

#include <optional>
#include <string>

#include "interface/I_WavData.h"
#include "interface/I_WavDataInfo.h"

namespace veflabels {

// What the label of an event says.
struct S_EventLabel {
  unsigned short wMain = 0;
  unsigned short wSub = 0;
  unsigned int dwData = 0;

  friend bool operator==(const S_EventLabel&, const S_EventLabel&) = default;
};

// The text of an event's label.
std::string EventLabel(const S_EventLabel& event);

// The event that a text stands for. Empty for a text that EventLabel never returns, for example one
// with a space or with a number beyond 32 bits. pszText must not be null, here and below.
std::optional<S_EventLabel> ParseEventLabel(const char* pszText);

// True when the text is exactly one that the library gives its own labels: "(%d,%d)", "u_%d_%d",
// "VX_Silence" or "VX_PCM", with numbers as they are printed.
bool IsLibraryLabel(const char* pszText);

// Replaces the events of the sound by those of the labels. Labels without a cue point are skipped.
// A sound without a sample rate ends up without events, because they could not be placed.
void LoadEvents(I_WavData& wavData, I_WavDataListInfo& listInfo, I_WavDataCueInfo& cueInfo);

// Rewrites cue points and labels: first those of the user, then those of the sound's events.
// Everything is the user's except the labels that IsLibraryLabel accepts, and the cue points and
// texts whose identifiers have only such labels. Where the user's identifiers are also those of
// events, they change to the lowest free identifiers after those of the events, in cue points,
// labels, texts and loops alike. If the info objects are not of the library's own classes, events
// are only added to them.
void SaveEvents(I_WavData& wavData, I_WavDataListInfo& listInfo, I_WavDataCueInfo& cueInfo,
                I_WavDataSamplerInfo& samplerInfo);

}  // namespace veflabels
