// SPDX-License-Identifier: Apache-2.0
//
// Stretches of a sound, in samples; both ends are inclusive. Neither interface has a virtual
// destructor: items belong to lists, which delete them through their concrete type.
#pragma once

// A stretch of silence.
class I_SilenceSegment {
 public:
  virtual unsigned int GetStartSamplePos() = 0;            // 1
  virtual unsigned int GetEndSamplePos() = 0;              // 2
  virtual unsigned int GetSampleSize() = 0;                // 3, end - start + 1, wrapping
  virtual void SetStartSamplePos(unsigned int dwPos) = 0;  // 4
  virtual void SetEndSamplePos(unsigned int dwPos) = 0;    // 5

 protected:
  ~I_SilenceSegment() = default;
};

// A stretch that is to be stored without compression.
class I_UncompressRegion {
 public:
  virtual unsigned int GetStartSamplePos() = 0;            // 1
  virtual unsigned int GetEndSamplePos() = 0;              // 2
  virtual unsigned int GetSampleSize() = 0;                // 3, end - start + 1, wrapping
  virtual void SetStartSamplePos(unsigned int dwPos) = 0;  // 4
  virtual void SetEndSamplePos(unsigned int dwPos) = 0;    // 5

 protected:
  ~I_UncompressRegion() = default;
};
