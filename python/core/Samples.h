// SPDX-License-Identifier: Apache-2.0
//
// Samples in an object of Python that shows its memory, such as an array of numpy.
#pragma once

#include <pybind11/pybind11.h>

#include <cstddef>
#include <cstdint>

namespace python {

enum class tagSampleType { kInt16, kInt32, kFloat };

// Interleaved frames in one piece. The memory is held as long as this lives, which ends with
// Python's lock.
class C_Samples {
 public:
  // TypeError for other samples than int16, int32 and float32; ValueError for memory with gaps, for
  // what can only be read where bWritable is wanted, and for less than whole frames.
  C_Samples(const pybind11::buffer& buffer, std::size_t nChannels, bool bWritable);

  [[nodiscard]] tagSampleType Type() const { return m_eType; }
  [[nodiscard]] std::size_t Frames() const { return m_nFrames; }
  template <typename Sample>
  [[nodiscard]] Sample* Data() const {
    return static_cast<Sample*>(m_info.ptr);
  }

 private:
  pybind11::buffer_info m_info;
  tagSampleType m_eType;
  std::size_t m_nFrames;
};

}  // namespace python
