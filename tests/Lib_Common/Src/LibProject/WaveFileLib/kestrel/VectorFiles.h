// SPDX-License-Identifier: Apache-2.0
//
// Reads the vectors in tests/data/kestrel; its README.md describes the files. A function throws
// when its file is missing or does not parse, and that fails the test that wanted the file.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <map>
#include <ostream>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "FileBytes.h"
#include "kestrel/Configuration.h"

namespace kestrel::test {

inline std::string VectorPath(const std::string& name) {
  return VOXPLAY_TEST_DATA "/kestrel/" + name;
}
inline std::ifstream OpenVectorFile(const std::string& name) {
  std::ifstream file(VectorPath(name), std::ios::binary);
  if (!file) throw std::runtime_error("cannot open " + name);
  return file;
}

// Little-endian 16-bit values of a whole file.
template <typename Value>
std::vector<Value> ReadValues(const std::string& name) {
  const std::vector<std::uint8_t> bytes = FileBytes(VectorPath(name));
  if (bytes.empty()) throw std::runtime_error("cannot read " + name);
  std::vector<Value> values(bytes.size() / 2);
  for (std::size_t i = 0; i < values.size(); ++i) {
    values[i] =
        static_cast<Value>(static_cast<std::uint16_t>(bytes[2 * i + 1] << 8 | bytes[2 * i]));
  }
  return values;
}

inline std::vector<std::int16_t> ReadSamples(const std::string& name) {
  return ReadValues<std::int16_t>(name);
}
inline std::vector<std::uint16_t> ReadWords(const std::string& name) {
  return ReadValues<std::uint16_t>(name);
}

// One frame of 320 samples; zeros for frame -1, the one before the first.
inline S_Frame FrameOf(const std::vector<std::int16_t>& samples, int nFrame) {
  S_Frame frame{};
  if (nFrame < 0) return frame;
  for (std::size_t i = 0; i < frame.size(); ++i) {
    frame[i] = samples.at(static_cast<std::size_t>(nFrame) * frame.size() + i);
  }
  return frame;
}

struct S_Stream {
  std::string name;   // of the .bits file, without its extension
  std::string input;  // the .pcm file that encodes to it; empty when there is no such file
  std::uint32_t dwRate = 0;
  std::size_t nWordsPerFrame = 0;
  std::size_t nFrames = 0;
  std::vector<std::uint32_t> decodedCrcs;  // per frame
};

inline void PrintTo(const S_Stream& stream, std::ostream* pOut) { *pOut << stream.name; }

inline std::vector<S_Stream> ReadStreams() {
  auto file = OpenVectorFile("streams.txt");
  std::vector<S_Stream> streams;
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line);
    S_Stream stream;
    fields >> stream.name >> stream.input >> stream.dwRate >> stream.nWordsPerFrame >>
        stream.nFrames >> std::hex;
    if (stream.input == "-") stream.input.clear();
    for (std::uint32_t dwCrc = 0; fields >> dwCrc;) stream.decodedCrcs.push_back(dwCrc);
    if (stream.decodedCrcs.size() != stream.nFrames) throw std::runtime_error("bad " + stream.name);
    streams.push_back(stream);
  }
  return streams;
}

// Values inside the coder for single frames of speech.pcm.
class C_Stages {
 public:
  explicit C_Stages(std::uint32_t dwRate) : m_configuration(Configure(dwRate)) {
    auto file = OpenVectorFile("stages_" + std::to_string(dwRate) + ".txt");
    int nFrame = 0;
    std::string name;
    for (std::size_t nCount = 0; file >> nFrame >> name >> nCount;) {
      auto& values = m_frames[nFrame][name];
      values.resize(nCount);
      for (int& nValue : values) file >> nValue;
      if (!file) throw std::runtime_error("bad stage " + name);
    }
  }

  [[nodiscard]] const S_Configuration& Configuration() const { return m_configuration; }
  [[nodiscard]] std::vector<int> Frames() const {
    std::vector<int> numbers;
    for (const auto& frame : m_frames) numbers.push_back(frame.first);
    return numbers;
  }
  [[nodiscard]] const std::vector<int>& Values(int nFrame, const std::string& name) const {
    return m_frames.at(nFrame).at(name);
  }
  [[nodiscard]] int Value(int nFrame, const std::string& name) const {
    return Values(nFrame, name).at(0);
  }
  template <typename Array>
  [[nodiscard]] Array As(int nFrame, const std::string& name) const {
    Array array{};
    const auto& values = Values(nFrame, name);
    for (std::size_t i = 0; i < values.size(); ++i) {
      array.at(i) = static_cast<typename Array::value_type>(values[i]);
    }
    return array;
  }
  [[nodiscard]] S_Frame Frame(int nFrame, const std::string& name) const {
    return As<S_Frame>(nFrame, name);
  }

 private:
  S_Configuration m_configuration;
  std::map<int, std::map<std::string, std::vector<int>>> m_frames;
};

inline const std::array<std::uint32_t, 2> kStageRates = {16000, 7200};

template <typename Range>
std::vector<int> ToInts(const Range& range, std::size_t nCount) {
  return {std::begin(range), std::next(std::begin(range), static_cast<std::ptrdiff_t>(nCount))};
}

// CRC-32 (reflected, polynomial 0xEDB88320) of the values as little-endian bytes.
class C_Crc32 {
 public:
  template <typename Value>
  void Add(std::span<const Value> values) {
    for (const auto value : values) {
      AddByte(static_cast<std::uint32_t>(value) & 0xFF);
      AddByte(static_cast<std::uint32_t>(value) >> 8 & 0xFF);
    }
  }
  [[nodiscard]] std::uint32_t Value() const { return ~m_dwRest; }

 private:
  void AddByte(std::uint32_t dwByte) {
    m_dwRest ^= dwByte;
    for (int n = 0; n < 8; ++n) m_dwRest = m_dwRest >> 1 ^ (m_dwRest & 1 ? 0xEDB88320u : 0u);
  }

  std::uint32_t m_dwRest = 0xFFFFFFFFu;
};

inline std::uint32_t Crc32(std::span<const std::int16_t> samples) {
  C_Crc32 crc;
  crc.Add(samples);
  return crc.Value();
}

}  // namespace kestrel::test
