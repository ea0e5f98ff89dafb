// SPDX-License-Identifier: Apache-2.0
#include "output/NullDevice.h"

#include <algorithm>
#include <chrono>
#include <exception>

namespace toolbox {
namespace {

using Clock = std::chrono::steady_clock;
constexpr UInt64 kSlicesPerSecond = 100;
constexpr Clock::duration kSlice = std::chrono::milliseconds(1000 / kSlicesPerSecond);
// A longer lag means that the process was suspended; that time is not made up for in one rush.
constexpr Clock::duration kMaxLag = std::chrono::seconds(1);
constexpr UInt64 kMaxSlicesAtOnce = 10;

// Returns how many slices to render now, at least one, and moves `due` to the time of the last of
// them. Overdue slices are rendered in one call, so that a client whose calls cost as much for a
// few frames as for many keeps up.
UInt64 TakeDueSlices(Clock::time_point& due) {
  const auto now = Clock::now();
  if (now - due > kMaxLag) {
    due = now;
    return 1;
  }
  const auto nOverdue = std::min<Clock::rep>((now - due) / kSlice, kMaxSlicesAtOnce - 1);
  due += nOverdue * kSlice;
  return 1 + static_cast<UInt64>(nOverdue);
}

}  // namespace

C_NullDevice::C_NullDevice(const S_OutputFormat& format, I_DeviceClient& client)
    : m_format(format),
      m_client(client),
      m_slices((kMaxSlicesAtOnce * format.dwRate / kSlicesPerSecond + 1) * format.FrameBytes()) {}

C_NullDevice::~C_NullDevice() { Stop(); }

bool C_NullDevice::Prepare() {
  const std::lock_guard lock(m_lock);
  return MakeThread();
}

bool C_NullDevice::Start() {
  const std::lock_guard lock(m_lock);
  if (!MakeThread()) return false;
  SetState(tagState::Rendering);
  return true;
}

bool C_NullDevice::MakeThread() {
  if (m_thread.joinable()) return true;
  m_eState = tagState::Waiting;
  try {
    m_thread = std::thread(&C_NullDevice::Run, this);
  } catch (const std::exception&) {
    return false;
  }
  return true;
}

void C_NullDevice::SetState(tagState eState) {
  m_eState = eState;
  m_eState.notify_all();
}

void C_NullDevice::Stop() {
  const std::lock_guard lock(m_lock);
  if (!m_thread.joinable()) return;
  SetState(tagState::Ending);
  m_thread.join();
}

void C_NullDevice::Run() {
  m_eState.wait(tagState::Waiting);
  auto due = Clock::now();
  UInt64 qwRemainder = 0;
  while (m_eState == tagState::Rendering) {
    due += kSlice;
    std::this_thread::sleep_until(due);
    // When the rate is not a multiple of the slice rate, the remainder goes into the next slice.
    qwRemainder += TakeDueSlices(due) * m_format.dwRate;
    Render(static_cast<UInt32>(qwRemainder / kSlicesPerSecond));
    qwRemainder %= kSlicesPerSecond;
  }
}

void C_NullDevice::Render(UInt32 dwFrames) {
  if (m_eState != tagState::Rendering) return;
  std::fill(m_slices.begin(), m_slices.end(), UInt8{0});
  m_client.RenderFrames(m_slices.data(), dwFrames);
}

}  // namespace toolbox
