// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

#include "sound/SoundInput.h"

namespace tool {

// Another sound, of which Derived changes something: it has ReadAny, a template for all kinds of
// samples, and overrides what else is different.
template <typename Derived>
class C_WrappedSound : public I_SoundInput {
 public:
  [[nodiscard]] const S_SoundInfo& Info() const noexcept override { return m_sound->Info(); }
  [[nodiscard]] voxplay::NotesView Notes() const noexcept override { return m_sound->Notes(); }
  [[nodiscard]] std::uint64_t DamagedFrames() const noexcept override {
    return m_sound->DamagedFrames();
  }
  [[nodiscard]] bool IsCut() const noexcept override { return m_sound->IsCut(); }

  std::size_t Read(std::span<std::int16_t> samples) override { return Derive().ReadAny(samples); }
  std::size_t Read(std::span<std::int32_t> samples) override { return Derive().ReadAny(samples); }
  std::size_t Read(std::span<float> samples) override { return Derive().ReadAny(samples); }
  std::size_t Read(std::span<double> samples) override { return Derive().ReadAny(samples); }

 protected:
  explicit C_WrappedSound(C_SoundInputPtr sound) : m_sound(std::move(sound)) {}
  [[nodiscard]] I_SoundInput& Wrapped() const noexcept { return *m_sound; }

 private:
  Derived& Derive() noexcept { return static_cast<Derived&>(*this); }

  C_SoundInputPtr m_sound;
};

}  // namespace tool
