// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

#include "output/OutputDevice.h"

namespace toolbox {

// Takes the place of a missing device: renders in slices of 10 ms in real time, several at once
// when they are overdue, and plays nothing.
class C_NullDevice final : public I_OutputDevice {
 public:
  C_NullDevice(const S_OutputFormat& format, I_DeviceClient& client);
  ~C_NullDevice() override;
  C_NullDevice(const C_NullDevice&) = delete;
  C_NullDevice& operator=(const C_NullDevice&) = delete;

  // Makes the thread, which then waits for `Start`. False when no thread can be made.
  bool Prepare();
  // The same, and lets it render. Does nothing when the device is already running. Always true
  // after `Prepare`.
  bool Start() override;
  // Ends the thread. Waits at most for the slice that is being rendered. Does nothing when there is
  // no thread.
  void Stop() override;
  // There is nothing that waits to be played.
  void Cut() override {}

 private:
  enum class tagState : int { Waiting, Rendering, Ending };
  // Called with the lock held.
  bool MakeThread();
  void SetState(tagState eState);
  void Run();
  void Render(UInt32 dwFrames);

  const S_OutputFormat m_format;
  I_DeviceClient& m_client;
  std::vector<UInt8> m_slices;
  std::atomic<tagState> m_eState{tagState::Waiting};
  std::mutex m_lock;
  std::thread m_thread;
};

}  // namespace toolbox
