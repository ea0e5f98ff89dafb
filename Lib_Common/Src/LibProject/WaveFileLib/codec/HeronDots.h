// SPDX-License-Identifier: Apache-2.0
//
// What the Heron encoder shows on standard output when it is told to: a row of dots that grows with
// the work, and then "ok" or "fail". Nothing else in the library writes there. The line is not
// ended: that is left to the program that asked for the dots.
#pragma once

class C_HeronDots {
 public:
  static constexpr unsigned int kDots = 50;  // dots in a whole row

  explicit C_HeronDots(bool bVerbose) : m_bVerbose(bVerbose) {}

  // Brings the row to dwDone / dwTotal of its length; dwTotal is not 0.
  void Advance(unsigned int dwDone, unsigned int dwTotal);
  // Completes the row and adds "ok" or "fail".
  void End(bool bDone);

 private:
  void GrowTo(unsigned int dwDots);

  bool m_bVerbose;
  unsigned int m_dwDots = 0;
};
