// SPDX-License-Identifier: Apache-2.0
//
// What has become of the files of a command, and how texts say it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "batch/FileJobs.h"

namespace tool {

struct S_BatchState {
  std::uint64_t qwAll = 0;  // files
  std::uint64_t qwDone = 0;
  std::uint64_t qwSkipped = 0;
  std::uint64_t qwFailed = 0;
  std::uint64_t qwDamaged = 0;  // of those that are done: files with damaged frames
  std::uint64_t qwCut = 0;      // the same: files whose end is missing
  double dSoundSeconds = 0.0;   // that were read
  double dSeconds = 0.0;        // that it took

  void Count(const S_FileResult& result);
  [[nodiscard]] std::uint64_t Ended() const noexcept { return qwDone + qwSkipped + qwFailed; }
};

// "2000 files: 1999 converted (3 with damaged frames), 1 failed; 3 h 12 min of sound in 41 s".
// strDone is the word for those that are done, strFailed that for the others.
[[nodiscard]] std::string SummaryText(const S_BatchState& state, const std::string& strDone,
                                      const std::string& strFailed = "failed");
// The same when the work has ended too early: "interrupted: 12 of 2000 files converted".
[[nodiscard]] std::string StoppedText(const std::string& strHow, const S_BatchState& state,
                                      const std::string& strDone);

// "[=====     ] 12/2000 files, 345 x real time, 41 s left": as much of it as fits. dBegun are the
// files that are being worked on, as parts of whole ones, and dBegunSeconds is what is done of
// their sound.
[[nodiscard]] std::string ProgressText(const S_BatchState& state, double dBegun,
                                       double dBegunSeconds, std::size_t nColumns,
                                       const std::string& strFailed = "failed");

}  // namespace tool
