// SPDX-License-Identifier: Apache-2.0
#include "output/CubebDevice.h"

#include <atomic>
#include <exception>
#include <memory>
#include <string>
#include <utility>

#include "output/CubebStream.h"
#include "output/ServiceCall.h"
#include "output/Watchdog.h"

namespace toolbox {
namespace {

// A stream that cannot be closed on another thread stays open until the process ends. Here the call
// might wait forever.
void Close(std::shared_ptr<C_CubebStream> pStream, std::chrono::milliseconds limit) {
  C_CubebStream& stream = *pStream;
  stream.KeepItself(std::move(pStream));
  try {
    MakeCall([&stream] { return stream.TakeItself() != nullptr; }).wait_for(limit);
  } catch (const std::exception&) {
    stream.LeaveBehind();
  }
}

// The client is not called after a loss or after the destruction of the device, whatever the
// service does with a stream that was left behind.
class C_CubebDevice final : public I_OutputDevice {
 public:
  C_CubebDevice(const S_OutputFormat& format, I_DeviceClient& client,
                std::chrono::milliseconds limit, const std::string& strDevice)
      : m_pStream(std::make_shared<C_CubebStream>(format, strDevice)),
        m_client(client),
        m_limit(limit) {}
  ~C_CubebDevice() override;
  C_CubebDevice(const C_CubebDevice&) = delete;
  C_CubebDevice& operator=(const C_CubebDevice&) = delete;

  bool Open();
  bool Start() override;
  void Stop() override;
  void Cut() override { m_pStream->Cut(); }

 private:
  bool Watch();
  // False when the stream had already failed.
  bool GiveUp();
  void OnSilence();

  std::shared_ptr<C_CubebStream> m_pStream;
  I_DeviceClient& m_client;
  const std::chrono::milliseconds m_limit;
  // Also set by the watchdog's thread.
  std::atomic<bool> m_bGivenUp{false};
  std::unique_ptr<C_Watchdog> m_pWatchdog;
};

C_CubebDevice::~C_CubebDevice() {
  m_pWatchdog.reset();
  m_pStream->GiveUp();
  const auto limit = m_bGivenUp ? std::chrono::milliseconds{0} : m_limit;
  Close(std::move(m_pStream), limit);
}

bool C_CubebDevice::Open() {
  if (!CallService(m_limit, [pStream = m_pStream] { return pStream->Open(); })) return false;
  m_pStream->Serve(m_client);
  return true;
}

bool C_CubebDevice::Start() {
  if (m_bGivenUp) return false;
  if (CallService(m_limit, [pStream = m_pStream] { return pStream->Start(); }) && Watch()) {
    return true;
  }
  GiveUp();
  return false;
}

// False when no thread can be made.
bool C_CubebDevice::Watch() {
  try {
    m_pWatchdog = std::make_unique<C_Watchdog>(
        m_limit, [pStream = m_pStream] { return pStream->ShowsLife(); }, [this] { OnSilence(); });
  } catch (const std::exception&) {
    return false;
  }
  return true;
}

void C_CubebDevice::Stop() {
  m_pWatchdog.reset();
  if (m_bGivenUp) return;
  m_pStream->PlayOut();
  if (!CallService(m_limit, [pStream = m_pStream] { return pStream->Halt(); })) GiveUp();
}

bool C_CubebDevice::GiveUp() {
  if (!m_pStream->GiveUp()) return false;
  m_bGivenUp = true;
  return true;
}

void C_CubebDevice::OnSilence() {
  if (GiveUp()) m_client.DeviceLost();
}

}  // namespace

std::unique_ptr<I_OutputDevice> OpenCubebDevice(const S_OutputFormat& format,
                                                I_DeviceClient& client,
                                                std::chrono::milliseconds limit,
                                                const std::string& strDevice) {
  try {
    auto pDevice = std::make_unique<C_CubebDevice>(format, client, limit, strDevice);
    if (pDevice->Open()) return pDevice;
  } catch (const std::exception&) {
    return nullptr;
  }
  return nullptr;
}

}  // namespace toolbox
