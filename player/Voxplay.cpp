// SPDX-License-Identifier: Apache-2.0
#include "Voxplay.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <limits>
#include <string>

#include "CAXException.h"
#include "DecodeToWav.h"
#include "FileType.h"
#include "KeptForProcess.h"
#include "TempFile.h"
#include "VCM.h"

namespace {

constexpr std::uint32_t kLastPacketRoom = 1024;
constexpr double kMsPerSecond = 1000.0;

// Rounds towards zero. What is below zero or not a number becomes 0, and what is too large becomes
// the largest value.
template <typename T>
T Truncate(double dValue) {
  constexpr T most = std::numeric_limits<T>::max();
  if (!(dValue > 0.0)) return 0;
  return dValue >= static_cast<double>(most) ? most : static_cast<T>(dValue);
}

// The result of Open for what DecodeToWav returned.
int OpenResultOf(int nDecoded) {
  switch (nDecoded) {
    case kDecodedToWav:
      return I_Voxplay::kOpened;
    case kReopenFailed:
      return I_Voxplay::kPlatformFailed;
    default:
      return I_Voxplay::kDecodeFailed;
  }
}

class C_FileUrl {
 public:
  explicit C_FileUrl(const char* pszPath)
      : m_url(CFURLCreateFromFileSystemRepresentation(
            kCFAllocatorDefault, reinterpret_cast<const UInt8*>(pszPath),
            static_cast<CFIndex>(std::strlen(pszPath)), 0)) {}
  ~C_FileUrl() {
    if (m_url != nullptr) CFRelease(m_url);
  }
  C_FileUrl(const C_FileUrl&) = delete;
  C_FileUrl& operator=(const C_FileUrl&) = delete;

  [[nodiscard]] CFURLRef Get() const { return m_url; }

 private:
  CFURLRef m_url;
};

// Kept: what the file says about its format is read and then replaced completely, because the graph
// always plays the one format that every output accepts. Pinned by
// Open_GivesTheGraphTheFixedFormatForEveryFile.
AudioStreamBasicDescription ReadPlaybackFormat(AudioFileID audioFile) {
  AudioStreamBasicDescription format{};
  UInt32 cbFormat = sizeof format;
  XThrowIfError(AudioFileGetProperty(audioFile, kAudioFilePropertyDataFormat, &cbFormat, &format),
                "AudioFileGetProperty");
  format = kPlaybackFormat;
  return format;
}

// Reads the last packet, so that the file is left at its end.
void ReadLastPacket(AudioFileID audioFile, UInt64 qwPacketCount) {
  UInt8 abyPacket[kLastPacketRoom] = {};
  UInt32 cbPacket = sizeof abyPacket;
  UInt32 dwPackets = 1;
  static_cast<void>(AudioFileReadPacketData(audioFile, 0, &cbPacket, nullptr,
                                            static_cast<SInt64>(qwPacketCount - 1), &dwPackets,
                                            abyPacket));
}

}  // namespace

int CreateVoxplay(I_Voxplay** ppIVoxplay) {
  try {
    *ppIVoxplay = new C_Voxplay;
  } catch (const std::exception&) {
    return 1;
  }
  return 0;
}

C_Voxplay::C_Voxplay() {
  const std::string strName = vcm::TempName("");
  constexpr std::size_t cbSuffix = sizeof ".wav";
  if (strName.empty() || strName.size() + cbSuffix > kPathField) return;
  VCM_stprintf(m_szTempWavPath, kPathField, "%s.wav", strName.c_str());
}

bool C_Voxplay::Play() {
  if (m_nState > kPaused || m_graph == nullptr) return true;
  const OSStatus nStatus = AUGraphStart(m_graph);
  if (nStatus == kAudio_MemFullError) return false;
  XThrowIfError(nStatus, "AUGraphStart");
  SetState(kPlaying);
  return true;
}

bool C_Voxplay::Stop() {
  m_nState = kStopped;
  if (m_graph == nullptr) return true;
  XThrowIfError(AUGraphStop(m_graph), "AUGraphStop");
  SetState(kStopped);
  ReadLastPacket(m_audioFile, m_schedule.qwPacketCount);
  return true;
}

bool C_Voxplay::Pause() {
  if (m_graph != nullptr) XThrowIfError(AUGraphStop(m_graph), "AUGraphStop");
  // Kept: the state becomes paused even when nothing is opened. Callers pause at any time and
  // expect to be notified of it. Pinned by Pause_WithoutAGraph_StillCountsAsPaused.
  SetState(kPaused);
  return true;
}

void C_Voxplay::Release() {
  m_pfnNotify = nullptr;
  Stop();
  CloseGraph();
  delete this;
}

int C_Voxplay::PlayRealTime(const char* pszFileName) {
  return ::PlayRealTime(this, &m_decoder, pszFileName);
}

int C_Voxplay::Open(const char* pszFileName) {
  try {
    return OpenFile(pszFileName);
  } catch (...) {
    return kPlatformFailed;
  }
}

bool C_Voxplay::SetNotify(PFN_VoxplayNotify pfnNotify, unsigned int dwUserData) {
  // Kept: before a file is opened the callback is neither stored nor refused, so that callers may
  // set it at any time and again once the file is open. Pinned by
  // SetNotify_WithoutAGraph_StoresNothingAndSucceeds.
  if (m_graph == nullptr) return true;
  if (pfnNotify == nullptr) return false;
  Boolean bRunning = 0;
  XThrowIfError(AUGraphIsRunning(m_graph, &bRunning), "AUGraphIsRunning");
  if (bRunning == 0) m_nState = kStopped;
  m_pfnNotify = pfnNotify;
  m_dwNotifyData = dwUserData;
  return true;
}

