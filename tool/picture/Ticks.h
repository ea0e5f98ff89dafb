// SPDX-License-Identifier: Apache-2.0
//
// Where the marks of an axis stand, at numbers that people like to read.
#pragma once

#include <string>
#include <vector>

namespace tool {

struct S_Tick {
  double dValue = 0.0;
  std::string strText;
};

// The smallest step of 1, 2 or 5 times a power of ten that is at least dLeast.
double RoundStep(double dLeast);
// The same for seconds: whole minutes and hours as they are counted.
double TimeStep(double dLeast);

// All multiples of the step in the range. Neither may be 0, and the range holds no more of them
// than a picture has pixels.
std::vector<S_Tick> NumberTicks(double dFirst, double dLast, double dStep);
std::vector<S_Tick> TimeTicks(double dFirst, double dLast, double dStep);

}  // namespace tool
