// SPDX-License-Identifier: Apache-2.0
#include "output/CubebBackend.h"

#ifdef __linux__
#include <memory>

#include "object/SharedLibrary.h"
#endif

namespace toolbox {

#ifdef __linux__
namespace {

// The client library of PulseAudio, as far as it is needed to find out whether a server answers.
// It is loaded by name, because the library that plays loads it in the same way or links it.
class C_PulseClient {
 public:
  C_PulseClient() noexcept {
    const C_SharedLibrary library("libpulse.so.0");
    m_bUsable = library.Find(m_pfnLoopNew, "pa_mainloop_new") &&
                library.Find(m_pfnLoopApi, "pa_mainloop_get_api") &&
                library.Find(m_pfnLoopIterate, "pa_mainloop_iterate") &&
                library.Find(m_pfnLoopFree, "pa_mainloop_free") &&
                library.Find(m_pfnContextNew, "pa_context_new") &&
                library.Find(m_pfnContextConnect, "pa_context_connect") &&
                library.Find(m_pfnContextState, "pa_context_get_state") &&
                library.Find(m_pfnContextDisconnect, "pa_context_disconnect") &&
                library.Find(m_pfnContextUnref, "pa_context_unref");
  }

  [[nodiscard]] bool ServerAnswers() const {
    if (!m_bUsable) return false;
    const std::unique_ptr<void, void (*)(void*)> pLoop(m_pfnLoopNew(), m_pfnLoopFree);
    if (pLoop == nullptr) return false;
    const std::unique_ptr<void, void (*)(void*)> pContext(
        m_pfnContextNew(m_pfnLoopApi(pLoop.get()), "Voxplay"), m_pfnContextUnref);
    if (pContext == nullptr) return false;
    const bool bReady = m_pfnContextConnect(pContext.get(), nullptr, 0, nullptr) >= 0 &&
                        BecomesReady(pLoop.get(), pContext.get());
    m_pfnContextDisconnect(pContext.get());
    return bReady;
  }

 private:
  // States of a connection: it is being made in those between the two ends below.
  static constexpr int kUnconnected = 0;
  static constexpr int kReady = 4;

  bool BecomesReady(void* pLoop, void* pContext) const {
    int nState = m_pfnContextState(pContext);
    while (nState > kUnconnected && nState < kReady) {
      if (m_pfnLoopIterate(pLoop, 1, nullptr) < 0) return false;
      nState = m_pfnContextState(pContext);
    }
    return nState == kReady;
  }

  bool m_bUsable = false;
  void* (*m_pfnLoopNew)() = nullptr;
  void* (*m_pfnLoopApi)(void*) = nullptr;
  int (*m_pfnLoopIterate)(void*, int, int*) = nullptr;
  void (*m_pfnLoopFree)(void*) = nullptr;
  void* (*m_pfnContextNew)(void*, const char*) = nullptr;
  int (*m_pfnContextConnect)(void*, const char*, int, const void*) = nullptr;
  int (*m_pfnContextState)(const void*) = nullptr;
  void (*m_pfnContextDisconnect)(void*) = nullptr;
  void (*m_pfnContextUnref)(void*) = nullptr;
};

}  // namespace

const char* CubebBackend() { return C_PulseClient().ServerAnswers() ? "pulse" : "alsa"; }
#elif defined(__FreeBSD__)
const char* CubebBackend() { return "oss"; }
#elif defined(__OpenBSD__)
const char* CubebBackend() { return "sndio"; }
#elif defined(__NetBSD__)
const char* CubebBackend() { return "sun"; }
#else
const char* CubebBackend() { return nullptr; }
#endif

}  // namespace toolbox
