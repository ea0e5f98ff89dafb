// SPDX-License-Identifier: Apache-2.0
#include "info/SoundReport.h"

#include <sys/stat.h>

#include "marks/MarkRows.h"
#include "sound/WholeSound.h"

namespace tool {
namespace {

std::optional<std::uint64_t> BytesOf(const std::string& strPath) {
  struct stat status {};
  if (IsReadOnce(strPath) || stat(strPath.c_str(), &status) != 0) return {};
  return static_cast<std::uint64_t>(status.st_size);
}

// A stream that cannot be read is what "check" tells of.
std::optional<voxplay::Info> StreamOf(const std::string& strPath, const S_SoundInfo& info) {
  if (!info.ours || info.ours->has_stream == 0 || IsReadOnce(strPath)) return {};
  try {
    return voxplay::Reader(strPath, VOXPLAY_READ_STREAM).info();
  } catch (const voxplay::Error&) {
    return {};
  }
}

}  // namespace

S_SoundReport ReportOf(const std::string& strPath, bool bDecodes, C_FileWatch& watch) {
  const C_SoundInputPtr sound = OpenSound(strPath);
  S_SoundReport report;
  report.strPath = strPath;
  report.qwBytes = BytesOf(strPath);
  report.info = sound->Info();
  report.marks = RowsOf(sound->Notes(), report.info.dwRate);
  report.sampler = sound->Notes().sampler();
  report.sampler.data = nullptr;  // goes with the sound
  report.stream = StreamOf(strPath, report.info);
  report.bCut = sound->IsCut();
  if (!bDecodes) return report;
  report.info.qwFrames = ReadToEnd(*sound, [&](std::uint64_t qwDone) {
    watch.TellFrames(qwDone, sound->Info().qwFrames, report.info.dwRate);
  });
  report.qwDamaged = sound->DamagedFrames();
  report.bCut = sound->IsCut() || report.info.qwFrames < ClaimedFrames(sound->Info());
  return report;
}

}  // namespace tool
