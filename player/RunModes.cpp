// SPDX-License-Identifier: Apache-2.0
#include "RunModes.h"

#include <cstdio>
#include <utility>

namespace {

constexpr int kReportStepMs = 100;
int g_nLastReportedMs = 0;

bool CreatePlayer(VoxplayLoader& loader) {
  loader.m_pfnCreate = CreateVoxplay;
  return loader.m_pfnCreate(&loader.m_pIVoxplay) == 0;
}

// The pointer is cleared first, because the holder is released later and must not release the
// player again.
int Fail(VoxplayLoader& loader, int nResult) {
  std::exchange(loader.m_pIVoxplay, nullptr)->Release();
  return nResult;
}

int OpenFile(VoxplayLoader& loader, const char* pszFileName) {
  const int nOpened = loader.m_pIVoxplay->Open(pszFileName);
  if (nOpened == I_Voxplay::kOpened) return 0;
  return Fail(loader,
              nOpened == I_Voxplay::kNotSupported ? kResultNotSupported : kResultDecodeFailed);
}

// Without the flush, the text would not appear before playback has ended.
void Announce() {
  std::fputs("Playing...", stdout);
  std::fflush(stdout);
}

int PlayNormal(VoxplayLoader& loader, const char* pszFileName) {
  if (const int nResult = OpenFile(loader, pszFileName); nResult != 0) return nResult;
  if (!loader.m_pIVoxplay->Play()) return Fail(loader, kResultPlayFailed);
  loader.m_pIVoxplay->GetDurationMs(&loader.m_nResult);
  Announce();
  // Kept: polls without a pause, so that the end is seen within the render cycle that reaches it.
  // Pinned by NormalMode_PollsWithoutAPause.
  while (!PollProgress(loader)) {
  }
  return 0;
}

}  // namespace

int RunPlay(VoxplayLoader& loader, const char* pszFileName, unsigned long ulRealTime) {
  if (!CreatePlayer(loader)) return 0;
  if (ulRealTime != 0) {
    Announce();
    // Kept: the run counts as finished whatever real-time mode reports, so that listeners without
    // an output device get the same exit code. Pinned by RealTimeMode_IgnoresWhatThePlayerReports.
    static_cast<void>(loader.m_pIVoxplay->PlayRealTime(pszFileName));
  } else if (const int nResult = PlayNormal(loader, pszFileName); nResult != 0) {
    return nResult;
  }
  std::puts("Finished");
  return 0;
}

bool PollProgress(VoxplayLoader& loader) {
  int nPositionMs = 0;
  loader.m_pIVoxplay->GetPositionMs(&nPositionMs);
  // Kept: the progress is recorded but shown nowhere, because scripts read the output as it is.
  // Pinned by PollProgress_NotesWholeTenthsOfASecondAndPrintsNothing.
  if (nPositionMs % kReportStepMs == 0 && nPositionMs != g_nLastReportedMs) {
    g_nLastReportedMs = nPositionMs;
  }
  if (loader.m_nResult > nPositionMs) return false;
  loader.m_pIVoxplay->Stop();
  return true;
}

int GetLastReportedMs() { return g_nLastReportedMs; }

int RunGetLength(VoxplayLoader& loader, const char* pszFileName) {
  if (!CreatePlayer(loader)) return 0;
  if (const int nResult = OpenFile(loader, pszFileName); nResult != 0) return nResult;
  loader.m_pIVoxplay->GetDuration(&loader.m_nResult);
  return loader.m_nResult;
}
