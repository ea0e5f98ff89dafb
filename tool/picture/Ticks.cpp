// SPDX-License-Identifier: Apache-2.0
#include "picture/Ticks.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/NumberText.h"
#include "sound/TimeText.h"

namespace tool {
namespace {

constexpr std::array<double, 15> kSeconds = {1,   2,    5,    10,   15,   30,    60,    120,
                                             300, 600,  900,  1800, 3600, 7200,  10800};
constexpr double kDay = 86400.0;
// What rounding may take from a value at the end of the range.
constexpr double kSlack = 1e-6;

// Decimals that tell multiples of the step apart.
int DecimalsOf(double dStep) {
  return std::max(0, static_cast<int>(-std::floor(std::log10(dStep) + kSlack)));
}

template <typename Text>
std::vector<S_Tick> Ticks(double dFirst, double dLast, double dStep, const Text& text) {
  std::vector<S_Tick> ticks;
  const double dEnd = std::floor(dLast / dStep + kSlack);
  for (double dIndex = std::ceil(dFirst / dStep - kSlack); dIndex <= dEnd; ++dIndex) {
    // Rounding up may give -0, which would be written so.
    const double dValue = dIndex * dStep + 0.0;
    ticks.push_back({dValue, text(dValue)});
  }
  return ticks;
}

}  // namespace

double RoundStep(double dLeast) {
  const double dPower = std::pow(10.0, std::floor(std::log10(dLeast)));
  for (const double dFactor : {1.0, 2.0, 5.0}) {
    if (dFactor * dPower >= dLeast * (1 - kSlack)) return dFactor * dPower;
  }
  return 10 * dPower;
}

double TimeStep(double dLeast) {
  if (dLeast <= 0.5) return RoundStep(dLeast);
  for (const double dStep : kSeconds) {
    if (dStep >= dLeast) return dStep;
  }
  double dStep = kDay / 4;
  while (dStep < dLeast) dStep *= 2;
  return dStep;
}

std::vector<S_Tick> NumberTicks(double dFirst, double dLast, double dStep) {
  const int nDecimals = DecimalsOf(dStep);
  return Ticks(dFirst, dLast, dStep, [=](double d) { return NumberText(d, nDecimals); });
}

std::vector<S_Tick> TimeTicks(double dFirst, double dLast, double dStep) {
  const int nDecimals = DecimalsOf(dStep);
  return Ticks(dFirst, dLast, dStep, [=](double d) { return TimeText(d, nDecimals); });
}

}  // namespace tool
