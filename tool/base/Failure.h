// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace tool {

// What could not be done. The text is the whole line for standard error, "FILE: what: why".
class C_Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  C_Failure(const std::string& strFile, std::string_view what, std::string_view why);
};

// Something on the command line that cannot be meant. The program ends with 2. The name of the
// command comes before the text, and where its help is after it.
class C_UsageFailure : public C_Failure {
 public:
  using C_Failure::C_Failure;
};

// A target that is there already and has to stay.
class C_TargetInWay : public C_Failure {
 public:
  using C_Failure::C_Failure;
};

// The disk takes nothing more: it is full, broken, or cannot be written. Other files would fail in
// the same way, so the work on all of them ends.
class C_DiskFailure : public C_Failure {
 public:
  using C_Failure::C_Failure;
};

// The user has asked the program to end (Interrupt.h).
class C_Interrupted : public std::exception {
 public:
  [[nodiscard]] const char* what() const noexcept override { return "interrupted"; }
};

// Nobody reads standard output any more, so there is nothing left to do and nothing to say.
class C_OutputClosed : public std::exception {
 public:
  [[nodiscard]] const char* what() const noexcept override { return "standard output is closed"; }
};

// What the system says about errno.
std::string SystemReason(int nError);

// Whether a failure to write is a C_DiskFailure.
[[nodiscard]] bool IsOfDisk(int nError) noexcept;

}  // namespace tool
