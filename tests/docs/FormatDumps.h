// SPDX-License-Identifier: Apache-2.0
//
// The hex dumps of docs/FORMATS.md: small files, made by the library's own writers, or put together
// where it only reads. In the document a dump is a block of code after a line
// "<!-- dump NAME -->".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace formatdumps {

struct S_Dump {
  std::string strName;
  std::vector<std::uint8_t> bytes;
};

// Throws std::runtime_error when a file cannot be written.
std::vector<S_Dump> AllDumps();

// Lines of up to 16 bytes: offset, bytes, and the characters that they stand for.
std::string HexLines(const std::vector<std::uint8_t>& bytes);

// The document with what the dumps are today. A dump that it does not show is not added.
std::string WithDumps(std::string strDocument, const std::vector<S_Dump>& dumps);

// The line that stands before a dump.
std::string MarkOf(const S_Dump& dump);

}  // namespace formatdumps
