// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioUnit.h>

#include <cstddef>
#include <cstring>
#include <memory>

namespace toolbox {

// The most frames that a unit renders in one cycle. Short cycles let positions advance finely,
// however many frames a device asks for at once.
inline constexpr UInt32 kMaxSliceFrames = 512;

// For so many render notifications there is always memory. A player that misses them waits for the
// end of its sound forever.
inline constexpr std::size_t kSureNotifies = 4;

// What a unit plays until it is told another format: float stereo at 44.1 kHz, not interleaved, so
// that sizes are those of one channel.
inline constexpr AudioStreamBasicDescription kDefaultUnitFormat = {
    44100.0,
    kAudioFormatLinearPCM,
    kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked | kAudioFormatFlagIsNonInterleaved,
    sizeof(float),
    1,
    sizeof(float),
    2,
    32,
    0};

// The address of a property within a unit.
struct S_PropertyAddress {
  AudioUnitPropertyID dwID;
  AudioUnitScope dwScope;
  AudioUnitElement dwElement;
};

// The object behind an AudioUnit. Results are the published status codes. Data pointers are never
// null; the units check the sizes themselves.
class I_Unit {
 public:
  virtual ~I_Unit() = default;
  virtual OSStatus Initialize() = 0;    // 1
  virtual OSStatus Uninitialize() = 0;  // 2
  virtual OSStatus SetProperty(const S_PropertyAddress& address, const void* pData,
                               UInt32 cbData) = 0;  // 3
  virtual OSStatus GetProperty(const S_PropertyAddress& address, void* pData,
                               UInt32& cbData) = 0;  // 4
  // Fills the buffers with the frames of one cycle.
  virtual OSStatus Render(const AudioTimeStamp& stamp, UInt32 dwFrames,
                          AudioBufferList& buffers) = 0;  // 5
};

// Copies a property of a fixed size from the caller's data.
template <typename T>
OSStatus CopyIn(T& value, const void* pData, UInt32 cbData) {
  if (cbData != sizeof(T)) return kAudioUnitErr_InvalidPropertyValue;
  std::memcpy(&value, pData, sizeof(T));
  return noErr;
}

// Copies a property of a fixed size to the caller's buffer, which may be larger.
template <typename T>
OSStatus CopyOut(const T& value, void* pData, UInt32& cbData) {
  if (cbData < sizeof(T)) return kAudioUnitErr_InvalidPropertyValue;
  std::memcpy(pData, &value, sizeof(T));
  cbData = sizeof(T);
  return noErr;
}

// Checks that an address names the only element of the scope that its property belongs to.
[[nodiscard]] OSStatus CheckAddress(const S_PropertyAddress& address, AudioUnitScope dwScope);

// Whether every output accepts this sample rate.
[[nodiscard]] bool IsOutputRate(double dRate) noexcept;

// The unit with this handle; null when there is no such unit.
[[nodiscard]] std::shared_ptr<I_Unit> FindUnit(AudioUnit unit);

}  // namespace toolbox
