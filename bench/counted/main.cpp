// SPDX-License-Identifier: Apache-2.0
//
//   counted                  lists the subjects: name, unit, two numbers of units
//   counted SUBJECT UNITS    does that much work; bench/count.sh counts its instructions
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <initializer_list>
#include <string_view>

#include "Subjects.h"

namespace counted {

void Use(const void* pResult) { asm volatile("" : : "r"(pResult) : "memory"); }

namespace {

int List() {
  for (const auto subjects : {FrameSubjects()}) {
    for (const S_Subject& subject : subjects) {
      std::printf("%s %s %zu %zu\n", subject.name.data(), subject.unit.data(), subject.nFew,
                  subject.nMany);
    }
  }
  return EXIT_SUCCESS;
}

int Run(std::string_view name, std::size_t nUnits) {
  for (const auto subjects : {FrameSubjects()}) {
    for (const S_Subject& subject : subjects) {
      if (subject.name != name) continue;
      subject.pfnRun(nUnits);
      return EXIT_SUCCESS;
    }
  }
  std::fputs("counted: no such subject\n", stderr);
  return EXIT_FAILURE;
}

}  // namespace
}  // namespace counted

int main(int argc, char** argv) {
  try {
    if (argc != 3) return counted::List();
    return counted::Run(argv[1], std::strtoul(argv[2], nullptr, 10));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "counted: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
