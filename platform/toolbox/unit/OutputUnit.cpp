// SPDX-License-Identifier: Apache-2.0
#include "unit/OutputUnit.h"

#include <AudioToolbox/AudioFile.h>

#include <algorithm>
#include <cstddef>

namespace toolbox {
namespace {

bool IsFloat(const AudioStreamBasicDescription& format) {
  return (format.mFormatFlags & kAudioFormatFlagIsFloat) != 0;
}

bool HasPlayableSamples(const AudioStreamBasicDescription& format) {
  const AudioFormatFlags dwKind =
      format.mFormatFlags &
      ~static_cast<AudioFormatFlags>(kAudioFormatFlagIsNonInterleaved | kAudioFormatFlagIsPacked);
  if (format.mFormatID != kAudioFormatLinearPCM) return false;
  if ((format.mFormatFlags & kAudioFormatFlagIsPacked) == 0) return false;
  return (dwKind == kAudioFormatFlagIsFloat && format.mBitsPerChannel == 32) ||
         (dwKind == kAudioFormatFlagIsSignedInteger && format.mBitsPerChannel == 16);
}

bool IsOutputFormat(const AudioStreamBasicDescription& format) {
  if (!HasPlayableSamples(format) || !IsOutputRate(format.mSampleRate)) return false;
  if (format.mChannelsPerFrame < 1 || format.mChannelsPerFrame > 2) return false;
  const bool bPlanar = (format.mFormatFlags & kAudioFormatFlagIsNonInterleaved) != 0;
  if (bPlanar && !IsFloat(format)) return false;
  const UInt32 cbFrame = format.mBitsPerChannel / 8 * (bPlanar ? 1 : format.mChannelsPerFrame);
  return format.mBytesPerFrame == cbFrame && format.mBytesPerPacket == cbFrame &&
         format.mFramesPerPacket == 1;
}

bool IsSame(const AURenderCallbackStruct& a, const AURenderCallbackStruct& b) {
  return a.inputProc == b.inputProc && a.inputProcRefCon == b.inputProcRefCon;
}

OSStatus CheckLayout(UInt32 cbData) {
  return cbData >= offsetof(AudioChannelLayout, mChannelDescriptions)
             ? OSStatus{noErr}
             : kAudioUnitErr_InvalidPropertyValue;
}

}  // namespace

C_OutputUnit::C_OutputUnit(OpenDeviceFunction open)
    : m_open(std::move(open)), m_format(kDefaultUnitFormat) {
  m_notifies.reserve(kSureNotifies);
}

C_OutputUnit::~C_OutputUnit() { Uninitialize(); }

OSStatus C_OutputUnit::Initialize() {
  const std::lock_guard lock(m_lock);
  if (m_bInitialized) return noErr;
  if (!m_bOpenAtStart) OpenPlayback();
  m_bInitialized = true;
  return noErr;
}

OSStatus C_OutputUnit::Uninitialize() {
  const std::lock_guard lock(m_lock);
  StopPlayback();
  m_bInitialized = false;
  m_pPlayback.reset();
  const std::lock_guard renderLock(m_renderLock);
  m_dSampleTime = 0;
  return noErr;
}

void C_OutputUnit::OpenPlayback() {
  const S_OutputFormat format{static_cast<UInt32>(m_format.mSampleRate), m_format.mChannelsPerFrame,
                              IsFloat(m_format)};
  I_RenderSource& source = *this;
  // A program that uses the unit by itself says that it plays before it sets up the unit.
  const bool bAfterText = !m_bOpenAtStart;
  m_pPlayback = std::make_unique<C_Playback>(format, source, m_open, bAfterText);
}

OSStatus C_OutputUnit::SetProperty(const S_PropertyAddress& address, const void* pData,
                                   UInt32 cbData) {
  switch (address.dwID) {
    case kAudioUnitProperty_StreamFormat:
    case kAudioUnitProperty_SetRenderCallback:
    case kAudioUnitProperty_AudioChannelLayout:
      break;
    default:
      return kAudioUnitErr_InvalidProperty;
  }
  const OSStatus nStatus = CheckAddress(address, kAudioUnitScope_Input);
  if (nStatus != noErr) return nStatus;
  if (address.dwID == kAudioUnitProperty_StreamFormat) return SetFormat(pData, cbData);
  if (address.dwID == kAudioUnitProperty_SetRenderCallback) return SetCallback(pData, cbData);
  return CheckLayout(cbData);
}

OSStatus C_OutputUnit::GetProperty(const S_PropertyAddress& address, void* pData, UInt32& cbData) {
  if (address.dwID != kAudioUnitProperty_StreamFormat) return kAudioUnitErr_InvalidProperty;
  const OSStatus nStatus = CheckAddress(address, kAudioUnitScope_Input);
  if (nStatus != noErr) return nStatus;
  const std::lock_guard lock(m_formatLock);
  return CopyOut(m_format, pData, cbData);
}

OSStatus C_OutputUnit::SetFormat(const void* pData, UInt32 cbData) {
  AudioStreamBasicDescription format{};
  const OSStatus nStatus = CopyIn(format, pData, cbData);
  if (nStatus != noErr) return nStatus;
  if (!IsOutputFormat(format)) return kAudioUnitErr_FormatNotSupported;
  const std::lock_guard lock(m_lock);
  if (m_bInitialized) return kAudioUnitErr_Initialized;
  const std::lock_guard formatLock(m_formatLock);
  m_format = format;
  return noErr;
}

OSStatus C_OutputUnit::SetCallback(const void* pData, UInt32 cbData) {
  AURenderCallbackStruct callback{};
  const OSStatus nStatus = CopyIn(callback, pData, cbData);
  if (nStatus != noErr) return nStatus;
  const std::lock_guard lock(m_renderLock);
  m_callback = callback;
  return noErr;
}

OSStatus C_OutputUnit::Render(const AudioTimeStamp& /*stamp*/, UInt32 /*dwFrames*/,
                              AudioBufferList& /*buffers*/) {
  return kAudioUnitErr_InvalidElement;
}

void C_OutputUnit::Connect(std::shared_ptr<I_Unit> pSource) {
  const std::lock_guard lock(m_renderLock);
  m_pSource = std::move(pSource);
}

void C_OutputUnit::AddNotify(const AURenderCallbackStruct& notify) {
  const std::lock_guard lock(m_renderLock);
  m_notifies.push_back(notify);
}

bool C_OutputUnit::RemoveNotify(const AURenderCallbackStruct& notify) {
  const std::lock_guard lock(m_renderLock);
  return std::erase_if(m_notifies, [&](const auto& held) { return IsSame(held, notify); }) != 0;
}

OSStatus C_OutputUnit::Start() {
  const std::lock_guard lock(m_lock);
  if (!m_bInitialized) return kAudioUnitErr_Uninitialized;
  if (m_bRunning) return noErr;
  if (m_pPlayback == nullptr) OpenPlayback();
  if (!m_pPlayback->Start()) return kAudio_MemFullError;
  m_bRunning = true;
  return noErr;
}

OSStatus C_OutputUnit::Stop() {
  const std::lock_guard lock(m_lock);
  StopPlayback();
  return noErr;
}

void C_OutputUnit::StopPlayback() {
  if (!m_bRunning) return;
  m_pPlayback->Stop();
  m_bRunning = false;
}

bool C_OutputUnit::RenderFrames(void* pFrames, UInt32 dwFrames) {
  const std::lock_guard lock(m_renderLock);
  auto* pbyFrames = static_cast<UInt8*>(pFrames);
  const std::size_t cbFrame =
      std::size_t{m_format.mBitsPerChannel} / 8 * m_format.mChannelsPerFrame;
  bool bRead = true;
  while (dwFrames > 0) {
    const UInt32 dwSlice = std::min(dwFrames, MaxSliceFrames());
    bRead = RenderSlice(pbyFrames, dwSlice) && bRead;
    pbyFrames += dwSlice * cbFrame;
    dwFrames -= dwSlice;
  }
  return bRead;
}

// A callback may take as long for a few frames as for many, so it gets them all in one call unless
// a connected unit or the planes limit their number.
UInt32 C_OutputUnit::MaxSliceFrames() const noexcept {
  return m_pSource == nullptr && !IsPlanar() ? kMaxCallbackFrames : kMaxSliceFrames;
}

bool C_OutputUnit::RenderSlice(UInt8* pbyFrames, UInt32 dwFrames) {
  AudioTimeStamp stamp{};
  stamp.mSampleTime = m_dSampleTime;
  stamp.mFlags = kAudioTimeStampSampleTimeValid;
  NotifyAll(kAudioUnitRenderAction_PreRender, stamp, dwFrames);
  const OSStatus nStatus = Pull(stamp, dwFrames, PointBuffersAt(pbyFrames, dwFrames));
  if (nStatus == noErr && IsPlanar()) Interleave(pbyFrames, dwFrames);
  NotifyAll(kAudioUnitRenderAction_PostRender, stamp, dwFrames);
  m_dSampleTime += dwFrames;
  return m_pSource == nullptr || nStatus != kAudioFileUnspecifiedError;
}

void C_OutputUnit::NotifyAll(AudioUnitRenderActionFlags dwFlags, const AudioTimeStamp& stamp,
                             UInt32 dwFrames) {
  auto& buffers = *reinterpret_cast<AudioBufferList*>(m_bufferList.data());
  for (const AURenderCallbackStruct& notify : m_notifies) {
    AudioUnitRenderActionFlags dwCallFlags = dwFlags;
    notify.inputProc(notify.inputProcRefCon, &dwCallFlags, &stamp, 0, dwFrames, &buffers);
  }
}

OSStatus C_OutputUnit::Pull(const AudioTimeStamp& stamp, UInt32 dwFrames,
                            AudioBufferList& buffers) {
  if (m_pSource != nullptr) return m_pSource->Render(stamp, dwFrames, buffers);
  if (m_callback.inputProc == nullptr) return kAudioUnitErr_NoConnection;
  AudioUnitRenderActionFlags dwFlags = 0;
  return m_callback.inputProc(m_callback.inputProcRefCon, &dwFlags, &stamp, 0, dwFrames, &buffers);
}

bool C_OutputUnit::IsPlanar() const noexcept {
  return (m_format.mFormatFlags & kAudioFormatFlagIsNonInterleaved) != 0;
}

// Interleaved frames are rendered straight into the device's memory, planar frames into our own
// planes. Both are zero before the callback sees them, because a callback that has no data writes
// nothing.
AudioBufferList& C_OutputUnit::PointBuffersAt(UInt8* pbyFrames, UInt32 dwFrames) {
  auto& buffers = *reinterpret_cast<AudioBufferList*>(m_bufferList.data());
  AudioBuffer* pBuffer = buffers.mBuffers;
  if (!IsPlanar()) {
    buffers.mNumberBuffers = 1;
    *pBuffer = {m_format.mChannelsPerFrame, dwFrames * m_format.mBytesPerFrame, pbyFrames};
    return buffers;
  }
  buffers.mNumberBuffers = m_format.mChannelsPerFrame;
  for (UInt32 i = 0; i < buffers.mNumberBuffers; ++i) {
    m_planes[i].fill(0);
    pBuffer[i] = {1, dwFrames * static_cast<UInt32>(sizeof(float)), m_planes[i].data()};
  }
  return buffers;
}

void C_OutputUnit::Interleave(UInt8* pbyFrames, UInt32 dwFrames) const {
  auto* pTo = reinterpret_cast<float*>(pbyFrames);
  for (UInt32 n = 0; n < dwFrames; ++n) {
    for (UInt32 i = 0; i < m_format.mChannelsPerFrame; ++i) *pTo++ = m_planes[i][n];
  }
}

}  // namespace toolbox
