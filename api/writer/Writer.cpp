// SPDX-License-Identifier: Apache-2.0
#include "writer/Writer.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/Failure.h"
#include "target/SpooledTarget.h"
#include "writer/FileType.h"
#include "writer/HeronCoder.h"
#include "writer/KestrelCoder.h"
#include "writer/RiffWriter.h"
#include "writer/StreamWriter.h"
#include "writer/VefStreamWriter.h"

namespace api {
namespace {

constexpr std::size_t kPieceFrames = 4096;

bool IsCodedAtEnd(const voxplay_format& format) { return format.codec == VOXPLAY_CODEC_HERON; }

// What is written first says something about what is written last.
bool MustGoBack(const voxplay_format& format) {
  return IsCodedAtEnd(format) || (HasStream(format) && format.container == VOXPLAY_CONTAINER_VEF);
}

C_ByteTargetPtr Suited(C_ByteTargetPtr target, const voxplay_format& format) {
  if (target->CanGoBack() || !MustGoBack(format)) return target;
  return std::make_unique<C_SpooledTarget>(std::move(target));
}

C_StreamCoderPtr MakeCoder(I_ByteTarget& target, const voxplay_format& format,
                           C_Progress& progress) {
  const auto variant = HeronVariantOf(format);
  if (!variant) return std::make_unique<C_KestrelCoder>(target, BitRateOf(format));
  return std::make_unique<C_HeronCoder>(
      target, static_cast<int>(format.sample_rate), *variant,
      [&progress](std::uint64_t qwLooked) { progress.Looked(qwLooked); });
}

C_SoundWriterPtr MakeSoundWriter(I_ByteTarget& target, const voxplay_format& format,
                                 C_Progress& progress) {
  if (!HasStream(format)) return std::make_unique<C_RiffWriter>(target, format);
  const auto fnMakeCoder = [&](I_ByteTarget& stream) {
    return MakeCoder(stream, format, progress);
  };
  if (format.container == VOXPLAY_CONTAINER_VEF) {
    return std::make_unique<C_VefStreamWriter>(target, format, fnMakeCoder);
  }
  return std::make_unique<C_StreamWriter>(target, format, fnMakeCoder(target));
}

}  // namespace

std::unique_ptr<C_Writer> C_Writer::Open(C_ByteTargetPtr target, const voxplay_format& format) {
  if (std::string strProblem = FormatProblem(format); !strProblem.empty()) {
    throw C_Failure(VOXPLAY_UNSUPPORTED, std::move(strProblem));
  }
  if (!target->CanGoBack() && format.frames == 0) {
    throw C_Failure(VOXPLAY_CANNOT_SEEK,
                    "output: it only goes forward, so the number of frames must be announced");
  }
  return std::unique_ptr<C_Writer>(new C_Writer(std::move(target), format));
}

C_Writer::C_Writer(C_ByteTargetPtr target, const voxplay_format& format)
    : m_format(format),
      m_bCanGoBack(target->CanGoBack()),
      m_progress(format.frames, IsCodedAtEnd(format)) {
  m_target = Suited(std::move(target), format);
  m_sound = MakeSoundWriter(*m_target, format, m_progress);
  m_sound->MakeRoom(format.frames);
}

void C_Writer::SetNotes(S_Notes notes) {
  if (m_eState == E_State::Begun && !m_bCanGoBack) {
    throw C_Failure(VOXPLAY_CANNOT_SEEK,
                    "notes: the output only goes forward, so they must be set before the frames");
  }
  m_notes = std::move(notes);
}

void C_Writer::Write(std::span<const std::int16_t> samples) { WriteAny(samples); }
void C_Writer::Write(std::span<const std::int32_t> samples) { WriteAny(samples); }
void C_Writer::Write(std::span<const float> samples) { WriteAny(samples); }

template <typename Sample>
void C_Writer::WriteAny(std::span<const Sample> samples) {
  if (samples.size() % m_format.channels != 0) {
    throw C_Failure(VOXPLAY_BAD_ARGUMENT, "writing: the last frame is not whole");
  }
  Do([&] { WritePieces(samples); });
}

template <typename Sample>
void C_Writer::WritePieces(std::span<const Sample> samples) {
  while (!samples.empty()) {
    const auto piece = samples.first(std::min(samples.size(), kPieceFrames * m_format.channels));
    const std::uint64_t qwFrames = m_progress.FramesWritten() + piece.size() / m_format.channels;
    CheckAnnounced(qwFrames, false);
    m_sound->MakeRoom(qwFrames);
    Begin();
    m_sound->Frames().Put(piece);
    m_progress.Written(qwFrames);
    samples = samples.subspan(piece.size());
  }
}

void C_Writer::Finish() {
  Do([this] { WriteRest(); });
  m_eState = E_State::Finished;
}

void C_Writer::WriteRest() {
  const std::uint64_t qwFrames = m_progress.FramesWritten();
  CheckAnnounced(qwFrames, true);
  Begin();
  std::vector<std::string> lost = m_sound->End(m_notes, qwFrames);
  m_progress.Done();
  m_target->Finish();
  m_lost = std::move(lost);
}

template <typename Work>
void C_Writer::Do(Work fnWork) {
  if (m_eState == E_State::Finished || m_eState == E_State::Failed) {
    throw C_Failure(VOXPLAY_WRONG_STATE, "writing: the sound is finished, or has failed before");
  }
  try {
    fnWork();
  } catch (...) {
    m_eState = E_State::Failed;
    throw;
  }
}

void C_Writer::Begin() {
  if (m_eState != E_State::New) return;
  m_eState = E_State::Begun;
  m_sound->Begin(m_notes, m_format.frames);
}

// What has been written already says how many frames there are, and cannot be corrected.
void C_Writer::CheckAnnounced(std::uint64_t qwFrames, bool bAll) const {
  if (m_bCanGoBack || qwFrames == m_format.frames) return;
  if (!bAll && qwFrames < m_format.frames) return;
  throw C_Failure(VOXPLAY_CANNOT_SEEK,
                  "output: " + std::to_string(m_format.frames) +
                      " frames were announced, and it cannot go back to say " +
                      (bAll ? std::to_string(qwFrames) : "that there are more"));
}

}  // namespace api
