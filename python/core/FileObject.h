// SPDX-License-Identifier: Apache-2.0
//
// A file object of Python as an input or an output of the library: anything with read() or write(),
// and, where seekable() does not deny it, with seek() and tell(). What its methods raise ends the
// call of the library, and is raised again by it. A file object that holds its own sound is never
// collected, because Python cannot see that the library refers back to it.
#pragma once

#include <pybind11/pybind11.h>
#include <voxplay.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "Failure.h"
#include "Turn.h"

namespace python {

class C_FileObject {
 public:
  // The caller holds Python's lock. The functions in the records take it themselves.
  explicit C_FileObject(pybind11::object file);

  // Both records point to this object.
  voxplay_input Input();
  voxplay_output Output();

  // What a method has raised since the last time, if anything. Needs no lock.
  std::optional<pybind11::error_already_set> TakeRaised() {
    return std::exchange(m_raised, std::nullopt);
  }

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
  bool m_bRaw;
  std::uint64_t m_qwBegin = 0;  // of what is written
  std::optional<pybind11::error_already_set> m_raised;
};

// True for work that has no result.
template <typename Work>
auto ResultOf(Work& fnWork) {
  if constexpr (std::is_void_v<decltype(fnWork())>) {
    fnWork();
    return true;
  } else {
    return fnWork();
  }
}

// Runs fnWork as C_Turn does. If the file object has raised an exception meanwhile, that one is
// raised again, because it says more than the library's failure. The pointer is used only during
// the turn, because another thread may close the sound.
template <typename Work>
auto TakeWithFile(C_Turn& turn, const std::unique_ptr<C_FileObject>& pFile, Work&& fnWork) {
  std::optional<pybind11::error_already_set> raised;
  const auto fnLook = [&] {
    if (pFile) raised = pFile->TakeRaised();
  };
  std::optional<S_Failure> failure;
  // When the library runs out of memory, that is raised, whatever the file object has raised.
  auto result = turn.Take([&] {
    std::optional<decltype(ResultOf(fnWork))> done;
    try {
      done = ResultOf(fnWork);
    } catch (const S_Failure& caught) {
      failure = caught;
    }
    fnLook();
    return done;
  });
  if (raised) throw pybind11::error_already_set(std::move(*raised));
  if (failure) throw S_Failure(std::move(*failure));
  return *std::move(result);
}

}  // namespace python
