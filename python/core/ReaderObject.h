// SPDX-License-Identifier: Apache-2.0
//
// An open sound for voxplay/_sound.py.
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <voxplay.hpp>

#include "FileObject.h"
#include "Turn.h"

namespace python {

class C_ReaderObject {
 public:
  // A file by name; bytes in memory, which are held; or a file object, which is.
  C_ReaderObject(const std::string& strPath, std::uint32_t dwFlags);
  C_ReaderObject(const pybind11::buffer& bytes, std::uint32_t dwFlags);
  C_ReaderObject(pybind11::object file, std::uint32_t dwFlags);

  pybind11::dict Info();
  pybind11::dict Headers();
  pybind11::list Chunks();
  pybind11::dict Notes();
  // Fills samples as far as the sound goes, and returns the number of frames.
  std::size_t ReadInto(const pybind11::buffer& samples);
  void Seek(std::uint64_t qwFrame);
  std::uint64_t Tell();
  // Ends all that is open, and lets go of bytes and file object. Nothing else works afterwards.
  void Close();

 private:
  template <typename Open>
  void Begin(Open&& fnOpen);
  template <typename Work>
  auto Take(Work&& fnWork);
  void CheckOpen() const;
  void CheckHere(voxplay_status eStatus, std::size_t nFramesRead = 0) const;

  std::optional<pybind11::buffer_info> m_bytes;
  std::unique_ptr<C_FileObject> m_pFile;
  std::unique_ptr<voxplay_reader, voxplay::detail::Free> m_pReader;
  std::size_t m_nChannels = 1;
  C_Turn m_turn;
};

}  // namespace python
