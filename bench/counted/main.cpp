// SPDX-License-Identifier: Apache-2.0
//
//   counted                  lists the subjects: name, unit, units at a time, two numbers of times
//   counted SUBJECT TIMES    does that much work; bench/count.sh counts its instructions
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>
#include <vector>

#include "Subjects.h"

namespace counted {

void Use(const void* pResult) { asm volatile("" : : "r"(pResult) : "memory"); }

namespace {

std::vector<S_Subject> AllSubjects() {
  std::vector<S_Subject> all;
  for (const auto subjects :
       {FrameSubjects(), HeronSubjects(), FileSubjects(), EditSubjects(), ApiSubjects()}) {
    all.insert(all.end(), subjects.begin(), subjects.end());
  }
  return all;
}

int List() {
  for (const S_Subject& subject : AllSubjects()) {
    std::printf("%s %s %zu %zu %zu\n", subject.name.data(), subject.unit.data(), subject.nUnits,
                subject.nFew, subject.nMany);
  }
  return EXIT_SUCCESS;
}

int Run(std::string_view name, std::size_t nTimes) {
  for (const S_Subject& subject : AllSubjects()) {
    if (subject.name != name) continue;
    subject.pfnRun(nTimes);
    return EXIT_SUCCESS;
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
