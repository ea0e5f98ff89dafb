// SPDX-License-Identifier: Apache-2.0
//
// The SP header: 48 bytes in front of a bare codec stream that name the codec and the sample rate.
// Little-endian, packed:
//
//   offset size field            default
//   0      4    signature        0xFF00FF00 (bytes 00 FF 00 FF)
//   4      16   signature text   "VOXELTRONIC SP", NUL-padded
//   20     1    version          254
//   21     1    kind             2, nothing else is accepted
//   22     2    identifier       0      the tagAudioFileType of the stream (14 = Kestrel)
//   24     2    format word      16
//   26     4    frequency        8000   sample rate in Hz
//   30     4    value            0      the four values are set by the full constructor only; the
//   34     2    value            0      library carries them and gives them no meaning
//   36     1    value            0
//   37     4    value            0
//   41     7    reserved         0
//
// Every function below reports a file that cannot be opened as its result (false, 0, or kNoID) and
// leaves the files of the caller as they were.
#pragma once

#include <cstdio>

class C_SpHeader final {
 public:
  // Size in a file. A recognised header counts as this long whatever its version.
  static constexpr unsigned int kBytes = 48;
  // The identifier of a file that has no header.
  static constexpr unsigned short kNoID = 65535;

  C_SpHeader() = default;
  C_SpHeader(unsigned char byKind, unsigned short wID, unsigned short wFormat,
             unsigned int dwFrequency, unsigned int dwValue30, unsigned short wValue34,
             unsigned char byValue36, unsigned int dwValue37);

  [[nodiscard]] unsigned char GetVersion() const { return m_byVersion; }
  [[nodiscard]] unsigned char GetKind() const { return m_byKind; }
  [[nodiscard]] unsigned short GetID() const { return m_wID; }
  [[nodiscard]] unsigned short GetFormat() const { return m_wFormat; }
  [[nodiscard]] unsigned int GetFreq() const { return m_dwFrequency; }
  [[nodiscard]] unsigned int GetValue30() const { return m_dwValue30; }
  [[nodiscard]] unsigned short GetValue34() const { return m_wValue34; }
  [[nodiscard]] unsigned char GetValue36() const { return m_byValue36; }
  [[nodiscard]] unsigned int GetValue37() const { return m_dwValue37; }
  void SetID(unsigned short wID) { m_wID = wID; }
  void SetFormat(unsigned short wFormat) { m_wFormat = wFormat; }
  void SetFreq(unsigned int dwFrequency) { m_dwFrequency = dwFrequency; }

  friend bool operator==(const C_SpHeader&, const C_SpHeader&) = default;

 private:
  friend bool ReadSpHeader(C_SpHeader* pHeader, const char* pszFileName);
  friend bool WriteSpHeader(const C_SpHeader& header, std::FILE* pFile);

  unsigned int m_dwSignature = 0xFF00FF00;
  char m_szText[16] = "VOXELTRONIC SP";
  unsigned char m_byVersion = 254;
  unsigned char m_byKind = 2;
  unsigned short m_wID = 0;
  unsigned short m_wFormat = 16;
  unsigned int m_dwFrequency = 8000;
  unsigned int m_dwValue30 = 0;
  unsigned short m_wValue34 = 0;
  unsigned char m_byValue36 = 0;
  unsigned int m_dwValue37 = 0;
  unsigned char m_abyReserved[7] = {};
};

// Recognises the header of a file. It needs the signature, the current or the older text, version
// 254 or 255 and kind 2, so 22 bytes; fields that a file shorter than a whole header does not hold
// keep their defaults. After false *pHeader holds the defaults.
bool ReadSpHeader(C_SpHeader* pHeader, const char* pszFileName);

// Writes the 48 bytes at the position of the stream.
bool WriteSpHeader(const C_SpHeader& header, std::FILE* pFile);

// The identifier in the header of a file, C_SpHeader::kNoID when it has none.
unsigned short GetSpFileID(const char* pszFileName);

// Puts the header in front of a file, also when it has one already. The new file is built beside
// the old one, takes its mode (and its owner where that is allowed) and replaces it in one step;
// whatever fails on the way, the old file stays untouched and nothing is left beside it. Regular
// files only.
bool PrependSpHeader(const C_SpHeader& header, const char* pszFileName);

// Copies a file without its header, if it has one, and reads the header to *pHeader as ReadSpHeader
// does. The target must be another file than the source.
bool StripSpHeader(C_SpHeader* pHeader, const char* pszSource, const char* pszTarget);

// Writes the header and then the whole source, also when that has a header of its own. The target
// must be another file than the source. True when everything was written.
bool CopyWithSpHeader(const char* pszSource, const char* pszTarget, const C_SpHeader& header);

// Access at fixed offsets, whatever the file holds: no signature is asked for, and a field of which
// the file does not hold every byte reads as 0.
unsigned short ReadSpWord22(const char* pszFileName);  // the identifier
unsigned short ReadSpWord34(const char* pszFileName);  // the 16-bit value
// Format word (low half) and the low half of the frequency (high half).
unsigned int ReadSpDword24(const char* pszFileName);
bool WriteSpDword24(const char* pszFileName, unsigned int dwValue);
