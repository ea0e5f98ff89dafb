// SPDX-License-Identifier: Apache-2.0
#include "play/PlayedFile.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <future>

#include "base/Failure.h"
#include "base/Interrupt.h"
#include "base/Utf8.h"
#include "play/PassingMarks.h"
#include "play/SoundPlayer.h"
#include "play/StatusLine.h"
#include "sound/HeldSound.h"

namespace tool {
namespace {

using Clock = std::chrono::steady_clock;
// How exactly the end of a sound is seen.
constexpr std::chrono::milliseconds kTick{10};
constexpr std::chrono::milliseconds kLineTime{100};
constexpr double kSkip = 5.0;
constexpr double kFarSkip = 30.0;

constexpr std::array kHelp = {"space  pause, go on        left, right  5 s back, forward",
                              "n, p   next, previous      up, down     30 s forward, back",
                              "q      end                 ?            this help"};

S_PlaySpan SpanOf(const S_PlayedFile& file, const S_SoundInfo& info) {
  S_PlaySpan span{file.from ? file.from->FrameAt(info.dwRate) : 0, kFramesUnknown};
  if (span.qwBegin > info.qwFrames) {
    throw C_Failure(NameOf(file.strPath), "cannot be played", "it ends before --from");
  }
  if (file.to) span.qwEnd = file.to->FrameAt(info.dwRate);
  if (span.qwEnd < span.qwBegin) {
    throw C_Failure(NameOf(file.strPath), "cannot be played", "--to is before --from");
  }
  return span;
}

std::string ShownName(const S_PlayedFile& file) {
  const std::string strName = NameOf(file.strPath);
  return file.strPlace + Printable(std::filesystem::path(strName).filename().string());
}

// One sound, its line and its keys.
class C_PlayedSound {
 public:
  C_PlayedSound(const S_PlayedFile& file, C_Console& console, C_KeyTerminal& keys,
                C_PlayDevices& devices)
      : m_file(file),
        m_console(console),
        m_keys(keys),
        m_sound(WithoutMissingFrames(OpenSound(file.strPath))),
        m_span(SpanOf(file, m_sound->Info())),
        m_marks(m_sound->Notes()),
        m_player(
            *m_sound, NameOf(file.strPath), {m_span, file.bAgain, file.bShowLine},
            [&devices](const auto& format, auto& client) { return devices.Open(format, client); }) {
    m_marks.Jump(m_span.qwBegin);
  }
  // A user who quits before the end wants silence at once.
  ~C_PlayedSound() { m_player.Cut(); }
  C_PlayedSound(const C_PlayedSound&) = delete;
  C_PlayedSound& operator=(const C_PlayedSound&) = delete;

  tagAfter Play();

 private:
  void Step();
  void Follow(tagKey eKey);
  void Skip(double dSeconds);
  void PlayOut();
  void Suspend();
  void Show(bool bNow);
  void ShowMarks(std::uint64_t qwFrame);
  void Report();

