// SPDX-License-Identifier: Apache-2.0
//
// Writes a document again with the dumps of today:
//
//   build/dev/bin/format_dumps docs/FORMATS.md >new.md && mv new.md docs/FORMATS.md
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "FormatDumps.h"

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  try {
    std::ifstream file(argv[1], std::ios::binary);
    const std::string strDocument{std::istreambuf_iterator<char>(file), {}};
    std::cout << formatdumps::WithDumps(strDocument, formatdumps::AllDumps());
    return std::cout.flush() && !strDocument.empty() ? 0 : 1;
  } catch (const std::exception& error) {
    static_cast<void>(std::fprintf(stderr, "format_dumps: %s\n", error.what()));
    return 1;
  }
}
