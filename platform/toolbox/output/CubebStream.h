// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cubeb/cubeb.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "output/CubebLibrary.h"
#include "output/OutputDevice.h"

namespace toolbox {

// A stream of the machine's audio service. Calls that ask the service may wait forever when it is
// frozen, so they belong on a thread that can be left behind; so does the destruction.
class C_CubebStream {
 public:
  // Of the default device, or of the one of this name.
  explicit C_CubebStream(const S_OutputFormat& format, std::string strDevice = {}) noexcept
      : m_format(format), m_strDevice(std::move(strDevice)) {}

  // These operations ask the service. False when it cannot play, or can no longer play.
  bool Open();
  bool Start();
  bool Halt();

  // The operations below never ask the service.

  // From now on the client is asked for frames and told of a loss. It outlives the stream or is
  // taken away by `GiveUp`.
  void Serve(I_DeviceClient& client);
  // Feeds zeros until everything rendered so far has been played, or the service takes no more.
  void PlayOut();
  // Ends that, also when it comes later. Any thread may call it.
  void Cut() noexcept { m_bCut = true; }
  // Takes the client away for good: once this returns, the client is no longer called. The stream
  // plays no more. False when it had already failed.
  bool GiveUp();
  // The stream owns itself until it is taken again.
  void KeepItself(std::shared_ptr<C_CubebStream> pThis) { m_pThis = std::move(pThis); }
  std::shared_ptr<C_CubebStream> TakeItself() { return std::move(m_pThis); }
  // The stream owns itself until the process ends, and stays reachable for leak checks.
  void LeaveBehind();
  // Whether the service has asked for frames since the last call of this operation, or is being
  // served right now.
  bool ShowsLife();

 private:
  bool OpenOn(cubeb_devid device);
  void AskService();
  static long OnData(cubeb_stream* pStream, void* pThis, const void* pInput, void* pOutput,
                     long nFrames);
  static void OnState(cubeb_stream* pStream, void* pThis, cubeb_state state);
  void Fill(void* pOutput, UInt32 dwFrames);
  void Render(void* pOutput, UInt32 dwFrames);
  void Lose();

  struct S_ContextCloser {
    void operator()(cubeb* pContext) const noexcept { CubebFunctions()->destroy(pContext); }
  };
  struct S_StreamCloser {
    void operator()(cubeb_stream* pStream) const noexcept {
      CubebFunctions()->stream_destroy(pStream);
    }
  };

  const S_OutputFormat m_format;
  const std::string m_strDevice;
  // Held while the client is called.
  std::mutex m_clientLock;
  I_DeviceClient* m_pClient = nullptr;
  // Lost, or given up.
  std::atomic<bool> m_bFailed{false};
  // While this is set the stream is fed zeros, and they are counted.
  std::atomic<bool> m_bPlayingOut{true};
  std::atomic<UInt32> m_dwZeroFrames{0};
  std::atomic<bool> m_bCut{false};
  std::atomic<bool> m_bAsked{false};
  std::atomic<bool> m_bServing{false};
  std::shared_ptr<C_CubebStream> m_pThis;
  C_CubebStream* m_pLeftBefore = nullptr;
  // The stream is closed before its context.
  std::unique_ptr<cubeb, S_ContextCloser> m_pContext;
  std::unique_ptr<cubeb_stream, S_StreamCloser> m_pStream;
};

}  // namespace toolbox
