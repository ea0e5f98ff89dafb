// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioToolbox.h>

// A component together with the description that it was looked up by. Owns nothing.
class CAComponent {
 public:
  CAComponent() noexcept = default;
  // The first component that matches; `IsValid` is false when there is none.
  explicit CAComponent(const AudioComponentDescription& desc) noexcept
      : m_component(AudioComponentFindNext(nullptr, &desc)), m_desc(desc) {}
  CAComponent(OSType dwType, OSType dwSubType, OSType dwManufacturer) noexcept
      : CAComponent(AudioComponentDescription{dwType, dwSubType, dwManufacturer, 0, 0}) {}

  [[nodiscard]] bool IsValid() const noexcept { return m_component != nullptr; }
  [[nodiscard]] AudioComponent Comp() const noexcept { return m_component; }
  [[nodiscard]] const AudioComponentDescription& Desc() const noexcept { return m_desc; }

 private:
  AudioComponent m_component = nullptr;
  AudioComponentDescription m_desc{};
};
