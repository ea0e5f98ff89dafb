// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "voxplay.hpp"

namespace tool {

// A header that stands before a stream, or describes it, as names and numbers.
struct S_HeaderFields {
  std::string strName;  // "SP header"
  std::string strKey;   // "sp"
  struct S_Field {
    std::string strKey;  // "sample_rate"
    std::uint32_t dwValue;
  };
  std::vector<S_Field> fields;
};

// Those that the file has.
std::vector<S_HeaderFields> HeaderFieldsOf(const voxplay::Headers& headers);

}  // namespace tool
