// SPDX-License-Identifier: Apache-2.0
//
// Opens any bytes with the toolbox's audio file service, as the player does: reads every property
// into buffers of every size, reads packets from everywhere, and decodes frames.
//
//   scripts/fuzz.sh 60 audio_file
//
// Input: 16 bytes that choose what is read, then a whole file.
#include <AudioToolbox/AudioFile.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "FuzzFile.h"
#include "FuzzInput.h"
#include "Require.h"
#include "file/AudioFile.h"
#include "file/StretchReader.h"

namespace {

constexpr std::size_t kMostFrames = 4096;
constexpr UInt32 kMostPacketBytes = 4096;

using C_UrlPtr = std::unique_ptr<const void, void (*)(const void*)>;

C_UrlPtr UrlOf(const char* pszPath) {
  return {
      CFURLCreateFromFileSystemRepresentation(nullptr, reinterpret_cast<const UInt8*>(pszPath),
                                              static_cast<CFIndex>(std::strlen(pszPath)), false),
      [](const void* pUrl) { CFRelease(pUrl); }};
}

// A property is copied whole, into a buffer that is large enough for it, and not otherwise.
std::vector<UInt8> CheckProperty(AudioFileID file, AudioFilePropertyID dwProperty) {
  UInt32 dwSize = 0;
  UInt32 dwWritable = 1;
  Require(AudioFileGetPropertyInfo(file, dwProperty, &dwSize, &dwWritable) == 0);
  Require(dwWritable == 0);
  std::vector<UInt8> value(dwSize);
  UInt32 dwCopied = dwSize;
  const OSStatus nStatus = AudioFileGetProperty(file, dwProperty, &dwCopied, value.data());
  Require(dwSize == 0 || (nStatus == 0 && dwCopied == dwSize));
  if (dwSize > 0) {
    UInt32 dwSmaller = dwSize - 1;
    Require(AudioFileGetProperty(file, dwProperty, &dwSmaller, value.data()) != 0);
  }
  return value;
}

void CheckFormat(const AudioStreamBasicDescription& format) {
  Require(format.mSampleRate > 0 && format.mChannelsPerFrame > 0);
  if (format.mFramesPerPacket > 0 && format.mBytesPerPacket > 0 &&
      format.mFormatID == kAudioFormatLinearPCM) {
    Require(format.mBytesPerFrame * format.mFramesPerPacket == format.mBytesPerPacket);
  }
}

// Stays inside the buffer and the file, wherever it starts.
void CheckPackets(AudioFileID file, SInt64 nStart, UInt32 dwWanted, UInt32 cbBuffer,
                  const AudioStreamBasicDescription& format, UInt64 qwPackets) {
  std::vector<UInt8> buffer(cbBuffer);
  UInt32 cbRead = cbBuffer;
  UInt32 dwPackets = dwWanted;
  const OSStatus nStatus =
      AudioFileReadPacketData(file, 0, &cbRead, nullptr, nStart, &dwPackets, buffer.data());
  if (nStatus != 0) return;
  Require(cbRead <= cbBuffer && dwPackets <= dwWanted);
  Require(nStart >= 0 && static_cast<UInt64>(nStart) + dwPackets <= qwPackets);
  Require(cbRead == dwPackets * format.mBytesPerPacket);
}

void CheckService(const C_FuzzFile& bytes, C_FuzzInput& input) {
  const C_UrlPtr url = UrlOf(bytes.Path());
  AudioFileID file = nullptr;
  const OSStatus nStatus =
      AudioFileOpenURL(static_cast<CFURLRef>(url.get()), kAudioFileReadPermission, 0, &file);
  Require((nStatus == 0) == (file != nullptr));
  if (file == nullptr) return;
  AudioStreamBasicDescription format{};
  const auto formatBytes = CheckProperty(file, kAudioFilePropertyDataFormat);
  Require(formatBytes.size() == sizeof format);
  std::memcpy(&format, formatBytes.data(), sizeof format);
  CheckFormat(format);
  UInt64 qwPackets = 0;
  const auto countBytes = CheckProperty(file, kAudioFilePropertyAudioDataPacketCount);
  Require(countBytes.size() == sizeof qwPackets);
  std::memcpy(&qwPackets, countBytes.data(), sizeof qwPackets);
  CheckProperty(file, kAudioFilePropertyChannelLayout);
  UInt32 dwSize = 4;
  Require(AudioFileGetProperty(file, toolbox::FourChars("none"), &dwSize, &dwSize) != 0);
  const UInt32 cbBuffer = input.U16() % kMostPacketBytes;
  const auto dwSmallCount = static_cast<std::uint32_t>(qwPackets < 0xFFFFFFFF ? qwPackets : 0);
  CheckPackets(file, input.Near(dwSmallCount), input.Near(cbBuffer), cbBuffer, format, qwPackets);
  CheckPackets(file, -1, 1, cbBuffer, format, qwPackets);
  Require(AudioFileClose(file) == 0);
  Require(AudioFileClose(file) != 0);
}

void CheckFrames(const C_FuzzFile& bytes, C_FuzzInput& input) {
  std::shared_ptr<toolbox::C_AudioFile> pFile;
  const OSStatus nStatus = toolbox::C_AudioFile::Open(bytes.Path(), pFile);
  Require((nStatus == 0) == (pFile != nullptr));
  if (pFile == nullptr) return;
  const std::size_t nChannels = pFile->Format().mChannelsPerFrame;
  const std::size_t nFrames = kMostFrames / nChannels;
  std::vector<float> samples(nFrames * nChannels);
  const std::size_t nRead = pFile->ReadFrames(0, nFrames, samples.data());
  Require(nRead <= nFrames);
  static_cast<void>(pFile->ReadFrames(input.U16(), nFrames, samples.data()));

  const double dRate = input.Flag() ? 48000.0 : pFile->Format().mSampleRate;
  toolbox::C_StretchReader stretch(pFile, input.U8(), input.U16() % kMostFrames, dRate);
  if (!stretch.IsUsable()) return;
  std::vector<float> converted(std::size_t{256} * stretch.Channels());
  for (int i = 0; i < 4; ++i) Require(stretch.Read(256, converted.data()) <= 256);
}

// What is no regular file is refused, each with a reason of its own.
void CheckRefusals() {
  std::shared_ptr<toolbox::C_AudioFile> pFile;
  Require(toolbox::C_AudioFile::Open("/none/none.wav", pFile) == kAudioFileFileNotFoundError);
  Require(toolbox::C_AudioFile::Open("/dev/null", pFile) == kAudioFileUnsupportedFileTypeError);
  Require(toolbox::C_AudioFile::Open("/", pFile) == kAudioFileUnsupportedFileTypeError);
  Require(toolbox::C_AudioFile::Open("/dev/null/x", pFile) == kAudioFileFileNotFoundError);
  const std::string strTooLong(5000, 'x');
  Require(toolbox::C_AudioFile::Open(strTooLong, pFile) == kAudioFileUnspecifiedError);
  Require(pFile == nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  constexpr std::size_t cbChoices = 16;
  if (cbData < cbChoices) {
    CheckRefusals();
    return 0;
  }
  C_FuzzInput input(pData, cbChoices);
  const C_FuzzFile bytes({pData + cbChoices, cbData - cbChoices});
  CheckService(bytes, input);
  CheckFrames(bytes, input);
  return 0;
}
