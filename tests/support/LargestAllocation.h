// SPDX-License-Identifier: Apache-2.0
//
// The largest piece of memory that was asked for since the last reset, in a program that is built
// with LargestAllocation.cpp. It shows that a size claimed by a file is not believed.
#pragma once

#include <cstddef>

void ResetLargestAllocation();
std::size_t LargestAllocation();
