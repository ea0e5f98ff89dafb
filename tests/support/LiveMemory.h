// SPDX-License-Identifier: Apache-2.0
//
// The memory that operator new has given and not got back, in a program that is built with
// LiveMemory.cpp. It shows that work on a long sound takes no more memory than work on a short one.
#pragma once

#include <cstddef>

// The peak becomes what is in use now.
void ResetPeakMemory();
// The most bytes that were in use at a time since then.
std::size_t PeakMemory();
