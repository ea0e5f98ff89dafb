// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioUnit.h>

#include <cstring>
#include <memory>

namespace toolbox {

// The most frames of one render cycle, so that positions advance finely however much a device asks
// for at once.
inline constexpr UInt32 kMaxSliceFrames = 512;

// Which property of which part of a unit.
struct S_PropertyAddress {
  AudioUnitPropertyID dwID;
  AudioUnitScope dwScope;
  AudioUnitElement dwElement;
};

// What stands behind an AudioUnit. Results are the published status codes. Data pointers are not
// null; sizes are still to be checked.
class C_Unit {
 public:
  virtual ~C_Unit() = default;
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

// Copies a property of a fixed size in.
template <typename T>
OSStatus CopyIn(T& value, const void* pData, UInt32 cbData) {
  if (cbData != sizeof(T)) return kAudioUnitErr_InvalidPropertyValue;
  std::memcpy(&value, pData, sizeof(T));
  return noErr;
}

// Copies a property of a fixed size out; the caller's room may be larger.
template <typename T>
OSStatus CopyOut(const T& value, void* pData, UInt32& cbData) {
  if (cbData < sizeof(T)) return kAudioUnitErr_InvalidPropertyValue;
  std::memcpy(pData, &value, sizeof(T));
  cbData = sizeof(T);
  return noErr;
}

// Whether an address names the one element of the scope that a property lives in.
[[nodiscard]] OSStatus CheckAddress(const S_PropertyAddress& address, AudioUnitScope dwScope);

// Rates that every output accepts.
[[nodiscard]] bool IsOutputRate(double dRate) noexcept;

// The unit of a handle; null when there is none.
[[nodiscard]] std::shared_ptr<C_Unit> FindUnit(AudioUnit unit);

}  // namespace toolbox
