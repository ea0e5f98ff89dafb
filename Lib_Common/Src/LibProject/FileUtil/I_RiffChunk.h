// SPDX-License-Identifier: Apache-2.0
//
// One chunk of a RIFF file as its readers and writers see it.
#pragma once

class I_RiffChunk {
 public:
  // Payload length in bytes, without any pad byte.
  virtual unsigned int GetDataLength() = 0;  // 1
  // Copies dwLength bytes from dwOffset within the payload to pDst. False when the payload is empty
  // or unreadable, or when the range goes past the end of the payload.
  virtual bool GetData(void* pDst, unsigned int dwLength, unsigned int dwOffset) = 0;  // 2
  // Copies exactly GetDataLength() bytes from pSrc into the chunk's own buffer.
  virtual void SetData(const void* pSrc) = 0;  // 3
  virtual ~I_RiffChunk() = default;            // 4
};
