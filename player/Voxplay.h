// SPDX-License-Identifier: Apache-2.0
//
// The player behind I_Voxplay. In normal mode, Open decodes the file to a temporary WAV file if
// need be and builds a graph for it. The graph's render thread reports to RenderNotify, and the
// position operations read what it left. Real-time mode is PlayRealTime and shares nothing with
// normal mode.
#pragma once

#include <AudioToolbox/AudioToolbox.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "CAAudioUnit.h"
#include "FileGraph.h"
#include "I_Voxplay.h"
#include "RealTimePlayer.h"

class C_Voxplay final : public I_Voxplay {
 public:
  static constexpr std::size_t kPathField = 1024;

  // Chooses the name of the temporary WAV file, but does not create the file.
  C_Voxplay();
  C_Voxplay(const C_Voxplay&) = delete;
  C_Voxplay& operator=(const C_Voxplay&) = delete;

  bool Play() override;
  bool Stop() override;
  bool Pause() override;
  void Release() override;
  int Reserved5() override { return 0; }
  int Reserved6() override { return 0; }
  int Reserved7() override { return 0; }
  int Reserved8() override { return 0; }
  int Reserved9() override { return 0; }
  int Reserved10() override { return 0; }
  int PlayRealTime(const char* pszFileName) override;
  int Open(const char* pszFileName) override;
  bool SetNotify(PFN_VoxplayNotify pfnNotify, unsigned int dwUserData) override;
  bool GetProgress(float* pfProgress) override;
  bool GetDuration(int* pnSeconds) override;
  bool GetDurationMs(int* pnMilliseconds) override;
  bool GetPosition(int* pnSeconds) override;
  bool GetPositionMs(int* pnMilliseconds) override;

 private:
  // The latest finished render cycle. The record belongs to the render thread; a second copy of its
  // sample time is for the thread that asks for positions.
  struct S_LastRender {
    AudioTimeStamp stamp{};
    std::atomic<double> dSampleTime{0.0};
  };

  ~C_Voxplay() = default;

  void SetState(int nState);
  int OpenFile(const char* pszFileName);
  int DecodeToTempWav(const char* pszFileName);
  void OpenAudioFile(const char* pszPath);
  void KeepOpenFile();
  void CloseGraph();
  void CaptureStart();
  double GetSecondsPlayed();
  static OSStatus RenderNotify(void* pRefCon, AudioUnitRenderActionFlags* pdwActionFlags,
                               const AudioTimeStamp* pTimeStamp, UInt32 dwBusNumber,
                               UInt32 dwNumberFrames, AudioBufferList* pData);

  int m_nState = kNothingOpened;
  char m_szTempWavPath[kPathField] = {};
  [[maybe_unused]] double m_dSpare = 1.0;
  PFN_VoxplayNotify m_pfnNotify = nullptr;
  unsigned int m_dwNotifyData = 0;
  [[maybe_unused]] unsigned char m_byExtra = 0;
  AUGraph m_graph = nullptr;
  CAAudioUnit m_fileUnit;
  std::atomic<double> m_dStartSampleTime{0.0};
  AudioFileID m_audioFile = nullptr;
  S_FileSchedule m_schedule;
  std::uint64_t m_qwFramesPlayed = 0;
  S_LastRender m_lastRender;
  unsigned char m_byStartCaptured = 0;  // only for the render thread
  double m_dDuration = 0.0;             // seconds
  S_RealTimeDecoder m_decoder;
};
