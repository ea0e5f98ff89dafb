// SPDX-License-Identifier: Apache-2.0
//
// The memory that the whole program requested since the last reset, by whatever means: also by the
// C libraries that it uses. It shows that memory is not requested for a size that a file merely
// claims. For programs that are built with AllMemory.cpp.
#pragma once

#include <cstddef>

void ResetAllMemory();
// Bytes of all requests together, whether they were freed again or not.
std::size_t AllMemory();
