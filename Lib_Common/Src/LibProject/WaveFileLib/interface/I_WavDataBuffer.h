// SPDX-License-Identifier: Apache-2.0
//
// Access to the samples of interleaved PCM: by position, or by walking one channel.
#pragma once

class C_WavDataBufferIterator;

// Walks one channel. A buffer makes and owns it. It is valid until the buffer makes another one or
// is destroyed.
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
  // The value of one sample. A channel that does not exist stops the program; a position outside
  // the data gives 0.
  virtual int GetSampleValueInt(unsigned int dwSamplePos, unsigned short wChannelNo) = 0;  // 1
  // Stores a value without clipping it. A channel that does not exist stops the program; a position
  // outside the data is ignored.
  virtual void SetSampleValueInt(unsigned int dwSamplePos, int nValue,
                                 unsigned short wChannelNo) = 0;  // 2
  // The largest absolute value of samples [dwStartSample, dwEndSample) and channels [wFirstChannel,
  // wLastChannel]. -1 when sample dwEndSample or channel wLastChannel does not exist.
  virtual int GetMaxAbsValue(unsigned int dwStartSample, unsigned int dwEndSample,
                             unsigned short wFirstChannel, unsigned short wLastChannel) = 0;  // 3
  // Deletes the iterator made before and returns a new one. The caller never deletes it.
  virtual C_WavDataBufferIterator* CreateIterator(unsigned int dwSamplePos,
                                                  unsigned short wChannelNo) = 0;  // 4
  virtual ~I_WavDataBuffer() = default;                                            // 5
};
