// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <mutex>

#include "output/NullDevice.h"
#include "output/OutputDevice.h"

namespace toolbox {

// What renders the frames; see I_DeviceClient::RenderFrames.
class I_RenderSource {
 public:
  // False when there is silence instead of a sound that cannot be read.
  virtual bool RenderFrames(void* pFrames, UInt32 dwFrames) = 0;  // 1

 protected:
  ~I_RenderSource() = default;
};

// Plays a source on the machine's device. When there is no device, or it is lost, the null device
// takes over, so that a started playback always continues in real time. It says so once, in a line
// on standard error if that is a terminal. There it also says, once, that the source cannot be
// read.
class C_Playback final : private I_DeviceClient {
 public:
  // Opens the device. The source outlives the playback. When the program has printed text without a
  // line end before (`bAfterText`), the line begins on a new one.
  C_Playback(const S_OutputFormat& format, I_RenderSource& source, const OpenDeviceFunction& open,
             bool bAfterText = false);
  ~C_Playback();
  C_Playback(const C_Playback&) = delete;
  C_Playback& operator=(const C_Playback&) = delete;

  // `Start` and `Stop` do nothing when there is nothing to change. False when no thread can be
  // made; nothing plays then.
  bool Start();
  // Returns once everything rendered so far has been played.
  void Stop();
  // Lets `Stop` return without that, also one that waits already. Any thread may call it.
  void Cut();
  [[nodiscard]] bool IsRunning() const;

 private:
  void RenderFrames(void* pFrames, UInt32 dwFrames) override;
  void DeviceLost() override;
  void GoOnSilently();
  void TellOfUnreadSound();

  I_RenderSource& m_source;
  // Keeps a device that is about to be lost and the null device from rendering at the same time.
  std::mutex m_renderLock;
  // Never held while the device is called, because the device may be waiting for it in
  // `DeviceLost`.
  mutable std::mutex m_lock;
  bool m_bRunning = false;
  bool m_bLost = false;
  // Whether the device has ever started.
  bool m_bStarted = false;
  bool m_bAnnounced = false;
  bool m_bUnreadAnnounced = false;
  // While the line about the device is being written.
  bool m_bAnnouncing = false;
  // Whether the cursor stands after text.
  bool m_bAfterText;
  C_NullDevice m_null;
  std::unique_ptr<I_OutputDevice> m_pDevice;
};

}  // namespace toolbox
