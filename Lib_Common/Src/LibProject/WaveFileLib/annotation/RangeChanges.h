// SPDX-License-Identifier: Apache-2.0
//
// Which items of a list have changed, by the numbers that the list gave them. The items of a list
// and the list share one of these, because an item may outlive its list.
#pragma once

#include <cstddef>
#include <exception>
#include <vector>

namespace vcm {

class C_RangeChanges {
 public:
  void Note(std::size_t nNumber) noexcept {
    try {
      if (m_numbers.size() == kMostNumbers) NoteAny();
      if (!m_bAny) m_numbers.push_back(nNumber);
    } catch (const std::exception&) {
      NoteAny();
    }
  }
  // There are changes, but nobody knows of what.
  void NoteAny() noexcept {
    m_bAny = true;
    m_numbers.clear();
  }
  void Clear() noexcept {
    m_bAny = false;
    m_numbers.clear();
  }

  [[nodiscard]] bool HasAny() const { return m_bAny; }
  // Ascending or not; some perhaps several times.
  [[nodiscard]] const std::vector<std::size_t>& Numbers() const { return m_numbers; }

 private:
  static constexpr std::size_t kMostNumbers = 4096;

  bool m_bAny = false;
  std::vector<std::size_t> m_numbers;
};

}  // namespace vcm
