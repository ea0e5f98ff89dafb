// SPDX-License-Identifier: Apache-2.0
#include "check/FileCheck.h"

#include <array>

#include "base/Failure.h"
#include "base/TimeText.h"
#include "base/Utf8.h"
#include "marks/FourCharacters.h"
#include "sound/LibrarySound.h"
#include "sound/WholeSound.h"

namespace tool {
namespace {

const char* VerdictText(tagVerdict eVerdict) {
  constexpr std::array kTexts = {"good", "damaged", "cut", "unknown", "unreadable"};
  return kTexts.at(static_cast<std::size_t>(eVerdict));
}

// The sentence of a failure without the name of the file, which every line begins with.
std::string WithoutName(const std::string& strPath, const std::string& strSentence) {
  const std::string strName = NameOf(strPath) + ": ";
  return strSentence.starts_with(strName) ? strSentence.substr(strName.size()) : strSentence;
}

tagVerdict VerdictOf(voxplay_status eStatus) {
  if (eStatus == VOXPLAY_UNKNOWN || eStatus == VOXPLAY_UNSUPPORTED) return tagVerdict::UNKNOWN;
  return eStatus == VOXPLAY_DAMAGED || eStatus == VOXPLAY_TOO_LARGE ? tagVerdict::DAMAGED
                                                                    : tagVerdict::UNREADABLE;
}

class C_Checker {
 public:
  C_Checker(const std::string& strPath, C_FileWatch& watch) : m_watch(watch) {
    m_check.strPath = strPath;
  }

  S_FileCheck Check() {
    try {
      CheckAll();
    } catch (const voxplay::Error& error) {
      Find(VerdictOf(error.status()), error.status() == VOXPLAY_UNKNOWN
                                          ? "none of the known formats"
                                          : WithoutName(m_check.strPath, error.what()));
    } catch (const C_UsageFailure&) {
      throw;
    } catch (const C_Failure& failure) {
      Find(tagVerdict::UNREADABLE, WithoutName(m_check.strPath, failure.what()));
    }
    return m_check;
  }

 private:
  // The first thing that is found is the one that is told.
  void Find(tagVerdict eVerdict, const std::string& strWhy) {
    if (m_check.eVerdict != tagVerdict::GOOD) return;
    m_check.eVerdict = eVerdict;
    m_check.strWhy = strWhy;
  }

  void CheckAll() {
    const C_SoundInputPtr sound = OpenSound(m_check.strPath);
    const S_SoundInfo& info = sound->Info();
    m_check.strFormat = info.strFormat;
    m_check.dwRate = info.dwRate;
    if (info.dwRate == 0) Find(tagVerdict::DAMAGED, "it has no sample rate");
    for (const voxplay::ChunkPlace& chunk : info.chunks) CheckChunk(chunk);
    CheckFrames(*sound, "");
    if (info.ours && info.ours->has_stream != 0 && !IsReadOnce(m_check.strPath)) {
      CheckFrames(*OpenLibrarySound(m_check.strPath, VOXPLAY_READ_STREAM), "its stream: ");
    }
  }
  void CheckChunk(const voxplay::ChunkPlace& chunk) {
    if (chunk.held == chunk.size) return;
    Find(tagVerdict::CUT, "chunk \"" + Printable(FourCharacters(chunk.id)) + "\" holds " +
                              CountText(chunk.held) + " of " + CountedText(chunk.size, "byte"));
  }
  void CheckEnd(const I_SoundInput& sound, std::uint64_t qwFrames, const std::string& strOf) {
    const std::uint64_t qwClaimed = ClaimedFrames(sound.Info());
    if (qwFrames < qwClaimed) {
      Find(tagVerdict::CUT, strOf + "it ends after " + CountText(qwFrames) + " of " +
                                CountedText(qwClaimed, "frame"));
    } else if (sound.IsCut()) {
      Find(tagVerdict::CUT, strOf + "its end is missing");
    }
  }
  void CheckFrames(I_SoundInput& sound, const std::string& strOf) {
    const std::uint64_t qwClaimed = sound.Info().qwFrames;
    // A frame that is left in part is damaged, too.
    CheckEnd(sound, qwClaimed, strOf);
    const std::uint64_t qwRead = ReadToEnd(sound, [&](std::uint64_t qwDone) {
      m_watch.TellFrames(qwDone, qwClaimed, sound.Info().dwRate);
    });
    const std::uint64_t qwDamaged = sound.DamagedFrames();
    if (strOf.empty()) m_check.qwFrames = qwRead;
    m_check.qwDamaged += qwDamaged;
    if (qwDamaged != 0) {
      Find(tagVerdict::DAMAGED, strOf + CountText(qwDamaged) + " of " +
                                    CountedText(qwRead, "frame") + " (" +
                                    ClockText(qwDamaged, sound.Info().dwRate) + ")");
    }
    CheckEnd(sound, qwRead, strOf);
  }

  C_FileWatch& m_watch;
  S_FileCheck m_check;
};

}  // namespace

S_FileCheck CheckFile(const std::string& strPath, C_FileWatch& watch) {
  return C_Checker(strPath, watch).Check();
}

std::string CheckText(const S_FileCheck& check) {
  const std::string strWhy = check.strWhy.empty() ? "" : ": " + check.strWhy;
  return Printable(NameOf(check.strPath)) + ": " + VerdictText(check.eVerdict) + strWhy;
}

C_Json CheckJson(const S_FileCheck& check) {
  C_Json json = {
      {"schema", kJsonSchema}, {"file", check.strPath}, {"verdict", VerdictText(check.eVerdict)}};
  if (!check.strWhy.empty()) json["reason"] = check.strWhy;
  if (check.strFormat.empty()) return json;
  json["format"] = check.strFormat;
  json["frames"] = check.qwFrames;
  json["damaged_frames"] = check.qwDamaged;
  json["seconds"] = SecondsOf(check.qwFrames, check.dwRate);
  return json;
}

}  // namespace tool
