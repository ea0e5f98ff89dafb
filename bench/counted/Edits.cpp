// SPDX-License-Identifier: Apache-2.0
//
// What is done to a 16-bit mono sound in memory, a sample a unit.
#include <array>

#include "ExampleSound.h"
#include "Subjects.h"

namespace counted {
namespace {

constexpr std::size_t kSamples = 16000;

template <typename Edit>
void Times(std::size_t nTimes, Edit edit) {
  const C_SoundPtr sound = ExampleSound({}, kSamples);
  for (std::size_t n = 0; n < nTimes; ++n) edit(*sound);
}

void Gain(std::size_t nTimes) {
  Times(nTimes, [](I_WavData& sound) { sound.ApplyGain(-1.0, -1.0); });
}
void Normalise(std::size_t nTimes) {
  Times(nTimes, [](I_WavData& sound) { sound.Normalize(); });
}
void FindSilence(std::size_t nTimes) {
  Times(nTimes, [](I_WavData& sound) { sound.DetectSilence(100, 1000, true); });
}
void RemoveOffset(std::size_t nTimes) {
  Times(nTimes, [](I_WavData& sound) { sound.RemoveDCOffset(); });
}
void ToEightBits(std::size_t nTimes) {
  Times(nTimes, [](I_WavData& sound) {
    Use(C_WavDataPtr(sound.CreateBitsConvertedData(8, 8, false, true)).get());
  });
}
void ChannelOut(std::size_t nTimes) {
  Times(nTimes,
        [](I_WavData& sound) { Use(C_WavDataPtr(sound.CreateChannelData(0, 0, kSamples)).get()); });
}
void Copy(std::size_t nTimes) {
  Times(nTimes, [](I_WavData& sound) { Use(C_WavDataPtr(sound.Clone()).get()); });
}

constexpr std::array kSubjects = {
    S_Subject{"gain", "sample", kSamples, 2, 12, &Gain},
    S_Subject{"normalise", "sample", kSamples, 2, 12, &Normalise},
    S_Subject{"find-silence", "sample", kSamples, 2, 12, &FindSilence},
    S_Subject{"remove-offset", "sample", kSamples, 2, 12, &RemoveOffset},
    S_Subject{"to-8-bits", "sample", kSamples, 2, 12, &ToEightBits},
    S_Subject{"channel-out", "sample", kSamples, 2, 12, &ChannelOut},
    S_Subject{"copy", "sample", kSamples, 2, 12, &Copy},
};

}  // namespace

std::span<const S_Subject> EditSubjects() { return kSubjects; }

}  // namespace counted
