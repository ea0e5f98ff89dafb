// SPDX-License-Identifier: Apache-2.0
//
// Shows that the library puts out the same on every machine, whatever its byte order and the width
// of its addresses. It needs no test framework, so that it can be built for every machine:
// scripts/architectures.sh does so.
//
//   portable_outputs        prints the outputs
//   portable_outputs LIST   compares them with those in the file LIST; prints the lines that differ
//
// When an output changes for a good reason:
//   build/dev/bin/portable_outputs >tests/portable/outputs.txt
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Outputs.h"

namespace {

std::vector<std::string> LinesOf(const char* pszFileName) {
  std::ifstream file(pszFileName);
  std::vector<std::string> lines;
  for (std::string strLine; std::getline(file, strLine);) lines.push_back(strLine);
  if (lines.empty()) throw std::runtime_error(std::string(pszFileName) + " has no lines");
  return lines;
}

void Print(const char* pszBefore, const std::string& strLine) {
  static_cast<void>(std::printf("%s%s\n", pszBefore, strLine.c_str()));
}

// True when both are the same.
bool Compare(const std::vector<std::string>& have, const std::vector<std::string>& want) {
  for (std::size_t i = 0; i < std::max(have.size(), want.size()); ++i) {
    const std::string strHave = i < have.size() ? have[i] : "nothing";
    const std::string strWant = i < want.size() ? want[i] : "nothing";
    if (strHave == strWant) continue;
    Print("want ", strWant);
    Print("have ", strHave);
  }
  return have == want;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    C_Outputs outputs;
    AddCoderOutputs(outputs);
    AddFileOutputs(outputs);
    AddSoundOutputs(outputs);
    AddApiOutputs(outputs);
    if (argc > 1) return Compare(outputs.Lines(), LinesOf(argv[1])) ? EXIT_SUCCESS : EXIT_FAILURE;
    for (const std::string& strLine : outputs.Lines()) Print("", strLine);
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    static_cast<void>(std::fprintf(stderr, "portable_outputs: %s\n", error.what()));
    return EXIT_FAILURE;
  }
}
