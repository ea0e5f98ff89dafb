// SPDX-License-Identifier: Apache-2.0
//
// Which items of a list have changed, by the numbers that the list gave them. The items of a list
// and the list share one of these, because an item may outlive its list.
#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace vcm {

class C_RangeChanges {
 public:
  void Note(std::size_t nNumber) noexcept {
    if (m_nNumbers == m_numbers.size()) NoteAny();
    if (!m_bAny) m_numbers[m_nNumbers++] = nNumber;
  }
  // There are changes, but nobody knows of what.
  void NoteAny() noexcept {
    m_bAny = true;
    m_nNumbers = 0;
  }
  void Clear() noexcept {
    m_bAny = false;
    m_nNumbers = 0;
  }

  [[nodiscard]] bool HasAny() const { return m_bAny; }
  // In no order; some perhaps several times.
  [[nodiscard]] std::span<const std::size_t> Numbers() const {
    return std::span(m_numbers).first(m_nNumbers);
  }

 private:
  bool m_bAny = false;
  std::size_t m_nNumbers = 0;
  // When callers change more items before they add one, the list is looked at as a whole.
  std::array<std::size_t, 64> m_numbers{};
};

}  // namespace vcm
