// SPDX-License-Identifier: Apache-2.0
#include "tags/MarkedFile.h"

#include <string_view>

#include "base/Failure.h"
#include "base/TimeText.h"
#include "sound/FormatText.h"
#include "sound/SoundInput.h"
#include "tags/ChunkCopy.h"
#include "tags/SameNotes.h"

namespace tool {
namespace {

constexpr const char* kUnchanged = "nothing is changed";

bool HoldsNotes(std::uint32_t dwContainer) {
  return dwContainer == VOXPLAY_CONTAINER_WAV || dwContainer == VOXPLAY_CONTAINER_VEMD ||
         dwContainer == VOXPLAY_CONTAINER_VEF;
}

[[noreturn]] void Refuse(const std::string& strPath, const std::string& strFormat) {
  throw C_Failure(strPath, kUnchanged,
                  "marks of its format (" + strFormat +
                      ") cannot be changed; \"voxtool convert\" makes a WAV file of it, which can "
                      "hold them");
}

// The reader gives a reason alone.
[[noreturn]] void RefuseToOpen(const std::string& strPath, const voxplay::Error& error) {
  std::string_view why = error.what();
  if (why.starts_with(strPath + ": ")) why.remove_prefix(strPath.size() + 2);
  throw C_Failure(strPath, "cannot be opened", why);
}

// Where only another library knows the file, the reader's message would be about our formats.
voxplay::Reader OpenForMarks(const std::string& strPath) {
  if (strPath == kStandardStream) {
    throw C_UsageFailure(NameOf(strPath) + ": its marks cannot be changed in place");
  }
  try {
    return voxplay::Reader(strPath, VOXPLAY_READ_NO_BARE);
  } catch (const voxplay::Error& error) {
    if (error.status() == VOXPLAY_CANNOT_OPEN) RefuseToOpen(strPath, error);
    if (error.status() != VOXPLAY_UNKNOWN && error.status() != VOXPLAY_UNSUPPORTED) throw;
    const auto other = OpenSound(strPath);
    Refuse(strPath, other->Info().strFormat);
  }
}

bool AreSame(const voxplay::Info& a, const voxplay::Info& b) {
  return a.container == b.container && a.codec == b.codec && a.sample_rate == b.sample_rate &&
         a.channels == b.channels && a.frames == b.frames &&
         a.bits_per_sample == b.bits_per_sample && a.stored_bits == b.stored_bits &&
         a.bit_rate == b.bit_rate && a.has_stream == b.has_stream;
}

std::string LostText(const std::vector<std::string>& lost) {
  const std::size_t nMore = lost.size() - 1;
  return lost.front() + (nMore == 0 ? "" : " (and " + CountText(nMore) + " more)") +
         "; --anyway writes the rest";
}

}  // namespace

C_MarkedFile::C_MarkedFile(const std::string& strPath, const S_EditTarget& target)
    : m_strPath(strPath),
      m_target(target),
      m_lock(LockEdited(strPath, target)),
      m_reader(OpenForMarks(strPath)),
      m_info(m_reader.info()) {
  if (!HoldsNotes(m_info.container)) Refuse(strPath, FormatText(m_info));
}

std::vector<std::string> C_MarkedFile::Save(const voxplay::Notes& notes) {
  const S_MarkChunks marks = MarkChunksOf(notes, m_info);
  if (!marks.lost.empty() && !m_target.bAnyway) {
    throw C_Failure(m_strPath, kUnchanged, LostText(marks.lost));
  }
  const auto file = MakeEdited(m_strPath, m_target);
  CopyWithMarks(m_strPath, m_reader.chunk_places(), marks.chunks, *file);
  CheckResult(file->NewPath(), notes, marks.lost.empty());
  TakePlaceOf(m_lock, *file);
  return marks.lost;
}

void C_MarkedFile::CheckResult(const std::string& strNew, const voxplay::Notes& notes,
                               bool bAllHeld) const {
  const voxplay::Reader result(strNew, VOXPLAY_READ_NO_BARE);
  const bool bSameMarks = !bAllHeld || AreSame(result.notes(), notes);
  if (AreSame(result.info(), m_info) && bSameMarks) return;
  throw C_Failure(m_strPath, kUnchanged, "the file would read as something else with these marks");
}

}  // namespace tool
