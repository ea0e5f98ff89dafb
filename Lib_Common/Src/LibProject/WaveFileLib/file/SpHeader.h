// SPDX-License-Identifier: Apache-2.0
//
// The SP header: 48 bytes before a bare codec stream. They name the codec and the sample rate.
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
// For a file that cannot be opened, and for a null name, every function below returns false, 0 or
// kNoID, and leaves the caller's files as they were. No other pointer may be null.
#pragma once

#include <cstdio>
#include <optional>

class C_SpHeader final {
 public:
  // Size in a file, in bytes. Every recognised header counts as this long, whatever its version.
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
  friend std::optional<bool> FindSpHeader(C_SpHeader* pHeader, const char* pszFileName);
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

// Reads the header at the start of a file. The first 22 bytes decide whether there is one: the
// signature, the current or the older text, version 254 or 255, and kind 2. Fields that a shorter
// file does not hold keep their defaults. When the result is false, *pHeader holds the defaults.
bool ReadSpHeader(C_SpHeader* pHeader, const char* pszFileName);

// The same, but tells a file without a header (false) from one that cannot be read (empty).
[[nodiscard]] std::optional<bool> FindSpHeader(C_SpHeader* pHeader, const char* pszFileName);

// Writes the 48 bytes at the position of the stream. False when a write fails.
bool WriteSpHeader(const C_SpHeader& header, std::FILE* pFile);

// The identifier in the header of a file; C_SpHeader::kNoID when the file has no header.
unsigned short GetSpFileID(const char* pszFileName);

// Puts the header before the contents of a file, even when the file has a header already. The new
// file is built beside the old one, gets its mode (and its owner where that is allowed), and
// replaces it in one step. On failure the old file is unchanged and nothing is left beside it.
// Regular files only.
bool PrependSpHeader(const C_SpHeader& header, const char* pszFileName);

// Copies a file without its header; a file that has no header is copied whole. *pHeader is filled
// in as ReadSpHeader does it. An existing target is written over in place. False, and the target is
// left alone, when the source cannot be opened, when its start cannot be read, and when the target
// is the source. False, too, when the target cannot be opened. A copy that fails later still
// returns true, whether the rest of the source cannot be read or the target cannot be written.
bool StripSpHeader(C_SpHeader* pHeader, const char* pszSource, const char* pszTarget);

// Writes the header and then the whole source, even when the source has a header of its own. An
// existing target is written over in place. False when either file cannot be opened, when the
// target is the source, and when a write fails, which may leave a partial target.
bool CopyWithSpHeader(const char* pszSource, const char* pszTarget, const C_SpHeader& header);

// Access at fixed offsets, whatever the file holds: the signature is not checked. A field that the
// file does not hold completely reads as 0.
unsigned short ReadSpWord22(const char* pszFileName);  // the identifier
unsigned short ReadSpWord34(const char* pszFileName);  // the 16-bit value
// The format word in the low half, and the low half of the frequency in the high half.
unsigned int ReadSpDword24(const char* pszFileName);
// Overwrites the same four bytes in place. False when a write fails.
bool WriteSpDword24(const char* pszFileName, unsigned int dwValue);
