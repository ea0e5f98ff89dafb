// SPDX-License-Identifier: Apache-2.0
//
// voxplay.VoxplayError: what the library says when it cannot do something.
#pragma once

#include <pybind11/pybind11.h>
#include <voxplay.h>

#include <cstddef>
#include <string>

namespace python {

// A call of the library that failed. It becomes a VoxplayError, and no memory a MemoryError.
struct S_Failure {
  voxplay_status eStatus;
  std::string strSentence;
  std::size_t nFramesRead;
};

// Throws S_Failure, or std::bad_alloc, unless all is well.
void Check(voxplay_status eStatus, const char* pszSentence, std::size_t nFramesRead = 0);

// Adds the exception to the module, and lets it be raised for each S_Failure.
void AddFailure(pybind11::module_& module);

}  // namespace python