  const S_PlayedFile& m_file;
  C_Console& m_console;
  C_KeyTerminal& m_keys;
  C_SoundInputPtr m_sound;
  S_PlaySpan m_span;
  C_PassingMarks m_marks;
  std::optional<tagAfter> m_wanted;
  Clock::time_point m_shown{};
  C_SoundPlayer m_player;
};

tagAfter C_PlayedSound::Play() {
  while (!m_wanted && !m_player.AllGiven()) Step();
  if (m_wanted) {
    m_player.Cut();
    m_player.Stop();
  } else {
    PlayOut();
  }
  Report();
  return m_wanted.value_or(tagAfter::NEXT);
}

// A second interrupt ends the program at once, so the terminal is put back at the first.
void C_PlayedSound::Step() {
  if (Interrupted()) {
    m_keys.End();
    throw C_Interrupted();
  }
  const tagKey eKey = m_keys.Wait(kTick);
  Follow(eKey);
  Show(eKey != tagKey::NONE);
}

void C_PlayedSound::Follow(tagKey eKey) {
  switch (eKey) {
    case tagKey::NONE:
      break;
    case tagKey::PAUSE:
      m_player.TogglePause();
      break;
    case tagKey::BACK:
      Skip(-kSkip);
      break;
    case tagKey::FORWARD:
      Skip(kSkip);
      break;
    case tagKey::FAR_BACK:
      Skip(-kFarSkip);
      break;
    case tagKey::FAR_FORWARD:
      Skip(kFarSkip);
      break;
    case tagKey::NEXT:
      m_wanted = tagAfter::NEXT;
      break;
    case tagKey::PREVIOUS:
      m_wanted = tagAfter::PREVIOUS;
      break;
    case tagKey::QUIT:
      m_wanted = tagAfter::END;
      break;
    case tagKey::HELP:
      for (const char* const pszLine : kHelp) m_console.Complain(pszLine);
      break;
    case tagKey::SUSPEND:
      Suspend();
      break;
  }
}

void C_PlayedSound::Skip(double dSeconds) {
  m_player.Skip(dSeconds);
  m_marks.Jump(m_player.Frame());
}

void C_PlayedSound::Suspend() {
  m_console.ShowProgress("");
  m_keys.Suspend();
}

// The device may take a while to play what it holds. Keys that mean nothing any more are ignored.
void C_PlayedSound::PlayOut() {
  const auto stopped = std::async(std::launch::async, [this] { m_player.Stop(); });
  while (stopped.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
    if (Interrupted()) m_keys.End();
    const tagKey eKey = m_keys.Wait(kTick);
    if (eKey == tagKey::QUIT || eKey == tagKey::NEXT || eKey == tagKey::PREVIOUS ||
        eKey == tagKey::SUSPEND) {
      Follow(eKey);
    }
    if (m_wanted || Interrupted()) m_player.Cut();
    Show(false);
  }
  ThrowIfInterrupted();
  // On a busy machine, the last look may have been long before the end.
  if (!m_wanted && m_file.bShowMarks) ShowMarks(m_player.LastFrame());
}

void C_PlayedSound::Show(bool bNow) {
  const std::uint64_t qwFrame = m_player.Frame();
  if (m_file.bShowMarks) ShowMarks(qwFrame);
  const auto now = Clock::now();
  if (!m_file.bShowLine || (!bNow && now - m_shown < kLineTime)) return;
  m_shown = now;
  const S_SoundInfo& info = m_sound->Info();
  const S_PlayStatus status{ShownName(m_file), info.dwRate,   m_span,
                            qwFrame,           info.qwFrames, m_player.Paused()};
  m_console.ShowProgress(StatusLine(status, m_console.Columns()));
}

void C_PlayedSound::ShowMarks(std::uint64_t qwFrame) {
  const auto marks = m_marks.Passed(qwFrame);
  for (const auto& mark : marks) {
    m_console.Print(ClockText(mark.qwFrame, m_sound->Info().dwRate) + "  " +
                    Printable(mark.strText) + "\n");
  }
  if (!marks.empty()) m_console.Flush();
}

void C_PlayedSound::Report() {
  const auto failure = m_player.Failure();
  const std::string strName = NameOf(m_file.strPath);
  const std::uint64_t qwDamaged = m_sound->DamagedFrames();
  if (qwDamaged > 0) {
    m_console.Complain(strName + ": " + std::to_string(qwDamaged) +
                       (qwDamaged == 1 ? " frame is damaged" : " frames are damaged"));
  }
  if (m_sound->IsCut()) m_console.Complain(strName + ": the file is cut: its end is missing");
  if (failure) throw C_Failure(*failure);
}

}  // namespace

tagAfter PlayFile(const S_PlayedFile& file, C_Console& console, C_KeyTerminal& keys,
                  C_PlayDevices& devices) {
  return C_PlayedSound(file, console, keys, devices).Play();
}

}  // namespace tool
