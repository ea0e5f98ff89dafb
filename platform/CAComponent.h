// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioToolbox.h>

#include <cstdio>
#include <string>

// The two halves of a component's name, in UTF-8. A half is empty when it is not known.
struct S_ComponentNames {
  std::string strManufacturer;
  std::string strUnit;
};

// A component together with a description: either the description that it was looked up by, or its
// own. Owns nothing.
class CAComponent {
 public:
  CAComponent() noexcept = default;
  // The first component that matches; `IsValid` is false when there is none.
  explicit CAComponent(const AudioComponentDescription& desc) noexcept
      : m_component(AudioComponentFindNext(nullptr, &desc)), m_desc(desc) {}
  CAComponent(OSType dwType, OSType dwSubType, OSType dwManufacturer) noexcept
      : CAComponent(AudioComponentDescription{dwType, dwSubType, dwManufacturer, 0, 0}) {}
  // A component and the toolbox's description of it. The description is all zero for a null
  // component, or when the toolbox has none.
  explicit CAComponent(AudioComponent component) noexcept;

  [[nodiscard]] bool IsValid() const noexcept { return m_component != nullptr; }
  [[nodiscard]] AudioComponent Comp() const noexcept { return m_component; }
  [[nodiscard]] const AudioComponentDescription& Desc() const noexcept { return m_desc; }

  // The toolbox names a component "Manufacturer: Unit name". A name without ": " is that of a unit
  // whose manufacturer is not known.
  [[nodiscard]] S_ComponentNames Names() const;
  // Prints one line for debugging: "CAComponent: " and the component's address, ", Manu:" and ",
  // Name:" with the names that are known, then ", " and the description's line. The stream is open.
  void Print(std::FILE* pStream) const;

 private:
  AudioComponent m_component = nullptr;
  AudioComponentDescription m_desc{};
};

// Prints one line for debugging with the three codes, the flags and their mask:
//   AudioComponentDescription: 'auou' - 'def ' - 'appl', 0x0, 0x0
// The stream is open.
void PrintComponentDescription(const AudioComponentDescription& desc, std::FILE* pStream);
