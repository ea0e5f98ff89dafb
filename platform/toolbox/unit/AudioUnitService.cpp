// SPDX-License-Identifier: Apache-2.0
#include <AudioToolbox/AudioUnit.h>

#include "object/Guarded.h"
#include "unit/OutputUnit.h"
#include "unit/Unit.h"

using toolbox::Guarded;

extern "C" {

OSStatus AudioUnitInitialize(AudioUnit unit) {
  const auto pUnit = toolbox::FindUnit(unit);
  return pUnit != nullptr ? Guarded([&] { return pUnit->Initialize(); })
                          : OSStatus{kAudio_ParamError};
}

OSStatus AudioUnitUninitialize(AudioUnit unit) {
  const auto pUnit = toolbox::FindUnit(unit);
  return pUnit != nullptr ? Guarded([&] { return pUnit->Uninitialize(); })
                          : OSStatus{kAudio_ParamError};
}

OSStatus AudioUnitSetProperty(AudioUnit unit, AudioUnitPropertyID dwID, AudioUnitScope dwScope,
                              AudioUnitElement dwElement, const void* pData, UInt32 dwDataSize) {
  const auto pUnit = toolbox::FindUnit(unit);
  if (pUnit == nullptr || pData == nullptr) return kAudio_ParamError;
  return Guarded([&] { return pUnit->SetProperty({dwID, dwScope, dwElement}, pData, dwDataSize); });
}

OSStatus AudioUnitGetProperty(AudioUnit unit, AudioUnitPropertyID dwID, AudioUnitScope dwScope,
                              AudioUnitElement dwElement, void* pData, UInt32* pdwDataSize) {
  const auto pUnit = toolbox::FindUnit(unit);
  if (pUnit == nullptr || pData == nullptr || pdwDataSize == nullptr) return kAudio_ParamError;
  return Guarded([&] {
    return pUnit->GetProperty({dwID, dwScope, dwElement}, pData, *pdwDataSize);
  });
}

OSStatus AudioUnitRender(AudioUnit unit, AudioUnitRenderActionFlags* /*pdwActionFlags*/,
                         const AudioTimeStamp* pTimeStamp, UInt32 dwOutputBus,
                         UInt32 dwNumberFrames, AudioBufferList* pData) {
  const auto pUnit = toolbox::FindUnit(unit);
  if (pUnit == nullptr || pTimeStamp == nullptr || pData == nullptr) return kAudio_ParamError;
  if (dwOutputBus != 0) return kAudioUnitErr_InvalidElement;
  return Guarded([&] { return pUnit->Render(*pTimeStamp, dwNumberFrames, *pData); });
}

OSStatus AudioOutputUnitStart(AudioUnit unit) {
  const auto pOutput = std::dynamic_pointer_cast<toolbox::C_OutputUnit>(toolbox::FindUnit(unit));
  return pOutput != nullptr ? Guarded([&] { return pOutput->Start(); })
                            : OSStatus{kAudio_ParamError};
}

OSStatus AudioOutputUnitStop(AudioUnit unit) {
  const auto pOutput = std::dynamic_pointer_cast<toolbox::C_OutputUnit>(toolbox::FindUnit(unit));
  return pOutput != nullptr ? Guarded([&] { return pOutput->Stop(); })
                            : OSStatus{kAudio_ParamError};
}

}  // extern "C"
