// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/CoreAudioTypes.h>

// The audio file service: opens a sound file and answers what it holds. A packet is the smallest
// stretch that decodes on its own: one frame of PCM and G.711, one block of an ADPCM WAV file, one
// MPEG frame.

using AudioFileID = struct OpaqueAudioFileID*;
using AudioFileTypeID = UInt32;
using AudioFilePropertyID = UInt32;

enum AudioFilePermissions : SInt8 {
  kAudioFileReadPermission = 1,
  kAudioFileWritePermission = 2,
  kAudioFileReadWritePermission = 3,
};

enum : AudioFilePropertyID {
  // AudioStreamBasicDescription of the stored data.
  kAudioFilePropertyDataFormat = toolbox::FourChars("dfmt"),
  // UInt64.
  kAudioFilePropertyAudioDataPacketCount = toolbox::FourChars("pcnt"),
  // AudioChannelLayout; its size is 0 for a file that carries none.
  kAudioFilePropertyChannelLayout = toolbox::FourChars("cmap"),
};

enum : OSStatus {
  kAudioFileUnspecifiedError = toolbox::FourCharStatus("wht?"),
  kAudioFileUnsupportedFileTypeError = toolbox::FourCharStatus("typ?"),
  kAudioFileUnsupportedDataFormatError = toolbox::FourCharStatus("fmt?"),
  kAudioFileUnsupportedPropertyError = toolbox::FourCharStatus("pty?"),
  kAudioFileBadPropertySizeError = toolbox::FourCharStatus("!siz"),
  kAudioFilePermissionsError = toolbox::FourCharStatus("prm?"),
  kAudioFileInvalidPacketOffsetError = toolbox::FourCharStatus("pck?"),
  kAudioFileInvalidFileError = toolbox::FourCharStatus("dta?"),
  kAudioFileOperationNotSupportedError = toolbox::FourCharStatus("op??"),
  kAudioFileNotOpenError = -38,
  kAudioFileEndOfFileError = -39,
  kAudioFilePositionError = -40,
  kAudioFileFileNotFoundError = -43,
};

extern "C" {
// Opens the file for reading and stores its identifier, null on failure. Only the read permission
// is supported; the type hint is ignored, the content decides.
OSStatus AudioFileOpenURL(CFURLRef fileRef, AudioFilePermissions permissions,
                          AudioFileTypeID dwFileTypeHint, AudioFileID* pAudioFile);
// Closes the file. A null identifier is a file that was never opened: nothing to do, success.
OSStatus AudioFileClose(AudioFileID audioFile);
// Size of a property in bytes and whether it can be set (never). Either pointer may be null.
OSStatus AudioFileGetPropertyInfo(AudioFileID audioFile, AudioFilePropertyID dwPropertyID,
                                  UInt32* pdwDataSize, UInt32* pdwWritable);
// Copies a property. `*pdwDataSize` is the room on entry and the bytes written on return.
OSStatus AudioFileGetProperty(AudioFileID audioFile, AudioFilePropertyID dwPropertyID,
                              UInt32* pdwDataSize, void* pPropertyData);
// Copies whole stored packets of PCM and G.711 files, as they lie in the file. `*pdwNumBytes` is
// the room and `*pdwNumPackets` the wish on entry; both are what was copied on return. End of file
// with nothing copied is kAudioFileEndOfFileError; files of other formats give
// kAudioFileOperationNotSupportedError. The cache flag is ignored, packet descriptions are filled
// when asked for.
OSStatus AudioFileReadPacketData(AudioFileID audioFile, Boolean bUseCache, UInt32* pdwNumBytes,
                                 AudioStreamPacketDescription* pPacketDescriptions,
                                 SInt64 nStartingPacket, UInt32* pdwNumPackets, void* pBuffer);
}
