// SPDX-License-Identifier: Apache-2.0
//
// Small sounds for the tests of sample access.
#pragma once

#include <initializer_list>
#include <utility>
#include <vector>

#include "sound/WavDataBuffer.h"
#include "sound/WavInfo.h"

using C_Pcm = std::vector<unsigned char>;

inline C_Pcm Le16(std::initializer_list<int> values) {
  C_Pcm bytes;
  for (const int nValue : values) {
    bytes.push_back(static_cast<unsigned char>(nValue & 0xFF));
    bytes.push_back(static_cast<unsigned char>(nValue >> 8 & 0xFF));
  }
  return bytes;
}

// A format and attached bytes, whose ends the sanitizers watch.
class C_Sound {
 public:
  C_Sound(C_Pcm bytes, unsigned short wChannels, unsigned short wBits, unsigned short wStoreBits,
          bool bSigned)
      : m_bytes(std::move(bytes)) {
    m_info.SetInfoData(8000, static_cast<unsigned int>(m_bytes.size()), wChannels, wBits,
                       wStoreBits, bSigned);
    m_buffer.AttachBuffer(m_bytes.data(), static_cast<unsigned int>(m_bytes.size()));
    m_buffer.SetWavInfo(&m_info);
  }
  C_WavDataBuffer& Buffer() { return m_buffer; }
  C_WavInfo& Info() { return m_info; }
  const C_Pcm& Bytes() const { return m_bytes; }
  C_WavDataBufferIterator At(unsigned int dwPos, unsigned short wChannel = 0) {
    return {m_buffer, dwPos, wChannel};
  }

 private:
  C_Pcm m_bytes;
  C_WavInfo m_info;
  C_WavDataBuffer m_buffer;
};

inline C_Sound Mono16(std::initializer_list<int> values) { return {Le16(values), 1, 16, 16, true}; }
inline C_Sound Stereo16(std::initializer_list<int> values) {
  return {Le16(values), 2, 16, 16, true};
}
