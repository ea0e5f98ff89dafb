// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/BaseTypes.h>

#include <chrono>
#include <functional>
#include <memory>

namespace toolbox {

// What a device is asked to play: interleaved frames of signed 16-bit or 32-bit float samples in
// the machine's byte order.
struct S_OutputFormat {
  UInt32 dwRate = 0;
  UInt32 dwChannels = 0;
  bool bFloat = false;

  [[nodiscard]] std::size_t FrameBytes() const noexcept {
    return dwChannels * (bFloat ? sizeof(float) : sizeof(SInt16));
  }
};

// The client that a device plays for. Both calls come from a thread of the device.
class I_DeviceClient {
 public:
  // Fills `dwFrames` frames; the memory is zero on entry.
  virtual void RenderFrames(void* pFrames, UInt32 dwFrames) = 0;  // 1
  // The device will no longer ask for frames, although nobody stopped it.
  virtual void DeviceLost() = 0;  // 2

 protected:
  ~I_DeviceClient() = default;
};

// How long an audio service may take to answer, or to ask for frames while it plays, before it
// counts as absent.
inline constexpr std::chrono::milliseconds kServiceAnswerLimit{5000};

// An open device. It plays between `Start` and `Stop`, and can be started again. The client may
// need a long time for each call, however few frames it is asked for, so a device asks seldom, for
// many frames at once and well ahead.
//
// While it plays it asks for frames at the rate of the format, from one thread of its own, because
// the client measures time by them. The client calls `Start`, `Stop` and the destructor, never two
// of them at once. A device that fails calls `DeviceLost` once, with no lock held; this can happen
// while `Stop` waits. It then asks for no more frames, and `Stop` need not follow. The destructor
// ends the thread.
class I_OutputDevice {
 public:
  virtual ~I_OutputDevice() = default;
  // False when the device cannot play, or can no longer play.
  virtual bool Start() = 0;  // 1
  // Returns once everything rendered so far has been played; asks for no more frames after that.
  virtual void Stop() = 0;  // 2
  // What was rendered need not be played: `Stop` falls silent and returns soon, also one that waits
  // already. Any thread may call it.
  virtual void Cut() = 0;  // 3
};

// Opens the default device of the machine; null when there is no device. The client outlives the
// device.
using OpenDeviceFunction =
    std::function<std::unique_ptr<I_OutputDevice>(const S_OutputFormat&, I_DeviceClient&)>;

}  // namespace toolbox
