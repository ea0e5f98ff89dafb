// SPDX-License-Identifier: Apache-2.0
#include "unit/FilePlayerUnit.h"

#include <algorithm>
#include <cmath>

#include "object/Guarded.h"

namespace toolbox {
namespace {

bool IsPlayerFormat(const AudioStreamBasicDescription& format) {
  constexpr AudioFormatFlags kFlags =
      kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked | kAudioFormatFlagIsNonInterleaved;
  return IsOutputRate(format.mSampleRate) && format.mFormatID == kAudioFormatLinearPCM &&
         format.mFormatFlags == kFlags && format.mBytesPerPacket == sizeof(float) &&
         format.mFramesPerPacket == 1 && format.mBytesPerFrame == sizeof(float) &&
         format.mBitsPerChannel == 32 && format.mChannelsPerFrame >= 1 &&
         format.mChannelsPerFrame <= 2;
}

bool HasSampleTime(const AudioTimeStamp& stamp) {
  return (stamp.mFlags & kAudioTimeStampSampleTimeValid) != 0 && std::isfinite(stamp.mSampleTime);
}

bool HoldsFrames(const AudioBufferList& buffers, UInt32 dwChannels, UInt32 dwFrames) {
  if (buffers.mNumberBuffers != dwChannels) return false;
  const AudioBuffer* pFirst = buffers.mBuffers;
  return std::all_of(pFirst, pFirst + dwChannels, [dwFrames](const AudioBuffer& buffer) {
    return buffer.mData != nullptr && buffer.mDataByteSize >= dwFrames * sizeof(float);
  });
}

AudioUnitScope ScopeOf(AudioUnitPropertyID dwID) {
  return dwID == kAudioUnitProperty_StreamFormat ? kAudioUnitScope_Output : kAudioUnitScope_Global;
}

bool IsPlayerProperty(AudioUnitPropertyID dwID) {
  switch (dwID) {
    case kAudioUnitProperty_StreamFormat:
    case kAudioUnitProperty_ScheduleStartTimeStamp:
    case kAudioUnitProperty_ScheduledFileIDs:
    case kAudioUnitProperty_ScheduledFileRegion:
    case kAudioUnitProperty_ScheduledFilePrime:
      return true;
    default:
      return false;
  }
}

}  // namespace

OSStatus C_FilePlayerUnit::Initialize() {
  const std::lock_guard lock(m_lock);
  m_bInitialized = true;
  m_scratch.resize(std::size_t{kMaxSliceFrames} * 2);
  return noErr;
}

OSStatus C_FilePlayerUnit::Uninitialize() {
  const std::lock_guard lock(m_lock);
  m_bInitialized = false;
  m_pReader.reset();
  m_region.reset();
  m_pRegionFile.reset();
  m_start = {};
  return noErr;
}

OSStatus C_FilePlayerUnit::SetProperty(const S_PropertyAddress& address, const void* pData,
                                       UInt32 cbData) {
  if (!IsPlayerProperty(address.dwID)) return kAudioUnitErr_InvalidProperty;
  const OSStatus nStatus = CheckAddress(address, ScopeOf(address.dwID));
  if (nStatus != noErr) return nStatus;
  const std::lock_guard lock(m_lock);
  switch (address.dwID) {
    case kAudioUnitProperty_StreamFormat:
      return SetFormat(pData, cbData);
    case kAudioUnitProperty_ScheduledFileIDs:
      return SetFiles(pData, cbData);
    case kAudioUnitProperty_ScheduledFileRegion:
      return SetRegion(pData, cbData);
    case kAudioUnitProperty_ScheduledFilePrime:
      return SetPrime(pData, cbData);
    default:
      return SetStart(pData, cbData);
  }
}

OSStatus C_FilePlayerUnit::GetProperty(const S_PropertyAddress& address, void* pData,
                                       UInt32& cbData) {
  if (!IsPlayerProperty(address.dwID)) return kAudioUnitErr_InvalidProperty;
  const OSStatus nStatus = CheckAddress(address, ScopeOf(address.dwID));
  if (nStatus != noErr) return nStatus;
  const std::lock_guard lock(m_lock);
  switch (address.dwID) {
    case kAudioUnitProperty_StreamFormat:
      return CopyOut(m_format, pData, cbData);
    case kAudioUnitProperty_ScheduleStartTimeStamp:
      return CopyOut(m_start, pData, cbData);
    case kAudioUnitProperty_ScheduledFileRegion:
      return m_region ? CopyOut(*m_region, pData, cbData) : kAudioUnitErr_PropertyNotInUse;
    default:
      return kAudioUnitErr_PropertyNotInUse;
  }
}

OSStatus C_FilePlayerUnit::SetFormat(const void* pData, UInt32 cbData) {
  AudioStreamBasicDescription format{};
  const OSStatus nStatus = CopyIn(format, pData, cbData);
  if (nStatus != noErr) return nStatus;
  if (!IsPlayerFormat(format)) return kAudioUnitErr_FormatNotSupported;
  if (m_bInitialized) return kAudioUnitErr_Initialized;
  m_format = format;
  m_pReader.reset();
  return noErr;
}

OSStatus C_FilePlayerUnit::SetFiles(const void* pData, UInt32 cbData) {
  if (cbData % sizeof(AudioFileID) != 0) return kAudioUnitErr_InvalidPropertyValue;
  std::vector<AudioFileID> files(cbData / sizeof(AudioFileID));
  if (cbData != 0) std::memcpy(files.data(), pData, cbData);
  const bool bAllOpen = std::all_of(files.begin(), files.end(), [](AudioFileID audioFile) {
    return FindAudioFile(audioFile) != nullptr;
  });
  if (!bAllOpen) return kAudioUnitErr_InvalidFile;
  m_files = std::move(files);
  return noErr;
}

OSStatus C_FilePlayerUnit::SetRegion(const void* pData, UInt32 cbData) {
  ScheduledAudioFileRegion region{};
  const OSStatus nStatus = CopyIn(region, pData, cbData);
  if (nStatus != noErr) return nStatus;
  if (std::find(m_files.begin(), m_files.end(), region.mAudioFile) == m_files.end()) {
    return kAudioUnitErr_InvalidFile;
  }
  if (region.mLoopCount != 0 || region.mCompletionProc != nullptr) return kAudio_UnimplementedError;
  if (!HasSampleTime(region.mTimeStamp) || region.mTimeStamp.mSampleTime < 0 ||
      region.mStartFrame < 0) {
    return kAudioUnitErr_InvalidPropertyValue;
  }
  auto pFile = FindAudioFile(region.mAudioFile);
  if (pFile == nullptr) return kAudioUnitErr_InvalidFile;
  m_pRegionFile = std::move(pFile);
  m_region = region;
  m_pReader.reset();
  return noErr;
}

OSStatus C_FilePlayerUnit::SetPrime(const void* pData, UInt32 cbData) {
  UInt32 dwFrames = 0;
  const OSStatus nStatus = CopyIn(dwFrames, pData, cbData);
  if (nStatus != noErr) return nStatus;
  return PrepareReader();
}

OSStatus C_FilePlayerUnit::SetStart(const void* pData, UInt32 cbData) {
  AudioTimeStamp start{};
  const OSStatus nStatus = CopyIn(start, pData, cbData);
  if (nStatus != noErr) return nStatus;
  if (!HasSampleTime(start)) return kAudioUnitErr_InvalidPropertyValue;
  m_start = start;
  return noErr;
}

OSStatus C_FilePlayerUnit::PrepareReader() {
  if (!m_region || m_pReader != nullptr) return noErr;
  auto pReader = std::make_unique<C_StretchReader>(m_pRegionFile, m_region->mStartFrame,
                                                   m_region->mFramesToPlay, m_format.mSampleRate);
  if (!pReader->IsUsable()) return kAudioUnitErr_FormatNotSupported;
  m_pReader = std::move(pReader);
  return noErr;
}

OSStatus C_FilePlayerUnit::Render(const AudioTimeStamp& stamp, UInt32 dwFrames,
                                  AudioBufferList& buffers) {
  const std::lock_guard lock(m_lock);
  if (!m_bInitialized) return kAudioUnitErr_Uninitialized;
  if (dwFrames > kMaxSliceFrames) return kAudioUnitErr_TooManyFramesToProcess;
  if (!HasSampleTime(stamp) || !HoldsFrames(buffers, m_format.mChannelsPerFrame, dwFrames)) {
    return kAudio_ParamError;
  }
  for (UInt32 i = 0; i < buffers.mNumberBuffers; ++i) {
    std::fill_n(static_cast<float*>(buffers.mBuffers[i].mData), dwFrames, 0.0F);
  }
  if (!m_region || !HasSampleTime(m_start)) return noErr;
  const OSStatus nStatus = Guarded([this] { return PrepareReader(); });
  if (nStatus != noErr) return nStatus;
  if (m_start.mSampleTime < 0) m_start.mSampleTime = stamp.mSampleTime;
  return Play(stamp.mSampleTime, dwFrames, buffers);
}

// What could be read before an error is still heard. The cycles after that are silent, and say why.
OSStatus C_FilePlayerUnit::Play(double dSampleTime, UInt32 dwFrames, AudioBufferList& buffers) {
  const double dWait = m_start.mSampleTime + m_region->mTimeStamp.mSampleTime - dSampleTime;
  if (dWait >= dwFrames) return noErr;
  const auto dwSkip = static_cast<UInt32>(std::max(0.0, std::ceil(dWait)));
  const std::size_t nFrames = m_pReader->Read(dwFrames - dwSkip, m_scratch.data());
  const UInt32 dwStride = m_pReader->Channels();
  for (UInt32 i = 0; i < buffers.mNumberBuffers; ++i) {
    auto* pTo = static_cast<float*>(buffers.mBuffers[i].mData) + dwSkip;
    const float* pFrom = m_scratch.data() + std::min(i, dwStride - 1);
    for (std::size_t n = 0; n < nFrames; ++n) pTo[n] = pFrom[n * dwStride];
  }
  return nFrames != 0 ? OSStatus{noErr} : m_pReader->Status();
}

}  // namespace toolbox
