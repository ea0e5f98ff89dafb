// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioFile.h>

// Components, audio units and their properties. Two components exist: the default output and the
// audio file player.

using AudioComponent = struct OpaqueAudioComponent*;
using AudioComponentInstance = struct OpaqueAudioComponentInstance*;
using AudioUnit = AudioComponentInstance;

// A flags mask of 0 means that the flags do not matter; a zero field matches everything.
struct AudioComponentDescription {
  OSType componentType;
  OSType componentSubType;
  OSType componentManufacturer;
  UInt32 componentFlags;
  UInt32 componentFlagsMask;
};
static_assert(sizeof(AudioComponentDescription) == 20);

enum : OSType {
  kAudioUnitType_Output = toolbox::FourChars("auou"),
  kAudioUnitSubType_DefaultOutput = toolbox::FourChars("def "),
  kAudioUnitType_Generator = toolbox::FourChars("augn"),
  kAudioUnitSubType_AudioFilePlayer = toolbox::FourChars("afpl"),
  kAudioUnitManufacturer_Apple = toolbox::FourChars("appl"),
};

using AudioUnitScope = UInt32;
using AudioUnitElement = UInt32;
using AudioUnitPropertyID = UInt32;

enum : AudioUnitScope {
  kAudioUnitScope_Global = 0,
  kAudioUnitScope_Input = 1,
  kAudioUnitScope_Output = 2,
};

enum : AudioUnitPropertyID {
  kAudioUnitProperty_StreamFormat = 8,               // AudioStreamBasicDescription
  kAudioUnitProperty_AudioChannelLayout = 19,        // AudioChannelLayout
  kAudioUnitProperty_SetRenderCallback = 23,         // AURenderCallbackStruct
  kAudioUnitProperty_ScheduleStartTimeStamp = 3301,  // AudioTimeStamp
  kAudioUnitProperty_ScheduledFileIDs = 3310,        // AudioFileID[]
  kAudioUnitProperty_ScheduledFileRegion = 3311,     // ScheduledAudioFileRegion
  kAudioUnitProperty_ScheduledFilePrime = 3312,      // UInt32, frames; 0 is the default amount
};

enum : OSStatus {
  kAudioUnitErr_InvalidProperty = -10879,
  kAudioUnitErr_InvalidElement = -10877,
  kAudioUnitErr_NoConnection = -10876,
  kAudioUnitErr_FailedInitialization = -10875,
  kAudioUnitErr_TooManyFramesToProcess = -10874,
  kAudioUnitErr_InvalidFile = -10871,
  kAudioUnitErr_FormatNotSupported = -10868,
  kAudioUnitErr_Uninitialized = -10867,
  kAudioUnitErr_InvalidScope = -10866,
  kAudioUnitErr_PropertyNotWritable = -10865,
  kAudioUnitErr_CannotDoInCurrentContext = -10863,
  kAudioUnitErr_InvalidPropertyValue = -10851,
  kAudioUnitErr_PropertyNotInUse = -10850,
  kAudioUnitErr_Initialized = -10849,
};

using AudioUnitRenderActionFlags = UInt32;
enum : AudioUnitRenderActionFlags {
  kAudioUnitRenderAction_PreRender = 1U << 2,
  kAudioUnitRenderAction_PostRender = 1U << 3,
  kAudioUnitRenderAction_OutputIsSilence = 1U << 4,
};

// Fills `dwNumberFrames` frames or, as a notification, is called before and after the cycle that
// fills them. It runs on the render thread and must not call back into the toolbox except to read
// properties.
using AURenderCallback = OSStatus (*)(void* pRefCon, AudioUnitRenderActionFlags* pdwActionFlags,
                                      const AudioTimeStamp* pTimeStamp, UInt32 dwBusNumber,
                                      UInt32 dwNumberFrames, AudioBufferList* pData);

struct AURenderCallbackStruct {
  AURenderCallback inputProc;
  void* inputProcRefCon;
};

struct ScheduledAudioFileRegion;
using ScheduledAudioFileRegionCompletionProc = void (*)(void* pUserData,
                                                        ScheduledAudioFileRegion* pRegion,
                                                        OSStatus nResult);

// A stretch of a file to play. Its frames are frames of the file, counted at the file's own rate.
// The time stamp is relative to the start time of the unit.
struct ScheduledAudioFileRegion {
  AudioTimeStamp mTimeStamp;
  ScheduledAudioFileRegionCompletionProc mCompletionProc;
  void* mCompletionProcUserData;
  AudioFileID mAudioFile;
  UInt32 mLoopCount;
  SInt64 mStartFrame;
  UInt32 mFramesToPlay;
};

extern "C" {
// Returns the next matching component after `component`, or the first one when `component` is null;
// null when no other component matches.
AudioComponent AudioComponentFindNext(AudioComponent component,
                                      const AudioComponentDescription* pDescription);
OSStatus AudioComponentGetDescription(AudioComponent component,
                                      AudioComponentDescription* pDescription);
// Stores the component's name, "Manufacturer: Unit name", or null on failure. The caller releases
// the name with `CFRelease`.
OSStatus AudioComponentCopyName(AudioComponent component, CFStringRef* pName);
// Makes a new unit of the component. The caller disposes of it with
// `AudioComponentInstanceDispose`.
OSStatus AudioComponentInstanceNew(AudioComponent component, AudioComponentInstance* pInstance);
OSStatus AudioComponentInstanceDispose(AudioComponentInstance instance);
// The component that the unit was made from; null when there is no such unit.
AudioComponent AudioComponentInstanceGetComponent(AudioComponentInstance instance);

OSStatus AudioUnitInitialize(AudioUnit unit);
OSStatus AudioUnitUninitialize(AudioUnit unit);
OSStatus AudioUnitSetProperty(AudioUnit unit, AudioUnitPropertyID dwID, AudioUnitScope dwScope,
                              AudioUnitElement dwElement, const void* pData, UInt32 dwDataSize);
// On entry `*pdwDataSize` is the size of the buffer, on return the number of bytes written.
OSStatus AudioUnitGetProperty(AudioUnit unit, AudioUnitPropertyID dwID, AudioUnitScope dwScope,
                              AudioUnitElement dwElement, void* pData, UInt32* pdwDataSize);
// Renders one slice of a generator without a device, in the format of its output. The caller owns
// the buffers. The output unit returns kAudioUnitErr_InvalidElement.
OSStatus AudioUnitRender(AudioUnit unit, AudioUnitRenderActionFlags* pdwActionFlags,
                         const AudioTimeStamp* pTimeStamp, UInt32 dwOutputBus,
                         UInt32 dwNumberFrames, AudioBufferList* pData);

// Start and stop a default output unit that is used without a graph. Starting again after a stop
// continues where rendering stopped. Stopping returns once everything rendered has been played; it
// returns at once when the unit is not running.
OSStatus AudioOutputUnitStart(AudioUnit unit);
OSStatus AudioOutputUnitStop(AudioUnit unit);
}
