// SPDX-License-Identifier: Apache-2.0
//
// A sound that is being written, for voxplay/_sound.py. Without Finish it never appears.
#pragma once

#include <pybind11/pybind11.h>
#include <voxplay.h>

#include <cstdint>
#include <memory>
#include <string>
#include <voxplay.hpp>

#include "FileObject.h"
#include "Turn.h"

namespace python {

// What voxplay_format has: container, codec, sample_rate, channels, bits_per_sample, bit_rate,
// flags and frames.
voxplay_format FormatOf(const pybind11::dict& members);

class C_WriterObject {
 public:
  C_WriterObject(const std::string& strPath, const pybind11::dict& format);
  C_WriterObject(pybind11::object file, const pybind11::dict& format);

  void Write(const pybind11::buffer& samples);
  void SetNotes(const pybind11::dict& records);
  // Returns the sentences on what the sound does not hold. Ctrl-C ends it like a failure.
  pybind11::list Finish();
  void Abandon();

 private:
  template <typename Open>
  void Begin(const voxplay_format& format, Open&& fnOpen);
  template <typename Work>
  auto Take(Work&& fnWork);
  void CheckHere(voxplay_status eStatus) const;

  std::unique_ptr<C_FileObject> m_pFile;
  std::unique_ptr<voxplay_writer, voxplay::detail::Free> m_pWriter;
  std::size_t m_nChannels = 1;
  C_Turn m_turn;
};

}  // namespace python
