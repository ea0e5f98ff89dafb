// SPDX-License-Identifier: Apache-2.0
#include "output/CubebBackend.h"

#ifdef __linux__
#include <dlfcn.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#endif

namespace toolbox {

#ifdef __linux__
namespace {

// The client library of PulseAudio, as far as it is needed to find out whether a server answers.
// It is loaded by name, because the library that plays loads it in the same way or links it.
class C_PulseClient {
 public:
  C_PulseClient() noexcept : m_pLibrary(dlopen("libpulse.so.0", RTLD_NOW | RTLD_LOCAL)) {
    if (m_pLibrary == nullptr) return;
    const auto found = {Find(m_pfnLoopNew, "pa_mainloop_new"),
                        Find(m_pfnLoopApi, "pa_mainloop_get_api"),
                        Find(m_pfnLoopIterate, "pa_mainloop_iterate"),
                        Find(m_pfnLoopFree, "pa_mainloop_free"),
                        Find(m_pfnContextNew, "pa_context_new"),
                        Find(m_pfnContextConnect, "pa_context_connect"),
                        Find(m_pfnContextState, "pa_context_get_state"),
                        Find(m_pfnContextDisconnect, "pa_context_disconnect"),
                        Find(m_pfnContextUnref, "pa_context_unref")};
    m_bUsable = std::ranges::find(found, false) == found.end();
  }
  ~C_PulseClient() {
    if (m_pLibrary != nullptr) dlclose(m_pLibrary);
  }
  C_PulseClient(const C_PulseClient&) = delete;
  C_PulseClient& operator=(const C_PulseClient&) = delete;

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

  template <typename Function>
  bool Find(Function*& pfn, const char* pszName) noexcept {
    pfn = reinterpret_cast<Function*>(dlsym(m_pLibrary, pszName));
    return pfn != nullptr;
  }

  bool BecomesReady(void* pLoop, void* pContext) const {
    int nState = m_pfnContextState(pContext);
    while (nState > kUnconnected && nState < kReady) {
      if (m_pfnLoopIterate(pLoop, 1, nullptr) < 0) return false;
      nState = m_pfnContextState(pContext);
    }
    return nState == kReady;
  }

  void* m_pLibrary;
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
