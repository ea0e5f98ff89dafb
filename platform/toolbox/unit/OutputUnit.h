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

// The most frames that a render callback of interleaved frames is asked for at once.
inline constexpr UInt32 kMaxCallbackFrames = 4096;

// The default output. Takes its frames from a render callback, in cycles of at most
// kMaxCallbackFrames frames, or from a connected unit, in cycles of at most kMaxSliceFrames; planar
// frames always in the latter. A unit that stands alone is asked seldom and well ahead, for its
// callback may take longer than a file player. Formats: signed 16-bit or float, packed, native byte
// order, one or two channels. A channel layout is accepted and changes nothing: the first two
// channels sound.
class C_OutputUnit final : public C_Unit, private I_RenderSource {
 public:
  explicit C_OutputUnit(OpenDeviceFunction open);
  ~C_OutputUnit() override;

  // A unit that stands alone opens its device here; one that belongs to a graph at its first start.
  OSStatus Initialize() override;
  // Stops and closes the device.
  OSStatus Uninitialize() override;
  OSStatus SetProperty(const S_PropertyAddress& address, const void* pData, UInt32 cbData) override;
  OSStatus GetProperty(const S_PropertyAddress& address, void* pData, UInt32& cbData) override;
  // The unit is the end of every chain: nothing can pull from it.
  OSStatus Render(const AudioTimeStamp& stamp, UInt32 dwFrames, AudioBufferList& buffers) override;

  void OpenDeviceAtStart() noexcept { m_bOpenAtStart = true; }
  // Null disconnects.
  void Connect(std::shared_ptr<C_Unit> pSource);
  void AddNotify(const AURenderCallbackStruct& notify);
  // False when it is not there.
  bool RemoveNotify(const AURenderCallbackStruct& notify);

  OSStatus Start();
  OSStatus Stop();
  [[nodiscard]] bool IsRunning() const noexcept { return m_bRunning; }

 private:
  void RenderFrames(void* pFrames, UInt32 dwFrames) override;
  void RenderSlice(UInt8* pbyFrames, UInt32 dwFrames);
  [[nodiscard]] UInt32 MaxSliceFrames() const noexcept;
  void NotifyAll(AudioUnitRenderActionFlags dwFlags, const AudioTimeStamp& stamp, UInt32 dwFrames);
  OSStatus Pull(const AudioTimeStamp& stamp, UInt32 dwFrames, AudioBufferList& buffers);
  AudioBufferList& PointBuffersAt(UInt8* pbyFrames, UInt32 dwFrames);
  void Interleave(UInt8* pbyFrames, UInt32 dwFrames) const;
  // Both with the lock held.
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

  // For callbacks that read the format while a controlling thread waits for them. The format
  // changes only while nothing renders.
  std::mutex m_formatLock;
  AudioStreamBasicDescription m_format;

  // Guards what a render cycle uses; never held while the device is called.
  std::mutex m_renderLock;
  AURenderCallbackStruct m_callback{};
  std::shared_ptr<C_Unit> m_pSource;
  std::vector<AURenderCallbackStruct> m_notifies;
  double m_dSampleTime = 0;
  std::array<std::array<float, kMaxSliceFrames>, 2> m_planes{};
  // An AudioBufferList with room for two buffers.
  alignas(AudioBufferList)
      std::array<UInt8, sizeof(AudioBufferList) + sizeof(AudioBuffer)> m_bufferList{};
};

}  // namespace toolbox
