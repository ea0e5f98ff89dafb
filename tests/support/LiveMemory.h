// SPDX-License-Identifier: Apache-2.0
//
// The memory that a program holds from new, and the most that it held since the last reset, in a
// program that is built with LiveMemory.cpp.
#pragma once

#include <cstddef>

// The most becomes what is held now.
void ResetMostMemory();
std::size_t LiveMemory();
std::size_t MostMemory();
