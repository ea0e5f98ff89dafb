// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/BaseTypes.h>

// Records that describe streams, buffers, instants and channel layouts. Layouts are those of the
// published interface; the sizes are pinned below because callers pass them as property sizes.

using AudioFormatID = UInt32;
using AudioFormatFlags = UInt32;

// How one stream of audio is laid out. For non-interleaved streams the packet and frame sizes are
// those of one channel.
struct AudioStreamBasicDescription {
  Float64 mSampleRate;
  AudioFormatID mFormatID;
  AudioFormatFlags mFormatFlags;
  UInt32 mBytesPerPacket;
  UInt32 mFramesPerPacket;
  UInt32 mBytesPerFrame;
  UInt32 mChannelsPerFrame;
  UInt32 mBitsPerChannel;
  UInt32 mReserved;
};
static_assert(sizeof(AudioStreamBasicDescription) == 40);

struct AudioStreamPacketDescription {
  SInt64 mStartOffset;
  UInt32 mVariableFramesInPacket;
  UInt32 mDataByteSize;
};
static_assert(sizeof(AudioStreamPacketDescription) == 16);

enum : AudioFormatID {
  kAudioFormatLinearPCM = toolbox::FourChars("lpcm"),
  kAudioFormatAppleLossless = toolbox::FourChars("alac"),
  kAudioFormatULaw = toolbox::FourChars("ulaw"),
  kAudioFormatALaw = toolbox::FourChars("alaw"),
  kAudioFormatMPEGLayer1 = toolbox::FourChars(".mp1"),
  kAudioFormatMPEGLayer2 = toolbox::FourChars(".mp2"),
  kAudioFormatMPEGLayer3 = toolbox::FourChars(".mp3"),
  kAudioFormatFLAC = toolbox::FourChars("flac"),
  // The code of a WAV codec is "ms" followed by the 16-bit tag of its format chunk.
  kAudioFormatDVIIntelIMA = 0x6D730011,
  kAudioFormatMicrosoftGSM = 0x6D730031,
};

enum : AudioFormatFlags {
  kAudioFormatFlagIsFloat = 1,
  kAudioFormatFlagIsBigEndian = 2,
  kAudioFormatFlagIsSignedInteger = 4,
  kAudioFormatFlagIsPacked = 8,
  kAudioFormatFlagIsAlignedHigh = 16,
  kAudioFormatFlagIsNonInterleaved = 32,
  kAudioFormatFlagIsNonMixable = 64,
  kLinearPCMFormatFlagIsFloat = kAudioFormatFlagIsFloat,
  kLinearPCMFormatFlagIsBigEndian = kAudioFormatFlagIsBigEndian,
  kLinearPCMFormatFlagIsSignedInteger = kAudioFormatFlagIsSignedInteger,
  kLinearPCMFormatFlagIsPacked = kAudioFormatFlagIsPacked,
  kLinearPCMFormatFlagIsNonInterleaved = kAudioFormatFlagIsNonInterleaved,
  // Six bits hold the number of fraction bits in fixed-point samples; 0 for integers.
  kLinearPCMFormatFlagsSampleFractionShift = 7,
  kLinearPCMFormatFlagsSampleFractionMask = 0x3F << kLinearPCMFormatFlagsSampleFractionShift,
};

struct AudioBuffer {
  UInt32 mNumberChannels;
  UInt32 mDataByteSize;
  void* mData;
};

// The list holds `mNumberBuffers` buffers; the array is declared with one because its length
// varies.
struct AudioBufferList {
  UInt32 mNumberBuffers;
  AudioBuffer mBuffers[1];
};

struct SMPTETime {
  SInt16 mSubframes;
  SInt16 mSubframeDivisor;
  UInt32 mCounter;
  UInt32 mType;
  UInt32 mFlags;
  SInt16 mHours;
  SInt16 mMinutes;
  SInt16 mSeconds;
  SInt16 mFrames;
};
static_assert(sizeof(SMPTETime) == 24);

using AudioTimeStampFlags = UInt32;
enum : AudioTimeStampFlags {
  kAudioTimeStampNothingValid = 0,
  kAudioTimeStampSampleTimeValid = 1,
  kAudioTimeStampHostTimeValid = 2,
  kAudioTimeStampRateScalarValid = 4,
  kAudioTimeStampWordClockTimeValid = 8,
  kAudioTimeStampSMPTETimeValid = 16,
};

// One instant in several clocks; `mFlags` says which of them hold a value.
struct AudioTimeStamp {
  Float64 mSampleTime;
  UInt64 mHostTime;
  Float64 mRateScalar;
  UInt64 mWordClockTime;
  SMPTETime mSMPTETime;
  AudioTimeStampFlags mFlags;
  UInt32 mReserved;
};
static_assert(sizeof(AudioTimeStamp) == 64);

using AudioChannelLabel = UInt32;
using AudioChannelLayoutTag = UInt32;
using AudioChannelBitmap = UInt32;
using AudioChannelFlags = UInt32;

struct AudioChannelDescription {
  AudioChannelLabel mChannelLabel;
  AudioChannelFlags mChannelFlags;
  Float32 mCoordinates[3];
};
static_assert(sizeof(AudioChannelDescription) == 20);

// The layout holds `mNumberChannelDescriptions` descriptions; the array is declared with one
// because its length varies.
struct AudioChannelLayout {
  AudioChannelLayoutTag mChannelLayoutTag;
  AudioChannelBitmap mChannelBitmap;
  UInt32 mNumberChannelDescriptions;
  AudioChannelDescription mChannelDescriptions[1];
};
static_assert(sizeof(AudioChannelLayout) == 32);

// The low 16 bits of a tag hold its number of channels.
enum : AudioChannelLayoutTag {
  kAudioChannelLayoutTag_UseChannelDescriptions = 0,
  kAudioChannelLayoutTag_UseChannelBitmap = 1U << 16,
  kAudioChannelLayoutTag_Mono = (100U << 16) | 1,
  kAudioChannelLayoutTag_Stereo = (101U << 16) | 2,
  kAudioChannelLayoutTag_DiscreteInOrder = 147U << 16,
};
