// SPDX-License-Identifier: Apache-2.0
#include "Samples.h"

namespace py = pybind11;

namespace python {
namespace {

// C's "long" is four bytes on some machines.
tagSampleType TypeOf(const py::buffer_info& info) {
  if (info.format == "h" && info.itemsize == 2) return tagSampleType::kInt16;
  if ((info.format == "i" || info.format == "l") && info.itemsize == 4) {
    return tagSampleType::kInt32;
  }
  if (info.format == "f" && info.itemsize == 4) return tagSampleType::kFloat;
  throw py::type_error("samples are int16, int32 or float32, in the byte order of this machine");
}

void CheckOnePiece(const py::buffer_info& info) {
  py::ssize_t nExpected = info.itemsize;
  for (std::size_t n = info.shape.size(); n-- > 0;) {
    if (info.shape[n] > 1 && info.strides[n] != nExpected) {
      throw py::value_error("the samples are not one after the other in memory");
    }
    nExpected *= info.shape[n];
  }
}

}  // namespace

C_Samples::C_Samples(const py::buffer& buffer, std::size_t nChannels, bool bWritable)
    : m_info(buffer.request(bWritable)), m_eType(TypeOf(m_info)) {
  CheckOnePiece(m_info);
  const auto nSamples = static_cast<std::size_t>(m_info.size);
  if (nSamples % nChannels != 0) {
    throw py::value_error("the samples are not whole frames of " + std::to_string(nChannels) +
                          " channels");
  }
  m_nFrames = nSamples / nChannels;
}

}  // namespace python
