// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>

namespace api {

// Gets the number of frames that are done, of all, which is 0 while it is not known. False ends the
// writing.
using S_ProgressFunction = std::function<bool(std::uint64_t qwDone, std::uint64_t qwAll)>;

// Reports how far a sound is written, in numbers that never fall; the last report says that all
// frames are done. Of a sound that is coded when all of it is there, writing its frames is the
// first half, and coding them the second. All functions throw C_Failure (VOXPLAY_CANCELLED).
class C_Progress {
 public:
  // qwAnnounced: how many frames will be written; 0 when it is not known.
  C_Progress(std::uint64_t qwAnnounced, bool bCodedAtEnd)
      : m_qwAnnounced(qwAnnounced), m_bCodedAtEnd(bCodedAtEnd) {}

  void Listen(S_ProgressFunction fnProgress);
  // So many frames have been written so far.
  void Written(std::uint64_t qwFrames);
  // So many have been looked at while they are coded, each of them twice in the end.
  void Looked(std::uint64_t qwFrames);
  // All of them are done.
  void Done();
  [[nodiscard]] std::uint64_t FramesWritten() const noexcept { return m_qwWritten; }

 private:
  void Report(std::uint64_t qwDone, std::uint64_t qwAll);

  S_ProgressFunction m_fnProgress;
  std::uint64_t m_qwAnnounced;
  bool m_bCodedAtEnd;
  std::uint64_t m_qwWritten = 0;
  std::uint64_t m_qwLastDone = 0;
  std::uint64_t m_qwLastAll = 0;
};

}  // namespace api
