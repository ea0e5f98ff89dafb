// SPDX-License-Identifier: Apache-2.0
//
// What the rooms behind voxplay.h throw when they cannot do what they are asked. The functions of
// the C interface turn it into a status and a sentence (calls/Guard.h); nothing else catches it,
// and nothing leaves the library.
#pragma once

#include <exception>
#include <string>
#include <utility>

#include "voxplay.h"

namespace api {

class C_Failure : public std::exception {
 public:
  // strText is "place: reason", without the name of the file: "SP header: identifier 7 is not a
  // codec of this library".
  C_Failure(voxplay_status eStatus, std::string strText)
      : m_eStatus(eStatus), m_strText(std::move(strText)) {}

  [[nodiscard]] voxplay_status Status() const noexcept { return m_eStatus; }
  [[nodiscard]] const std::string& Text() const noexcept { return m_strText; }
  [[nodiscard]] const char* what() const noexcept override { return m_strText.c_str(); }

 private:
  voxplay_status m_eStatus;
  std::string m_strText;
};

}  // namespace api