bool C_Voxplay::GetProgress(float* pfProgress) {
  *pfProgress = static_cast<float>(GetSecondsPlayed()) / static_cast<float>(m_dDuration);
  return true;
}

bool C_Voxplay::GetDuration(int* pnSeconds) {
  *pnSeconds = Truncate<int>(m_dDuration);
  return true;
}

bool C_Voxplay::GetDurationMs(int* pnMilliseconds) {
  *pnMilliseconds = Truncate<int>(m_dDuration * kMsPerSecond);
  return true;
}

bool C_Voxplay::GetPosition(int* pnSeconds) {
  *pnSeconds = Truncate<int>(GetSecondsPlayed());
  return true;
}

bool C_Voxplay::GetPositionMs(int* pnMilliseconds) {
  *pnMilliseconds = Truncate<int>(GetSecondsPlayed() * kMsPerSecond);
  return true;
}

void C_Voxplay::SetState(int nState) {
  m_nState = nState;
  if (m_pfnNotify != nullptr) static_cast<void>(m_pfnNotify(nState, m_dwNotifyData));
}

int C_Voxplay::OpenFile(const char* pszFileName) {
  Stop();
  unsigned char byNeedsDecoding = 0;
  if (!CheckFileType(pszFileName, &byNeedsDecoding)) return kNotSupported;
  const char* pszPath = pszFileName;
  if (byNeedsDecoding != 0) {
    if (const int nResult = DecodeToTempWav(pszFileName); nResult != kOpened) return nResult;
    pszPath = m_szTempWavPath;
  }
  OpenAudioFile(pszPath);
  const AudioStreamBasicDescription format = ReadPlaybackFormat(m_audioFile);
  MakeFileGraph(&m_graph, &m_fileUnit, format, m_audioFile);
  // Without the notification the graph still plays; only the position stands still.
  static_cast<void>(AUGraphAddRenderNotify(m_graph, RenderNotify, this));
  m_dDuration = PrepareFileUnit(&m_schedule, m_fileUnit, format, m_audioFile);
  std::printf("file duration: %f secs\n", m_dDuration);
  return kOpened;
}

// Kept: the decoded file outlives the player; users pick it up from the temporary directory. Pinned
// by DecodedFile_StaysInTheTemporaryDirectory.
int C_Voxplay::DecodeToTempWav(const char* pszFileName) {
  static_cast<void>(unlink(m_szTempWavPath));
  if (!vcm::CreateExclusive(m_szTempWavPath)) return kDecodeFailed;
  vcm::C_RemovedAtEnd wav(m_szTempWavPath);
  const int nResult = OpenResultOf(DecodeToWav(pszFileName, m_szTempWavPath));
  if (nResult == kOpened) wav.Keep();
  return nResult;
}

void C_Voxplay::OpenAudioFile(const char* pszPath) {
  KeepOpenFile();
  const C_FileUrl url(pszPath);
  XThrowIfError(AudioFileOpenURL(url.Get(), kAudioFileReadPermission, 0, &m_audioFile),
                "AudioFileOpenURL");
}

// A file is closed only together with its graph. A file that never got a graph, or that is replaced
// by another file, stays open.
void C_Voxplay::KeepOpenFile() {
  if (m_audioFile != nullptr) KeepForProcess(m_audioFile, "file that was opened and not closed");
}

void C_Voxplay::CloseGraph() {
  if (m_graph == nullptr) return KeepOpenFile();
  XThrowIfError(AUGraphStop(m_graph), "AUGraphStop");
  XThrowIfError(AUGraphUninitialize(m_graph), "AUGraphUninitialize");
  XThrowIfError(AudioFileClose(m_audioFile), "AudioFileClose");
  XThrowIfError(AUGraphClose(m_graph), "AUGraphClose");
  m_fileUnit = CAAudioUnit();
}

void C_Voxplay::CaptureStart() {
  AudioTimeStamp start{};
  UInt32 cbStart = sizeof start;
  const bool bRead = m_fileUnit.GetProperty(kAudioUnitProperty_ScheduleStartTimeStamp,
                                            kAudioUnitScope_Global, 0, &start, &cbStart) == noErr;
  const bool bTimed = (start.mFlags & kAudioTimeStampSampleTimeValid) != 0;
  if (!bRead || !bTimed || !(start.mSampleTime >= 0.0)) return;
  m_dStartSampleTime.store(start.mSampleTime, std::memory_order_release);
  m_byStartCaptured = 1;
}

double C_Voxplay::GetSecondsPlayed() {
  const double dLast = m_lastRender.dSampleTime.load(std::memory_order_acquire);
  const double dStart = m_dStartSampleTime.load(std::memory_order_acquire);
  m_qwFramesPlayed = Truncate<std::uint64_t>(dLast - dStart);
  return static_cast<double>(m_qwFramesPlayed * m_schedule.dwFramesPerPacket) /
         m_schedule.dSampleRate;
}

OSStatus C_Voxplay::RenderNotify(void* pRefCon, AudioUnitRenderActionFlags* pdwActionFlags,
                                 const AudioTimeStamp* pTimeStamp, UInt32 /*dwBusNumber*/,
                                 UInt32 /*dwNumberFrames*/, AudioBufferList* /*pData*/) {
  auto* pPlayer = static_cast<C_Voxplay*>(pRefCon);
  if (pPlayer->m_byStartCaptured == 0) pPlayer->CaptureStart();
  if ((*pdwActionFlags & kAudioUnitRenderAction_PostRender) != 0) {
    pPlayer->m_lastRender.stamp = *pTimeStamp;
    pPlayer->m_lastRender.dSampleTime.store(pTimeStamp->mSampleTime, std::memory_order_release);
  }
  return noErr;
}
