// SPDX-License-Identifier: Apache-2.0
#include "unit/AudioComponent.h"

#include <AudioToolbox/AudioUnit.h>

#include <array>
#include <mutex>

#include "object/CoreString.h"
#include "object/Guarded.h"
#include "object/HandleTable.h"
#include "output/DefaultDevice.h"
#include "unit/FilePlayerUnit.h"
#include "unit/OutputUnit.h"

// What an AudioComponent points to: an entry of the fixed table below.
struct OpaqueAudioComponent {
  AudioComponentDescription description;
  const char* pszName;
  std::shared_ptr<toolbox::I_Unit> (*pCreate)();
};

namespace toolbox {
namespace {

// A live unit and the component that it was made from.
struct S_Instance {
  AudioComponent component;
  std::shared_ptr<I_Unit> pUnit;
};

C_HandleTable<AudioUnit, S_Instance>& Instances() {
  // Never destroyed, so that late callers still find a table.
  static auto& table = *new C_HandleTable<AudioUnit, S_Instance>;
  return table;
}

struct S_OpenDevice {
  std::mutex lock;
  OpenDeviceFunction open;
};

S_OpenDevice& OpenDevice() {
  static auto& openDevice = *new S_OpenDevice;
  return openDevice;
}

std::shared_ptr<I_Unit> CreateOutput() {
  S_OpenDevice& device = OpenDevice();
  const std::lock_guard lock(device.lock);
  return std::make_shared<C_OutputUnit>(device.open ? device.open : &OpenDefaultDevice);
}

std::shared_ptr<I_Unit> CreateFilePlayer() { return std::make_shared<C_FilePlayerUnit>(); }

std::array<OpaqueAudioComponent, 2>& Components() {
  static std::array<OpaqueAudioComponent, 2> components = {
      OpaqueAudioComponent{{kAudioUnitType_Output, kAudioUnitSubType_DefaultOutput,
                            kAudioUnitManufacturer_Apple, 0, 0},
                           "Voxplay: Default Output",
                           &CreateOutput},
      OpaqueAudioComponent{{kAudioUnitType_Generator, kAudioUnitSubType_AudioFilePlayer,
                            kAudioUnitManufacturer_Apple, 0, 0},
                           "Voxplay: File Player",
                           &CreateFilePlayer}};
  return components;
}

bool IsComponent(AudioComponent component) {
  for (const OpaqueAudioComponent& known : Components()) {
    if (&known == component) return true;
  }
  return false;
}

bool Fits(OSType dwHas, OSType dwWanted) { return dwWanted == 0 || dwWanted == dwHas; }

bool Matches(const AudioComponentDescription& has, const AudioComponentDescription& wanted) {
  return Fits(has.componentType, wanted.componentType) &&
         Fits(has.componentSubType, wanted.componentSubType) &&
         Fits(has.componentManufacturer, wanted.componentManufacturer) &&
         (wanted.componentFlags & wanted.componentFlagsMask) == 0;
}

}  // namespace

std::shared_ptr<I_Unit> FindUnit(AudioUnit unit) {
  const auto pInstance = Instances().Find(unit);
  return pInstance != nullptr ? pInstance->pUnit : nullptr;
}

void SetOpenDevice(OpenDeviceFunction open) {
  S_OpenDevice& device = OpenDevice();
  const std::lock_guard lock(device.lock);
  device.open = std::move(open);
}

}  // namespace toolbox

extern "C" {

AudioComponent AudioComponentFindNext(AudioComponent component,
                                      const AudioComponentDescription* pDescription) {
  if (pDescription == nullptr) return nullptr;
  bool bBehind = component == nullptr;
  for (OpaqueAudioComponent& known : toolbox::Components()) {
    if (bBehind && toolbox::Matches(known.description, *pDescription)) return &known;
    if (&known == component) bBehind = true;
  }
  return nullptr;
}

OSStatus AudioComponentGetDescription(AudioComponent component,
                                      AudioComponentDescription* pDescription) {
  if (pDescription == nullptr || !toolbox::IsComponent(component)) return kAudio_ParamError;
  *pDescription = component->description;
  return noErr;
}

OSStatus AudioComponentCopyName(AudioComponent component, CFStringRef* pName) {
  if (pName == nullptr) return kAudio_ParamError;
  *pName = nullptr;
  if (!toolbox::IsComponent(component)) return kAudio_ParamError;
  return toolbox::Guarded([&] {
    *pName = new OpaqueCFString(component->pszName);
    return OSStatus{noErr};
  });
}

OSStatus AudioComponentInstanceNew(AudioComponent component, AudioComponentInstance* pInstance) {
  if (pInstance == nullptr) return kAudio_ParamError;
  *pInstance = nullptr;
  if (!toolbox::IsComponent(component)) return kAudio_ParamError;
  return toolbox::Guarded([&] {
    *pInstance = toolbox::Instances().Insert(std::make_shared<toolbox::S_Instance>(
        toolbox::S_Instance{component, component->pCreate()}));
    return OSStatus{noErr};
  });
}

OSStatus AudioComponentInstanceDispose(AudioComponentInstance instance) {
  const auto pInstance = toolbox::Instances().Remove(instance);
  return pInstance != nullptr ? pInstance->pUnit->Uninitialize() : OSStatus{kAudio_ParamError};
}

AudioComponent AudioComponentInstanceGetComponent(AudioComponentInstance instance) {
  const auto pInstance = toolbox::Instances().Find(instance);
  return pInstance != nullptr ? pInstance->component : nullptr;
}

}  // extern "C"
