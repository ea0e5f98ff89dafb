// SPDX-License-Identifier: Apache-2.0
//
// The members of a row that came from a file, which may be of any kind and say anything. All
// functions throw C_BadRow.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>

#include "base/JsonText.h"

namespace tool {

class C_RowValues {
 public:
  // The row and the place must outlive the object. The place begins messages: "row 3".
  C_RowValues(const C_Json& row, const std::string& strPlace, std::uint32_t dwRate);

  // Not there, null or an empty text.
  [[nodiscard]] bool IsEmpty(const char* pszKey) const;
  // 0 when it is empty.
  [[nodiscard]] std::uint64_t Number(const char* pszKey, std::uint64_t qwMost) const;
  template <typename T>
  [[nodiscard]] T Number(const char* pszKey) const {
    static_assert(std::is_unsigned_v<T>);
    return static_cast<T>(Number(pszKey, std::numeric_limits<T>::max()));
  }
  // A frame or a number of frames, of this member or of one with a time. Where both are there, they
  // have to say the same, because nobody can tell which of them is meant.
  [[nodiscard]] std::uint64_t Frames(const char* pszKey, const char* pszTimeKey,
                                     std::uint64_t qwMost) const;
  // A text that "hex" says nothing of.
  [[nodiscard]] std::string Word(const char* pszKey) const;
  // The characters of the member. Where these are what the bytes of "hex" look like, those bytes:
  // the text is then as it was written, and has not been edited since.
  [[nodiscard]] std::string Text(const char* pszKey) const;
  // The usual identifier when it is empty.
  [[nodiscard]] std::array<char, 4> ID(const char* pszKey, const std::array<char, 4>& usual) const;

  [[noreturn]] void Refuse(const std::string& strWhy) const;

 private:
  [[nodiscard]] std::uint64_t FramesOfTime(const char* pszTimeKey, std::uint64_t qwMost) const;

  const C_Json& m_row;
  const std::string& m_strPlace;
  std::uint32_t m_dwRate;
};

}  // namespace tool
