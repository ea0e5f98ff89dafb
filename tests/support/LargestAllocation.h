// SPDX-License-Identifier: Apache-2.0
//
// The largest piece of memory that was requested since the last reset, in a program that is built
// with LargestAllocation.cpp. It shows that memory is not allocated for a size that a file merely
// claims.
#pragma once

#include <cstddef>

void ResetLargestAllocation();
std::size_t LargestAllocation();
