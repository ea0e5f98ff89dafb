// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "output/Playback.h"
#include "unit/Unit.h"

namespace toolbox {

// The most interleaved frames that a render callback is asked for at once.
inline constexpr UInt32 kMaxCallbackFrames = 4096;

// The default output. It takes its frames from a render callback, in cycles of at most
// kMaxCallbackFrames frames, or from a connected unit, in cycles of at most kMaxSliceFrames. Planar
// frames always come in cycles of at most kMaxSliceFrames. Formats: signed 16-bit or float,
// packed, native byte order, one or two channels. A channel layout is accepted and changes nothing:
// only the first two channels are heard.
class C_OutputUnit final : public I_Unit, private I_RenderSource {
 public:
  explicit C_OutputUnit(OpenDeviceFunction open);
  ~C_OutputUnit() override;

  // A unit without a graph opens its device here; a unit in a graph opens it when it is first
  // started.
  OSStatus Initialize() override;
  // Stops and closes the device.
  OSStatus Uninitialize() override;
  OSStatus SetProperty(const S_PropertyAddress& address, const void* pData, UInt32 cbData) override;
  OSStatus GetProperty(const S_PropertyAddress& address, void* pData, UInt32& cbData) override;
  // Always fails: the unit is the end of every chain, so nothing can pull from it.
  OSStatus Render(const AudioTimeStamp& stamp, UInt32 dwFrames, AudioBufferList& buffers) override;

  void OpenDeviceAtStart() noexcept { m_bOpenAtStart = true; }
  // Null disconnects.
  void Connect(std::shared_ptr<I_Unit> pSource);
  void AddNotify(const AURenderCallbackStruct& notify);
  // False when the notification was not added before.
  bool RemoveNotify(const AURenderCallbackStruct& notify);

  OSStatus Start();
  OSStatus Stop();
  [[nodiscard]] bool IsRunning() const noexcept { return m_bRunning; }

 private:
  bool RenderFrames(void* pFrames, UInt32 dwFrames) override;
  // False when the connected unit cannot read its file.
  bool RenderSlice(UInt8* pbyFrames, UInt32 dwFrames);
  [[nodiscard]] UInt32 MaxSliceFrames() const noexcept;
  void NotifyAll(AudioUnitRenderActionFlags dwFlags, const AudioTimeStamp& stamp, UInt32 dwFrames);
  OSStatus Pull(const AudioTimeStamp& stamp, UInt32 dwFrames, AudioBufferList& buffers);
  AudioBufferList& PointBuffersAt(UInt8* pbyFrames, UInt32 dwFrames);
  void Interleave(UInt8* pbyFrames, UInt32 dwFrames) const;
  // Both are called with the lock held.
  void OpenPlayback();
  void StopPlayback();
  OSStatus SetFormat(const void* pData, UInt32 cbData);
  OSStatus SetCallback(const void* pData, UInt32 cbData);
  [[nodiscard]] bool IsPlanar() const noexcept;

  const OpenDeviceFunction m_open;
  std::atomic<bool> m_bOpenAtStart{false};
  std::atomic<bool> m_bRunning{false};

  // Guards what the controlling threads see; may be held while the device is called.
  std::mutex m_lock;
  bool m_bInitialized = false;
  std::unique_ptr<C_Playback> m_pPlayback;

  // Lets callbacks read the format while a controlling thread waits for them. The format changes
  // only while nothing renders.
  std::mutex m_formatLock;
  AudioStreamBasicDescription m_format;

  // Guards what a render cycle uses; never held while the device is called.
  std::mutex m_renderLock;
  AURenderCallbackStruct m_callback{};
  std::shared_ptr<I_Unit> m_pSource;
  std::vector<AURenderCallbackStruct> m_notifies;
  double m_dSampleTime = 0;
  std::array<std::array<float, kMaxSliceFrames>, 2> m_planes{};
  // An AudioBufferList with room for two buffers.
  alignas(AudioBufferList)
      std::array<UInt8, sizeof(AudioBufferList) + sizeof(AudioBuffer)> m_bufferList{};
};

}  // namespace toolbox
