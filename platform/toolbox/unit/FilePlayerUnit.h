// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "file/AudioFile.h"
#include "file/StretchReader.h"
#include "unit/Unit.h"

namespace toolbox {

// Generator that plays one region of a file, converted to the rate of its output, and silence
// before and after. Its output is float, non-interleaved, one or two channels; a mono file sounds
// on both.
//
// A region whose time stamp is t begins t samples after the start time. A start time below zero
// means the next cycle; once that has come, the start time reads as the sample time that it had.
class C_FilePlayerUnit final : public C_Unit {
 public:
  OSStatus Initialize() override;
  // Forgets the region and the start time.
  OSStatus Uninitialize() override;
  OSStatus SetProperty(const S_PropertyAddress& address, const void* pData, UInt32 cbData) override;
  OSStatus GetProperty(const S_PropertyAddress& address, void* pData, UInt32& cbData) override;
  OSStatus Render(const AudioTimeStamp& stamp, UInt32 dwFrames, AudioBufferList& buffers) override;

 private:
  OSStatus SetFormat(const void* pData, UInt32 cbData);
  OSStatus SetFiles(const void* pData, UInt32 cbData);
  OSStatus SetRegion(const void* pData, UInt32 cbData);
  OSStatus SetPrime(const void* pData, UInt32 cbData);
  OSStatus SetStart(const void* pData, UInt32 cbData);
  // Makes the reader of the region, so that the first cycle need not.
  OSStatus PrepareReader();
  void Play(double dSampleTime, UInt32 dwFrames, AudioBufferList& buffers);

  std::mutex m_lock;
  bool m_bInitialized = false;
  AudioStreamBasicDescription m_format = kDefaultFormat;
  std::vector<AudioFileID> m_files;
  std::optional<ScheduledAudioFileRegion> m_region;
  std::shared_ptr<C_AudioFile> m_pRegionFile;
  std::unique_ptr<C_StretchReader> m_pReader;
  AudioTimeStamp m_start{};
  std::vector<float> m_scratch;

  static constexpr AudioStreamBasicDescription kDefaultFormat = {
      44100.0,
      kAudioFormatLinearPCM,
      kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked | kAudioFormatFlagIsNonInterleaved,
      sizeof(float),
      1,
      sizeof(float),
      2,
      32,
      0};
};

}  // namespace toolbox
