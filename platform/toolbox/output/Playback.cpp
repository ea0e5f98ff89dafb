// SPDX-License-Identifier: Apache-2.0
#include "output/Playback.h"

#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

namespace toolbox {
namespace {

constexpr const char* kLost = "\noutput device lost; playing silently in real time\n";
constexpr const char* kMissing = "\nno output device; playing silently in real time\n";
constexpr const char* kUnread = "\nsound file cannot be read; playing silently to its end\n";

bool TakesText() {
  pollfd file{STDERR_FILENO, POLLOUT, 0};
  return ::poll(&file, 1, 0) == 1;
}

void Announce(const char* pszText, bool bAfterText) {
  if (::isatty(STDERR_FILENO) != 1) return;
  const bool bNewLine = bAfterText && ::isatty(STDOUT_FILENO) == 1;
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
  }
  if (!bStarted) GoOnSilently();
  const std::lock_guard lock(m_lock);
  // From now on the program says that it plays.
  m_bAfterText = true;
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
  bool bRead = true;
  {
    const std::lock_guard lock(m_renderLock);
    bRead = m_source.RenderFrames(pFrames, dwFrames);
  }
  if (!bRead) TellOfUnreadSound();
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
    bAfterText = std::exchange(m_bAfterText, false);
    m_bAnnouncing = true;
  }
  Announce(bHadDevice ? kLost : kMissing, bAfterText);
  const std::lock_guard lock(m_lock);
  m_bAnnouncing = false;
}

// The thread that renders calls this for each piece of silence, so it must not wait. While the
// other line is being written, or the terminal takes no text, it leaves the line to a later piece.
void C_Playback::TellOfUnreadSound() {
  bool bAfterText = false;
  {
    const std::lock_guard lock(m_lock);
    if (m_bUnreadAnnounced || m_bAnnouncing || !TakesText()) return;
    m_bUnreadAnnounced = true;
    bAfterText = std::exchange(m_bAfterText, false);
  }
  Announce(kUnread, bAfterText);
}

}  // namespace toolbox
