// SPDX-License-Identifier: Apache-2.0
//
// A device that plays when the test says so, and that can refuse, fail and disappear.
#pragma once

#include <cstring>
#include <memory>
#include <vector>

#include "output/OutputDevice.h"
#include "unit/AudioComponent.h"

// What happened to the devices that were opened since the fixture began.
struct S_DeviceLog {
  int nOpened = 0;
  int nStarted = 0;
  int nStopped = 0;
  int nCut = 0;
  int nClosed = 0;
  toolbox::S_OutputFormat format;
  toolbox::I_DeviceClient* pClient = nullptr;  // of the latest device
  bool bRefuseOpen = false;
  bool bRefuseStart = false;
};

class C_FakeDevice final : public toolbox::I_OutputDevice {
 public:
  explicit C_FakeDevice(S_DeviceLog& log) : m_log(log) { ++m_log.nOpened; }
  ~C_FakeDevice() override {
    ++m_log.nClosed;
    m_log.pClient = nullptr;
  }
  C_FakeDevice(const C_FakeDevice&) = delete;
  C_FakeDevice& operator=(const C_FakeDevice&) = delete;
  bool Start() override {
    ++m_log.nStarted;
    return !m_log.bRefuseStart;
  }
  void Stop() override { ++m_log.nStopped; }
  void Cut() override { ++m_log.nCut; }

 private:
  S_DeviceLog& m_log;
};

inline toolbox::OpenDeviceFunction OpenFakeDevice(S_DeviceLog& log) {
  return [&log](const toolbox::S_OutputFormat& format,
                toolbox::I_DeviceClient& client) -> std::unique_ptr<toolbox::I_OutputDevice> {
    log.format = format;
    if (log.bRefuseOpen) return nullptr;
    log.pClient = &client;
    return std::make_unique<C_FakeDevice>(log);
  };
}

// Units that are created while this object lives open fake devices.
class C_FakeDevices {
 public:
  C_FakeDevices() { toolbox::SetOpenDevice(OpenFakeDevice(m_log)); }
  ~C_FakeDevices() { toolbox::SetOpenDevice(nullptr); }
  C_FakeDevices(const C_FakeDevices&) = delete;
  C_FakeDevices& operator=(const C_FakeDevices&) = delete;

  [[nodiscard]] S_DeviceLog& Log() { return m_log; }
  // Makes the latest device ask for dwFrames frames at once. Returns the interleaved samples, of
  // type `T`.
  template <typename T>
  std::vector<T> Ask(UInt32 dwFrames) {
    std::vector<T> samples(std::size_t{dwFrames} * m_log.format.dwChannels);
    m_log.pClient->RenderFrames(samples.data(), dwFrames);
    return samples;
  }

 private:
  S_DeviceLog m_log;
};
