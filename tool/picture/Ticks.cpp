// SPDX-License-Identifier: Apache-2.0
#include "picture/Ticks.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/NumberText.h"

namespace tool {
namespace {

constexpr std::array<double, 15> kSeconds = {1,   2,   5,   10,   15,   30,   60,   120,
                                             300, 600, 900, 1800, 3600, 7200, 10800};
constexpr double kMinute = 60.0;
constexpr double kHour = 3600.0;
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
  const double dBegin = std::ceil(dFirst / dStep - kSlack);
  const auto nTicks = static_cast<int>(std::floor(dLast / dStep + kSlack) - dBegin) + 1;
  for (int n = 0; n < nTicks; ++n) {
    // Rounding up may give -0, which would be written so.
    const double dValue = (dBegin + n) * dStep + 0.0;
    ticks.push_back({dValue, text(dValue)});
  }
  return ticks;
}

// With a zero before it when it is a digit short.
std::string Padded(double dValue, int nDecimals) {
  return (dValue < 10.0 ? "0" : "") + NumberText(dValue, nDecimals);
}

// "0:05.12"; from an hour on "1:00:05.12". Without decimals there is no point.
std::string TimeText(double dSeconds, int nDecimals) {
  const double dHours = std::floor(dSeconds / kHour);
  const double dMinutes = std::floor((dSeconds - dHours * kHour) / kMinute);
  const double dRest = std::max(0.0, dSeconds - dHours * kHour - dMinutes * kMinute);
  const std::string strSeconds = ':' + Padded(dRest, nDecimals);
  if (dHours == 0.0) return NumberText(dMinutes, 0) + strSeconds;
  return NumberText(dHours, 0) + ':' + Padded(dMinutes, 0) + strSeconds;
}

// Multiples of a step are not exact; half a unit of the last decimal does not make a minute of
// 59.9999 seconds.
double Rounded(double dSeconds, int nDecimals) {
  const double dUnit = std::pow(10.0, nDecimals);
  return std::round(dSeconds * dUnit) / dUnit;
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
  return Ticks(dFirst, dLast, dStep,
               [=](double d) { return TimeText(Rounded(d, nDecimals), nDecimals); });
}

}  // namespace tool
