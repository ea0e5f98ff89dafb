// SPDX-License-Identifier: Apache-2.0
//
// Writes a sound piece by piece in any of the formats, as voxplay.h describes it. All functions
// throw C_Failure; after that, the sound can only be abandoned, which destruction does.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "notes/Notes.h"
#include "target/ByteTarget.h"
#include "voxplay.h"
#include "writer/FormatProblem.h"
#include "writer/Progress.h"
#include "writer/SoundWriter.h"

namespace api {

class C_Writer {
 public:
  // Nothing is written yet. VOXPLAY_UNSUPPORTED for a format that has a problem, and
  // VOXPLAY_CANNOT_SEEK for a target that only goes forward where the format does not say how many
  // frames there will be.
  static std::unique_ptr<C_Writer> Open(C_ByteTargetPtr target, const voxplay_format& format);

  // Replaces the notes that were set before. VOXPLAY_CANNOT_SEEK after the first frame where the
  // target only goes forward; the writing can go on then.
  void SetNotes(S_Notes notes);
  void OnProgress(S_ProgressFunction fnProgress) { m_progress.Listen(std::move(fnProgress)); }

  // Interleaved whole frames. Where the target only goes forward, VOXPLAY_CANNOT_SEEK for more
  // frames than were announced. Reports progress after every 4096 frames, or fewer.
  void Write(std::span<const std::int16_t> samples);
  void Write(std::span<const std::int32_t> samples);
  void Write(std::span<const float> samples);

  // Call it once, last. VOXPLAY_UNSUPPORTED for a stream without a frame.
  void Finish();
  // After Finish: what was lost of the notes, one sentence each.
  [[nodiscard]] const std::vector<std::string>& Lost() const noexcept { return m_lost; }
  // Leaves none. Unlike a copy, it cannot fail.
  [[nodiscard]] std::vector<std::string> TakeLost() noexcept { return std::move(m_lost); }

 private:
  C_Writer(C_ByteTargetPtr target, const voxplay_format& format);

  template <typename Sample>
  void WriteAny(std::span<const Sample> samples);
  template <typename Sample>
  void WritePieces(std::span<const Sample> samples);
  void WriteRest();
  // Does the work; when it fails, nothing more can be done with the writer.
  template <typename Work>
  void Do(Work fnWork);
  void Begin();
  void CheckAnnounced(std::uint64_t qwFrames, bool bAll) const;

  enum class E_State { New, Begun, Finished, Failed };

  C_ByteTargetPtr m_target;
  voxplay_format m_format;
  bool m_bCanGoBack;
  E_State m_eState = E_State::New;
  S_Notes m_notes;
  C_Progress m_progress;
  C_SoundWriterPtr m_sound;
  std::vector<std::string> m_lost;
};

}  // namespace api
