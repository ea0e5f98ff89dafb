// SPDX-License-Identifier: Apache-2.0
#include "NullDevice.h"

#include <algorithm>
#include <chrono>

namespace toolbox {
namespace {

using Clock = std::chrono::steady_clock;
constexpr UInt64 kSlicesPerSecond = 100;
constexpr Clock::duration kSlice = std::chrono::milliseconds(1000 / kSlicesPerSecond);
// Further behind than this, the process was suspended: that time is not made up for in one rush.
constexpr Clock::duration kMaxLag = std::chrono::seconds(1);

}  // namespace

C_NullDevice::C_NullDevice(const S_OutputFormat& format, I_DeviceClient& client)
    : m_format(format),
      m_client(client),
      m_slice((format.dwRate / kSlicesPerSecond + 1) * format.FrameBytes()) {}

C_NullDevice::~C_NullDevice() { Stop(); }

bool C_NullDevice::Start() {
  const std::lock_guard lock(m_lock);
  if (m_thread.joinable()) return true;
  m_bStop = false;
  m_thread = std::thread(&C_NullDevice::Run, this);
  return true;
}

void C_NullDevice::Stop() {
  const std::lock_guard lock(m_lock);
  if (!m_thread.joinable()) return;
  m_bStop = true;
  m_thread.join();
}

void C_NullDevice::Run() {
  auto due = Clock::now();
  UInt64 qwRemainder = 0;
  while (!m_bStop) {
    due += kSlice;
    std::this_thread::sleep_until(due);
    if (Clock::now() - due > kMaxLag) due = Clock::now();
    // Rates that are no multiple of the slice rate: what is left over goes into the next slice.
    qwRemainder += m_format.dwRate;
    RenderSlice(static_cast<UInt32>(qwRemainder / kSlicesPerSecond));
    qwRemainder %= kSlicesPerSecond;
  }
}

void C_NullDevice::RenderSlice(UInt32 dwFrames) {
  if (m_bStop) return;
  std::fill(m_slice.begin(), m_slice.end(), UInt8{0});
  m_client.RenderFrames(m_slice.data(), dwFrames);
}

}  // namespace toolbox
