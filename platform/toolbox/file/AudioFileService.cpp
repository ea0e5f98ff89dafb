// SPDX-License-Identifier: Apache-2.0
#include <AudioToolbox/AudioFile.h>

#include <cstring>
#include <span>

#include "file/AudioFile.h"
#include "object/FileUrl.h"
#include "object/Guarded.h"
#include "object/HandleTable.h"

namespace toolbox {
namespace {

// Never destroyed, so that late callers still find a table. The system closes the files that the
// program leaves open at exit.
C_HandleTable<AudioFileID, C_AudioFile>& Files() {
  static auto& table = *new C_HandleTable<AudioFileID, C_AudioFile>;
  return table;
}

// Points `bytes` at the value of a property, which lives as long as the file or lies in `qwCount`.
OSStatus FindProperty(const C_AudioFile& file, AudioFilePropertyID dwID, UInt64& qwCount,
                      std::span<const UInt8>& bytes) {
  switch (dwID) {
    case kAudioFilePropertyDataFormat:
      bytes = {reinterpret_cast<const UInt8*>(&file.Format()), sizeof file.Format()};
      return noErr;
    case kAudioFilePropertyAudioDataPacketCount:
      qwCount = file.PacketCount();
      bytes = {reinterpret_cast<const UInt8*>(&qwCount), sizeof qwCount};
      return noErr;
    case kAudioFilePropertyChannelLayout:
      bytes = file.ChannelLayout();
      return noErr;
    default:
      return kAudioFileUnsupportedPropertyError;
  }
}

void DescribePackets(AudioStreamPacketDescription* pDescriptions, UInt32 dwPackets,
                     UInt32 cbPacket) {
  for (UInt32 i = 0; i < dwPackets; ++i) pDescriptions[i] = {SInt64{i} * cbPacket, 0, cbPacket};
}

}  // namespace

std::shared_ptr<C_AudioFile> FindAudioFile(AudioFileID audioFile) {
  return Files().Find(audioFile);
}

}  // namespace toolbox

extern "C" {

OSStatus AudioFileOpenURL(CFURLRef fileRef, AudioFilePermissions permissions,
                          AudioFileTypeID /*dwFileTypeHint*/, AudioFileID* pAudioFile) {
  if (pAudioFile == nullptr) return kAudio_ParamError;
  *pAudioFile = nullptr;
  if (fileRef == nullptr) return kAudio_ParamError;
  if (permissions != kAudioFileReadPermission) return kAudioFilePermissionsError;
  return toolbox::Guarded([&] {
    std::shared_ptr<toolbox::C_AudioFile> pFile;
    const OSStatus nStatus = toolbox::C_AudioFile::Open(fileRef->path, pFile);
    if (nStatus == noErr) *pAudioFile = toolbox::Files().Insert(std::move(pFile));
    return nStatus;
  });
}

OSStatus AudioFileClose(AudioFileID audioFile) {
  if (audioFile == nullptr) return noErr;
  return toolbox::Files().Remove(audioFile) != nullptr ? OSStatus{noErr} : kAudioFileNotOpenError;
}

OSStatus AudioFileGetPropertyInfo(AudioFileID audioFile, AudioFilePropertyID dwPropertyID,
                                  UInt32* pdwDataSize, UInt32* pdwWritable) {
  const auto pFile = toolbox::FindAudioFile(audioFile);
  if (pFile == nullptr) return kAudioFileNotOpenError;
  UInt64 qwCount = 0;
  std::span<const UInt8> bytes;
  const OSStatus nStatus = toolbox::FindProperty(*pFile, dwPropertyID, qwCount, bytes);
  if (nStatus != noErr) return nStatus;
  if (pdwDataSize != nullptr) *pdwDataSize = static_cast<UInt32>(bytes.size());
  if (pdwWritable != nullptr) *pdwWritable = 0;
  return noErr;
}

OSStatus AudioFileGetProperty(AudioFileID audioFile, AudioFilePropertyID dwPropertyID,
                              UInt32* pdwDataSize, void* pPropertyData) {
  if (pdwDataSize == nullptr || pPropertyData == nullptr) return kAudio_ParamError;
  const auto pFile = toolbox::FindAudioFile(audioFile);
  if (pFile == nullptr) return kAudioFileNotOpenError;
  UInt64 qwCount = 0;
  std::span<const UInt8> bytes;
  const OSStatus nStatus = toolbox::FindProperty(*pFile, dwPropertyID, qwCount, bytes);
  if (nStatus != noErr) return nStatus;
  if (bytes.empty()) return kAudioFileUnsupportedPropertyError;
  if (*pdwDataSize < bytes.size()) return kAudioFileBadPropertySizeError;
  std::memcpy(pPropertyData, bytes.data(), bytes.size());
  *pdwDataSize = static_cast<UInt32>(bytes.size());
  return noErr;
}

OSStatus AudioFileReadPacketData(AudioFileID audioFile, Boolean /*bUseCache*/, UInt32* pdwNumBytes,
                                 AudioStreamPacketDescription* pPacketDescriptions,
                                 SInt64 nStartingPacket, UInt32* pdwNumPackets, void* pBuffer) {
  if (pdwNumBytes == nullptr || pdwNumPackets == nullptr || pBuffer == nullptr) {
    return kAudio_ParamError;
  }
  const auto pFile = toolbox::FindAudioFile(audioFile);
  if (pFile == nullptr) return kAudioFileNotOpenError;
  const OSStatus nStatus =
      pFile->ReadPackets(nStartingPacket, *pdwNumPackets, *pdwNumBytes, pBuffer);
  if (nStatus == noErr && pPacketDescriptions != nullptr) {
    toolbox::DescribePackets(pPacketDescriptions, *pdwNumPackets, pFile->Format().mBytesPerPacket);
  }
  return nStatus;
}

}  // extern "C"
