// SPDX-License-Identifier: Apache-2.0
//
// A sound that is being written, to a file or to standard output. A file appears whole, when it is
// finished; until then, and when anything fails, what had its name before is as it was.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "sound/SampleSink.h"
#include "sound/StandardOutput.h"
#include "voxplay.hpp"

namespace tool {

// When the notes and the number of frames are known.
enum class tagOutputOrder {
  NOTES_FIRST,  // the notes are set before the first frame, and the format says how many will come
  NOTES_LAST,   // the notes are set at the end, or the number of frames may turn out to be another
};

// Operations throw C_Failure, C_DiskFailure or C_Interrupted.
class C_SoundOutput final : public I_SampleSink {
 public:
  // As voxplay.h tells it: the frames that are done, of all, or of 0 when that is not known.
  using PFN_Progress = std::function<void(std::uint64_t qwDone, std::uint64_t qwAll)>;

  // Standard output for "-". What has to go back, or to wait for its notes, waits in a private
  // temporary file.
  C_SoundOutput(const std::string& strPath, const voxplay::Format& format, tagOutputOrder eOrder);

  void OnProgress(PFN_Progress fnProgress);
  void SetNotes(const voxplay::NotesView& notes);
  void Take(std::span<const std::int16_t> samples) override { Write(samples); }
  void Take(std::span<const std::int32_t> samples) override { Write(samples); }
  void Take(std::span<const float> samples) override;
  void Finish();

  // After that: the sentences of voxplay.h on notes that are not kept.
  [[nodiscard]] std::vector<std::string> Lost() const { return m_writer->lost(); }
  // Samples beyond full scale that became full scale, because the format has integers.
  [[nodiscard]] std::uint64_t LimitedSamples() const noexcept { return m_qwLimited; }

 private:
  template <typename Sample>
  void Write(std::span<const Sample> samples);
  template <typename Work>
  void Try(Work&& work) const;
  [[noreturn]] void FailToWrite(const std::string& strSentence) const;

  std::string m_strPath;
  bool m_bLimits;
  std::uint64_t m_qwLimited = 0;
  std::unique_ptr<C_StandardOutput> m_standard;  // outlives the writer
  std::unique_ptr<voxplay::Writer> m_writer;
};

// What messages call the file of a target: "standard output" for "-".
std::string NameOfTarget(const std::string& strPath);

}  // namespace tool
