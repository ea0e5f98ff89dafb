// SPDX-License-Identifier: Apache-2.0
#include "sound/SoundOutput.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>

#include "base/Failure.h"
#include "base/Interrupt.h"
#include "sound/SoundInput.h"

namespace tool {
namespace {

// How sentences of voxplay.h end where the disk is to blame.
constexpr std::array<std::string_view, 3> kOfDisk = {
    "the disk is full", "the file system is read-only", "the disk reports an error"};

bool IsOfDisk(std::string_view sentence) {
  return std::ranges::any_of(kOfDisk,
                             [sentence](std::string_view end) { return sentence.ends_with(end); });
}

// "out.wav: file: cannot be written" says twice that it is a file.
std::string WithoutPlace(std::string strSentence, const std::string& strPath) {
  const std::string strBegin = strPath + ": file: ";
  if (strSentence.starts_with(strBegin)) strSentence.replace(0, strBegin.size(), strPath + ": ");
  return strSentence;
}

}  // namespace

C_SoundOutput::C_SoundOutput(const std::string& strPath, const voxplay::Format& format,
                             tagOutputOrder eOrder)
    : m_strPath(strPath), m_bLimits(format.codec != VOXPLAY_CODEC_FLOAT) {
  if (strPath == kStandardStream) {
    const bool bAtOnce = eOrder == tagOutputOrder::NOTES_FIRST && format.frames != 0;
    m_standard = std::make_unique<C_StandardOutput>(bAtOnce);
  }
  Try([&] {
    m_writer = m_standard ? std::make_unique<voxplay::Writer>(m_standard->Record(), format)
                          : std::make_unique<voxplay::Writer>(strPath, format);
  });
  OnProgress({});
}

void C_SoundOutput::OnProgress(PFN_Progress fnProgress) {
  m_writer->on_progress(
      [fnProgress = std::move(fnProgress)](std::uint64_t qwDone, std::uint64_t qwAll) {
        if (fnProgress) fnProgress(qwDone, qwAll);
        return !Interrupted();
      });
}

void C_SoundOutput::SetNotes(const voxplay::NotesView& notes) {
  Try([&] { m_writer->set_notes(notes); });
}

void C_SoundOutput::Take(std::span<const float> samples) {
  if (m_bLimits) {
    m_qwLimited += static_cast<std::uint64_t>(std::ranges::count_if(
        samples, [](const float fSample) { return std::abs(fSample) > 1.0F; }));
  }
  Write(samples);
}

void C_SoundOutput::Finish() {
  Try([&] {
    m_writer->finish();
    if (m_standard) m_standard->Finish();
  });
}

template <typename Sample>
void C_SoundOutput::Write(std::span<const Sample> samples) {
  Try([&] { m_writer->write(samples); });
}

template <typename Work>
void C_SoundOutput::Try(Work&& work) const {
  try {
    work();
  } catch (const voxplay::Error& error) {
    if (error.status() == VOXPLAY_CANCELLED) throw C_Interrupted();
    if (!m_standard) FailToWrite(error.what());
    m_standard->ThrowFailure();
    throw C_Failure(NameOfTarget(kStandardStream) + ": " + error.what());
  }
}

void C_SoundOutput::FailToWrite(const std::string& strSentence) const {
  const std::string strLine = WithoutPlace(strSentence, m_strPath);
  if (IsOfDisk(strLine)) throw C_DiskFailure(strLine);
  throw C_Failure(strLine);
}

std::string NameOfTarget(const std::string& strPath) {
  return strPath == kStandardStream ? "standard output" : strPath;
}

}  // namespace tool
