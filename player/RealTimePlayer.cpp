// SPDX-License-Identifier: Apache-2.0
#include "RealTimePlayer.h"

#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "BareKestrel.h"
#include "DefaultOutput.h"
#include "KeptForProcess.h"
#include "PcmQueue.h"
#include "WavFileFormat.h"

namespace {

constexpr int kEnded = 0;
constexpr int kNoOutput = 1;

constexpr useconds_t kHeadStartMicroseconds = 500000;
constexpr useconds_t kStepMicroseconds = 10000;
constexpr useconds_t kTailMicroseconds = 500000;
constexpr std::size_t kDiscardedAtOnce = 65536;

constexpr AudioStreamBasicDescription kSpeech = {
    16000.0,
    kAudioFormatLinearPCM,
    kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsPacked,
    2,
    1,
    2,
    1,
    16,
    0};

// Kept: the unit is never disposed of, neither when its set-up fails nor when playback has ended;
// its device goes with the process. Pinned by FailingSetUp_ReturnsOneAndDisposesOfNothing.
AudioUnit NewOutput() {
  AudioUnit unit = nullptr;
  AudioComponent component = AudioComponentFindNext(nullptr, &kDefaultOutput);
  if (component == nullptr || AudioComponentInstanceNew(component, &unit) != noErr) return nullptr;
  KeepForProcess(unit, "output unit of real-time mode: its device goes with the process");
  return unit;
}

AudioUnit SetUpOutput(void* pPlayer) {
  const AudioUnit unit = NewOutput();
  if (unit == nullptr) return nullptr;
  const AURenderCallbackStruct callback = {RenderPcm, pPlayer};
  const bool bReady =
      AudioUnitSetProperty(unit, kAudioUnitProperty_StreamFormat, kAudioUnitScope_Input, 0,
                           &kSpeech, sizeof kSpeech) == noErr &&
      AudioUnitSetProperty(unit, kAudioUnitProperty_SetRenderCallback, kAudioUnitScope_Input, 0,
                           &callback, sizeof callback) == noErr &&
      AudioUnitInitialize(unit) == noErr;
  return bReady ? unit : nullptr;
}

// True when the library knows the file as it stands.
bool Probe(C_WavFileFormat& format, const char* pszFileName) {
  I_WavFile* pIWavFile = nullptr;
  try {
    pIWavFile = format.CreateWavFile(pszFileName, false, true, nullptr, nullptr);
  } catch (...) {
    return false;
  }
  if (pIWavFile == nullptr) return false;
  // Kept: the probe stays open until the end of the process; it holds no samples. Pinned by
  // RealTimeMode_KeepsProbeUnitThreadAndDecodedFile.
  KeepForProcess(pIWavFile, "probe of real-time mode: holds no samples");
  return true;
}

// False when the path does not fit; the field is empty then.
bool SetPath(S_RealTimeDecoder* pDecoder, const char* pszPath) {
  std::memset(pDecoder->szPath, 0, sizeof pDecoder->szPath);
  const std::size_t nLength = std::strlen(pszPath);
  if (nLength >= sizeof pDecoder->szPath) return false;
  std::memcpy(pDecoder->szPath, pszPath, nLength);
  return true;
}

// Kept: a copy made for a bare stream stays in the temporary directory, because the decoder may
// still be reading it when the player is gone. Pinned by RealTimeModeOfABareStream_LeavesItsCopy.
void ChooseFile(S_RealTimeDecoder* pDecoder, C_WavFileFormat& format, const char* pszFileName) {
  const bool bKnown = Probe(format, pszFileName);
  const bool bFits = SetPath(pDecoder, pszFileName);
  if (!bFits || bKnown) return;
  SetPath(pDecoder, CopyAsKestrel(format, pszFileName, /*bLoadData=*/false).Keep().c_str());
}

void Decode(C_WavFileFormat& format, const S_RealTimeDecoder& decoder) {
  try {
    // Kept: the decoded file is not released, so that the thread ends as soon as the last byte is
    // in the queue. Pinned by RealTimeMode_KeepsProbeUnitThreadAndDecodedFile.
    if (I_WavFile* pIWavFile =
            format.CreateWavFile(decoder.szPath, true, true, nullptr, OnDecodedData)) {
      KeepForProcess(pIWavFile, "decoded file of real-time mode: its thread ends at once");
    }
  } catch (...) {
    // Decoding ends with what the queue holds; there is nobody to report the failure to.
    return;
  }
}

void* DecodeThread(void* pArgument) {
  auto* pDecoder = static_cast<S_RealTimeDecoder*>(pArgument);
  C_WavFileFormat format;
  Decode(format, *pDecoder);
  pDecoder->byFinished.store(1, std::memory_order_release);
  return nullptr;
}

// Kept: the thread is never joined. Everything that is needed from it is in the queue when it
// reports that it has finished, and nobody waits for the thread itself to end. Pinned by
// RealTimeMode_KeepsProbeUnitThreadAndDecodedFile.
void StartDecoder(S_RealTimeDecoder* pDecoder) {
  pDecoder->byFinished.store(0, std::memory_order_release);
  if (pthread_create(&pDecoder->thread, nullptr, DecodeThread, pDecoder) != 0) {
    pDecoder->byFinished.store(1, std::memory_order_release);
    return;
  }
  KeepForProcess(pDecoder->thread,
                 "decoder thread of real-time mode: ends by itself, never joined");
}

// The finished flag is read before the count, so that the count includes everything that the
// decoder wrote.
bool IsDone(const S_RealTimeDecoder& decoder) {
  return decoder.byFinished.load(std::memory_order_acquire) != 0 && g_pcmQueue.GetCount() == 0;
}

// Takes what the queue holds, up to a limit, and plays nothing.
void Discard() {
  std::array<std::uint8_t, kDiscardedAtOnce> piece;
  g_pcmQueue.Read(piece.data(), static_cast<std::uint32_t>(piece.size()));
}

int Play(void* pPlayer, S_RealTimeDecoder* pDecoder, const char* pszFileName) {
  const AudioUnit unit = SetUpOutput(pPlayer);
  if (unit == nullptr) return kNoOutput;
  C_WavFileFormat format;
  ChooseFile(pDecoder, format, pszFileName != nullptr ? pszFileName : "");
  StartDecoder(pDecoder);
  usleep(kHeadStartMicroseconds);
  const bool bStarted = AudioOutputUnitStart(unit) == noErr;
  do {
    usleep(kStepMicroseconds);
    // An output that did not start takes nothing, and the queue would never be empty.
    if (!bStarted) Discard();
  } while (!IsDone(*pDecoder));
  usleep(kTailMicroseconds);
  AudioOutputUnitStop(unit);
  AudioUnitUninitialize(unit);
  return kEnded;
}

}  // namespace

int PlayRealTime(void* pPlayer, S_RealTimeDecoder* pDecoder, const char* pszFileName) {
  if (!g_pcmQueue.IsUsable()) return kNoOutput;
  try {
    return Play(pPlayer, pDecoder, pszFileName);
  } catch (...) {
    return kNoOutput;
  }
}

void OnDecodedData(void* pData, unsigned int dwLength) { g_pcmQueue.Write(pData, dwLength); }

// Kept: frames that the queue cannot fill are left as the platform passed them in, which is
// silence. Pinned by RenderPcm_LeavesWhatTheQueueCannotFill.
OSStatus RenderPcm(void* /*pRefCon*/, AudioUnitRenderActionFlags* /*pdwActionFlags*/,
                   const AudioTimeStamp* /*pTimeStamp*/, UInt32 /*dwBusNumber*/,
                   UInt32 /*dwNumberFrames*/, AudioBufferList* pData) {
  AudioBuffer& buffer = pData->mBuffers[0];
  g_pcmQueue.Read(buffer.mData, buffer.mDataByteSize);
  return noErr;
}
