// SPDX-License-Identifier: Apache-2.0
#include "file/ChannelMap.h"

#include <array>
#include <cstddef>
#include <cstring>

namespace toolbox {
namespace {

struct S_Label {
  int nSpeaker;
  AudioChannelLabel dwLabel;
};

// Speaker positions of the file library and the published label numbers of the toolbox.
constexpr std::array kLabels = {
    S_Label{SF_CHANNEL_MAP_LEFT, 1},
    S_Label{SF_CHANNEL_MAP_RIGHT, 2},
    S_Label{SF_CHANNEL_MAP_CENTER, 3},
    S_Label{SF_CHANNEL_MAP_FRONT_LEFT, 1},
    S_Label{SF_CHANNEL_MAP_FRONT_RIGHT, 2},
    S_Label{SF_CHANNEL_MAP_FRONT_CENTER, 3},
    S_Label{SF_CHANNEL_MAP_LFE, 4},
    S_Label{SF_CHANNEL_MAP_REAR_LEFT, 5},
    S_Label{SF_CHANNEL_MAP_REAR_RIGHT, 6},
    S_Label{SF_CHANNEL_MAP_FRONT_LEFT_OF_CENTER, 7},
    S_Label{SF_CHANNEL_MAP_FRONT_RIGHT_OF_CENTER, 8},
    S_Label{SF_CHANNEL_MAP_REAR_CENTER, 9},
    S_Label{SF_CHANNEL_MAP_SIDE_LEFT, 10},
    S_Label{SF_CHANNEL_MAP_SIDE_RIGHT, 11},
    S_Label{SF_CHANNEL_MAP_TOP_CENTER, 12},
    S_Label{SF_CHANNEL_MAP_TOP_FRONT_LEFT, 13},
    S_Label{SF_CHANNEL_MAP_TOP_FRONT_CENTER, 14},
    S_Label{SF_CHANNEL_MAP_TOP_FRONT_RIGHT, 15},
    S_Label{SF_CHANNEL_MAP_TOP_REAR_LEFT, 16},
    S_Label{SF_CHANNEL_MAP_TOP_REAR_CENTER, 17},
    S_Label{SF_CHANNEL_MAP_TOP_REAR_RIGHT, 18},
    S_Label{SF_CHANNEL_MAP_MONO, 42},
};
constexpr AudioChannelLabel kUnknownLabel = 0xFFFFFFFF;

AudioChannelLabel LabelOf(int nSpeaker) {
  for (const S_Label& label : kLabels) {
    if (label.nSpeaker == nSpeaker) return label.dwLabel;
  }
  return kUnknownLabel;
}

}  // namespace

std::vector<UInt8> ReadChannelLayout(SNDFILE* pSound, int nChannels) {
  std::vector<int> speakers(static_cast<std::size_t>(nChannels));
  const int cbMap = static_cast<int>(speakers.size() * sizeof(int));
  if (sf_command(pSound, SFC_GET_CHANNEL_MAP_INFO, speakers.data(), cbMap) != SF_TRUE) return {};

  constexpr std::size_t kHeadBytes = offsetof(AudioChannelLayout, mChannelDescriptions);
  const std::array<UInt32, 3> head = {kAudioChannelLayoutTag_UseChannelDescriptions, 0,
                                      static_cast<UInt32>(nChannels)};
  static_assert(sizeof head == kHeadBytes);
  std::vector<UInt8> layout(kHeadBytes + speakers.size() * sizeof(AudioChannelDescription));
  std::memcpy(layout.data(), head.data(), kHeadBytes);
  UInt8* pbyTo = layout.data() + kHeadBytes;
  for (const int nSpeaker : speakers) {
    const AudioChannelDescription description{LabelOf(nSpeaker), 0, {}};
    std::memcpy(pbyTo, &description, sizeof description);
    pbyTo += sizeof description;
  }
  return layout;
}

}  // namespace toolbox
