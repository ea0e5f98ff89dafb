// SPDX-License-Identifier: Apache-2.0
//
// A file object of Python as an input or an output of the library: anything with read() or write(),
// and, where seekable() does not deny it, with seek() and tell(). What its methods raise ends the
// call of the library, and is raised again by it.
#pragma once

#include <pybind11/pybind11.h>
#include <voxplay.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <type_traits>

#include "Failure.h"
#include "Turn.h"

namespace python {

class C_FileObject {
 public:
  // With Python's lock. The functions below take it themselves, but for RaiseAgain.
  explicit C_FileObject(pybind11::object file);

  // Both records point to this object.
  voxplay_input Input();
  voxplay_output Output();

  // Raises what a method has raised since the last time, if anything.
  void RaiseAgain();

 private:
  std::int64_t Read(void* pBytes, std::size_t cbBytes);
  bool Write(const void* pBytes, std::size_t cbBytes);
  bool Seek(std::uint64_t qwPosition);
  std::int64_t Tell();
  std::int64_t Size();
  template <typename Result, typename Work>
  Result Guarded(Result failed, Work&& fnWork);

  pybind11::object m_file;
  bool m_bSeekable;
  std::uint64_t m_qwBegin = 0;  // of what is written
  std::optional<pybind11::error_already_set> m_raised;
};

// Runs fnWork as C_Turn does. What the file object, if there is one, has raised meanwhile says more
// than what the library makes of it, and is raised in any case.
template <typename Work>
auto TakeWithFile(C_Turn& turn, C_FileObject* pFile, Work&& fnWork) {
  const auto RaiseAgain = [&] {
    if (pFile != nullptr) pFile->RaiseAgain();
  };
  try {
    if constexpr (std::is_void_v<decltype(fnWork())>) {
      turn.Take(fnWork);
      RaiseAgain();
    } else {
      auto result = turn.Take(fnWork);
      RaiseAgain();
      return result;
    }
  } catch (const S_Failure&) {
    RaiseAgain();
    throw;
  }
}

}  // namespace python
