// SPDX-License-Identifier: Apache-2.0
#include "output/Playback.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

namespace toolbox {
namespace {

void Announce(bool bHadDevice, bool bAfterText) {
  if (::isatty(STDERR_FILENO) != 1) return;
  const bool bNewLine = bAfterText && ::isatty(STDOUT_FILENO) == 1;
  const char* const pszText = bHadDevice ? "\noutput device lost; playing silently in real time\n"
                                         : "\nno output device; playing silently in real time\n";
  // In one piece, so that nothing else on the terminal comes between.
  std::fputs(bNewLine ? pszText : pszText + 1, stderr);
}

}  // namespace

C_Playback::C_Playback(const S_OutputFormat& format, I_RenderSource& source,
                       const OpenDeviceFunction& open, bool bAfterText)
    : m_source(source),
      m_bAfterText(bAfterText),
      m_null(format, *this),
      m_pDevice(open(format, *this)) {
  const std::lock_guard lock(m_lock);
  m_bLost = m_bLost || m_pDevice == nullptr;
}

C_Playback::~C_Playback() { Stop(); }

// The null device gets its thread now. When a device is lost it may be too late to make one, and
// playback would stand still.
bool C_Playback::Start() {
  bool bLost = false;
  bool bStartedBefore = false;
  {
    const std::lock_guard lock(m_lock);
    if (m_bRunning) return true;
    if (!m_null.Prepare()) return false;
    m_bRunning = true;
    bLost = m_bLost;
    // A device may be lost before its start returns.
    if (!bLost) bStartedBefore = std::exchange(m_bStarted, true);
  }
  const bool bStarted = !bLost && m_pDevice->Start();
  {
    const std::lock_guard lock(m_lock);
    if (!bLost && !bStarted) m_bStarted = bStartedBefore;
    // From now on the program says that it plays.
    if (bStarted) m_bAfterText = true;
  }
  if (!bStarted) GoOnSilently();
  return true;
}

void C_Playback::Stop() {
  bool bLost = false;
  {
    const std::lock_guard lock(m_lock);
    if (!m_bRunning) return;
    m_bRunning = false;
    bLost = m_bLost;
  }
  if (!bLost) m_pDevice->Stop();
  m_null.Stop();
}

void C_Playback::Cut() {
  if (m_pDevice != nullptr) m_pDevice->Cut();
}

bool C_Playback::IsRunning() const {
  const std::lock_guard lock(m_lock);
  return m_bRunning;
}

void C_Playback::RenderFrames(void* pFrames, UInt32 dwFrames) {
  const std::lock_guard lock(m_renderLock);
  m_source.RenderFrames(pFrames, dwFrames);
}

void C_Playback::DeviceLost() { GoOnSilently(); }

// Prints only after the lock is released, because a terminal may keep the text waiting.
void C_Playback::GoOnSilently() {
  bool bHadDevice = false;
  bool bAfterText = false;
  {
    const std::lock_guard lock(m_lock);
    m_bLost = true;
    if (!m_bRunning) return;
    m_null.Start();
    if (std::exchange(m_bAnnounced, true)) return;
    bHadDevice = m_bStarted;
    bAfterText = m_bAfterText;
  }
  Announce(bHadDevice, bAfterText);
}

}  // namespace toolbox
