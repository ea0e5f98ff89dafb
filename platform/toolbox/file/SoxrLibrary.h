// SPDX-License-Identifier: Apache-2.0
//
// The library that converts rates. It is loaded when the first sound needs it.
#pragma once

#include <soxr.h>

namespace toolbox {

// Its functions, under the names of its header without their "soxr_"; "delete" is no name in C++.
struct S_SoxrFunctions {
  decltype(&soxr_io_spec) io_spec = nullptr;
  decltype(&soxr_quality_spec) quality_spec = nullptr;
  decltype(&soxr_create) create = nullptr;
  decltype(&soxr_set_input_fn) set_input_fn = nullptr;
  decltype(&soxr_output) output = nullptr;
  decltype(&soxr_delete) remove = nullptr;
};

// Null when this machine does not have the library.
[[nodiscard]] const S_SoxrFunctions* SoxrFunctions() noexcept;

}  // namespace toolbox
