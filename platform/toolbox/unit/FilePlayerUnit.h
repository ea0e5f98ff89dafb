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

// A generator that plays one region of a file, converted to the rate of its output, with silence
// before and after. Its output is non-interleaved float with one or two channels; a mono file plays
// on both channels.
//
// A region with the time stamp t begins t samples after the start time. A start time below zero
// means the next cycle. Once that cycle has come, the start time reads as the cycle's sample time.
//
// Where the file cannot be read, the region ends, and rendering it fails with the error of the file
// service from then on.
class C_FilePlayerUnit final : public I_Unit {
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
  // Makes the reader of the region if there is none yet. Priming calls this so that the first cycle
  // need not make it.
  OSStatus PrepareReader();
  OSStatus Play(double dSampleTime, UInt32 dwFrames, AudioBufferList& buffers);

  std::mutex m_lock;
  bool m_bInitialized = false;
  AudioStreamBasicDescription m_format = kDefaultUnitFormat;
  std::vector<AudioFileID> m_files;
  std::optional<ScheduledAudioFileRegion> m_region;
  std::shared_ptr<C_AudioFile> m_pRegionFile;
  std::unique_ptr<C_StretchReader> m_pReader;
  AudioTimeStamp m_start{};
  std::vector<float> m_scratch;
};

}  // namespace toolbox
