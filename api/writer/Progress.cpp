// SPDX-License-Identifier: Apache-2.0
#include "writer/Progress.h"

#include <utility>

#include "base/Failure.h"

namespace api {

void C_Progress::Listen(S_ProgressFunction fnProgress) { m_fnProgress = std::move(fnProgress); }

void C_Progress::Written(std::uint64_t qwFrames) {
  m_qwWritten = qwFrames;
  // What was announced no longer holds when it is exceeded.
  const std::uint64_t qwAll = qwFrames > m_qwAnnounced ? 0 : m_qwAnnounced;
  Report(m_bCodedAtEnd ? qwFrames / 2 : qwFrames, qwAll);
}

void C_Progress::Looked(std::uint64_t qwFrames) {
  // Both looks together are the second half.
  Report(m_qwWritten / 2 + qwFrames / 4, m_qwWritten);
}

void C_Progress::Done() {
  if (m_qwLastDone == m_qwWritten && m_qwLastAll == m_qwWritten && m_qwWritten > 0) return;
  Report(m_qwWritten, m_qwWritten);
}

void C_Progress::Report(std::uint64_t qwDone, std::uint64_t qwAll) {
  m_qwLastDone = qwDone;
  m_qwLastAll = qwAll;
  if (!m_fnProgress || m_fnProgress(qwDone, qwAll)) return;
  throw C_Failure(VOXPLAY_CANCELLED, "writing: it was cancelled");
}

}  // namespace api
