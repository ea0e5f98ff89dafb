// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioToolbox.h>

#include <cstdio>

#include "CAComponent.h"
#include "CAStreamBasicDescription.h"

// An audio unit and the graph node that it belongs to. Owns neither of them; the graph does. Every
// operation returns the toolbox's status, 0 on success. On an empty wrapper the toolbox rejects the
// null unit.
class CAAudioUnit {
 public:
  CAAudioUnit() noexcept = default;
  CAAudioUnit(AUNode node, AudioUnit unit) noexcept : m_node(node), m_unit(unit) {}

  [[nodiscard]] bool IsValid() const noexcept { return m_unit != nullptr; }
  [[nodiscard]] AUNode GetAUNode() const noexcept { return m_node; }
  [[nodiscard]] AudioUnit AU() const noexcept { return m_unit; }

  // The component that the unit was made from; an empty component for an empty wrapper.
  [[nodiscard]] CAComponent Comp() const noexcept {
    return IsValid() ? CAComponent(AudioComponentInstanceGetComponent(m_unit)) : CAComponent();
  }
  // Prints for debugging: one line with "AudioUnit:" and the unit's address and, when there is a
  // unit, a second line with its node and its component. The stream is open.
  void Print(std::FILE* pStream) const;

  // On entry `*pdwDataSize` is the size of the buffer, on return the number of bytes written.
  OSStatus GetProperty(AudioUnitPropertyID dwID, AudioUnitScope dwScope, AudioUnitElement dwElement,
                       void* pData, UInt32* pdwDataSize) const;
  OSStatus SetProperty(AudioUnitPropertyID dwID, AudioUnitScope dwScope, AudioUnitElement dwElement,
                       const void* pData, UInt32 dwDataSize) const;
  OSStatus GetFormat(AudioUnitScope dwScope, AudioUnitElement dwElement,
                     AudioStreamBasicDescription& format) const;
  OSStatus SetFormat(AudioUnitScope dwScope, AudioUnitElement dwElement,
                     const AudioStreamBasicDescription& format) const;
  // Both read the stream format, change one thing in it and write it back.
  OSStatus SetNumberChannels(AudioUnitScope dwScope, AudioUnitElement dwElement,
                             UInt32 dwChannels) const;
  OSStatus SetSampleRate(AudioUnitScope dwScope, AudioUnitElement dwElement, Float64 dRate) const;

 private:
  AUNode m_node = 0;
  AudioUnit m_unit = nullptr;
};
