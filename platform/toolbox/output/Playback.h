// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <mutex>

#include "output/NullDevice.h"
#include "output/OutputDevice.h"

namespace toolbox {

// Where frames are rendered; see I_DeviceClient::RenderFrames.
class I_RenderSource {
 public:
  virtual void RenderFrames(void* pFrames, UInt32 dwFrames) = 0;  // 1

 protected:
  ~I_RenderSource() = default;
};

// Plays a source on the machine's device, or on the null device where there is none or where it was
// lost, so that a started playback always goes on in real time.
class C_Playback final : private I_DeviceClient {
 public:
  // Opens the device. The source outlives the playback.
  C_Playback(const S_OutputFormat& format, I_RenderSource& source, const OpenDeviceFunction& open);
  ~C_Playback();
  C_Playback(const C_Playback&) = delete;
  C_Playback& operator=(const C_Playback&) = delete;

  // Both do nothing when there is nothing to change.
  void Start();
  // Returns when everything rendered so far has been heard.
  void Stop();
  [[nodiscard]] bool IsRunning() const;

 private:
  void RenderFrames(void* pFrames, UInt32 dwFrames) override;
  void DeviceLost() override;
  void StartSilently();

  I_RenderSource& m_source;
  // Keeps a device that is about to be lost and the null device apart.
  std::mutex m_renderLock;
  // Never held while the device is called: the device may be waiting in `DeviceLost` for it.
  mutable std::mutex m_lock;
  bool m_bRunning = false;
  bool m_bLost = false;
  bool m_bAnnounced = false;
  C_NullDevice m_null;
  std::unique_ptr<I_OutputDevice> m_pDevice;
};

}  // namespace toolbox
