// SPDX-License-Identifier: Apache-2.0
//
// Access to the samples of interleaved PCM: by position, or by walking one channel.
#pragma once

class C_WavDataBufferIterator;

// Walks one channel. Made and owned by a buffer; valid until the buffer makes another one or dies.
class I_WavDataBufferIterator {
 public:
  virtual void SetDataPos(unsigned int dwSamplePos) = 0;  // 1
  virtual void NextData() = 0;                            // 2
  virtual void PrevData() = 0;                            // 3
  virtual int GetDataValue() = 0;                         // 4
  virtual void SetDataValue(int nValue) = 0;              // 5, clips to the sample width
  virtual ~I_WavDataBufferIterator() = default;           // 6
};

class I_WavDataBuffer {
 public:
  // The value of one sample; a channel that does not exist stops the program. Positions are the
  // caller's responsibility.
  virtual int GetSampleValueInt(unsigned int dwSamplePos, unsigned short wChannelNo) = 0;  // 1
  // Stores a value without clipping it.
  virtual void SetSampleValueInt(unsigned int dwSamplePos, int nValue,
                                 unsigned short wChannelNo) = 0;  // 2
  // The largest absolute value of samples [dwStartSample, dwEndSample) and channels [wFirstChannel,
  // wLastChannel]; -1 for a range outside the data.
  virtual int GetMaxAbsValue(unsigned int dwStartSample, unsigned int dwEndSample,
                             unsigned short wFirstChannel, unsigned short wLastChannel) = 0;  // 3
  // Replaces the iterator made before, which dies. Never deleted by the caller.
  virtual C_WavDataBufferIterator* CreateIterator(unsigned int dwSamplePos,
                                                  unsigned short wChannelNo) = 0;  // 4
  virtual ~I_WavDataBuffer() = default;                                            // 5
};
