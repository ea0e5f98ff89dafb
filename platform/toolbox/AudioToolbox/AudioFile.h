// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/CoreAudioTypes.h>

// The audio file service: opens a sound file and reports what it holds. A packet is the smallest
// stretch that decodes on its own: one frame of PCM or G.711, one block of a block codec in a WAV
// file, one MPEG frame. In every other format each decoded frame counts as a packet.

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
// Opens the file for reading and stores its identifier, or null on failure. Only the read
// permission is supported. The type hint is ignored: the content decides.
OSStatus AudioFileOpenURL(CFURLRef fileRef, AudioFilePermissions permissions,
                          AudioFileTypeID dwFileTypeHint, AudioFileID* pAudioFile);
// Closes the file. A null identifier stands for a file that was never opened; closing it does
// nothing and succeeds.
OSStatus AudioFileClose(AudioFileID audioFile);
// Returns the size of a property in bytes and whether it can be set (never). Either pointer may be
// null.
OSStatus AudioFileGetPropertyInfo(AudioFileID audioFile, AudioFilePropertyID dwPropertyID,
                                  UInt32* pdwDataSize, UInt32* pdwWritable);
// Copies a property. On entry `*pdwDataSize` is the size of the buffer, on return the number of
// bytes written.
OSStatus AudioFileGetProperty(AudioFileID audioFile, AudioFilePropertyID dwPropertyID,
                              UInt32* pdwDataSize, void* pPropertyData);
// Copies whole stored packets of PCM and G.711 files, exactly as they lie in the file. On entry
// `*pdwNumBytes` is the size of the buffer and `*pdwNumPackets` the number of packets wanted; on
// return both say what was copied. Starting at or after the end of the file gives
// kAudioFileEndOfFileError; files of other formats give kAudioFileOperationNotSupportedError, and
// bytes that cannot be read kAudioFileUnspecifiedError. The cache flag is ignored. Packet
// descriptions are filled in when the pointer to them is not null.
OSStatus AudioFileReadPacketData(AudioFileID audioFile, Boolean bUseCache, UInt32* pdwNumBytes,
                                 AudioStreamPacketDescription* pPacketDescriptions,
                                 SInt64 nStartingPacket, UInt32* pdwNumPackets, void* pBuffer);
}
