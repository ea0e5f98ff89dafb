// SPDX-License-Identifier: Apache-2.0
#include "FileObject.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <utility>

namespace py = pybind11;

namespace python {
namespace {

// Pieces of this size are asked for, so that a file object never makes a copy of a whole sound.
constexpr std::size_t kMostBytes = std::size_t{1} << 20;

bool IsSeekable(const py::object& file) {
  if (py::hasattr(file, "seekable")) return py::cast<bool>(file.attr("seekable")());
  return py::hasattr(file, "seek") && py::hasattr(file, "tell");
}

}  // namespace

C_FileObject::C_FileObject(py::object file)
    : m_file(std::move(file)), m_bSeekable(IsSeekable(m_file)) {
  if (m_bSeekable) m_qwBegin = py::cast<std::uint64_t>(m_file.attr("tell")());
}

voxplay_input C_FileObject::Input() {
  voxplay_input input{};
  input.user = this;
  input.read = [](void* pUser, void* pBytes, std::size_t cbBytes) {
    return static_cast<C_FileObject*>(pUser)->Read(pBytes, cbBytes);
  };
  if (!m_bSeekable) return input;
  input.seek = [](void* pUser, std::uint64_t qwPosition) {
    return static_cast<C_FileObject*>(pUser)->Seek(qwPosition) ? 0 : -1;
  };
  input.tell = [](void* pUser) { return static_cast<C_FileObject*>(pUser)->Tell(); };
  input.size = [](void* pUser) { return static_cast<C_FileObject*>(pUser)->Size(); };
  return input;
}

voxplay_output C_FileObject::Output() {
  voxplay_output output{};
  output.user = this;
  output.write = [](void* pUser, const void* pBytes, std::size_t cbBytes) {
    return static_cast<C_FileObject*>(pUser)->Write(pBytes, cbBytes) ? 0 : -1;
  };
  if (!m_bSeekable) return output;
  output.seek = [](void* pUser, std::uint64_t qwPosition) {
    auto* const pFile = static_cast<C_FileObject*>(pUser);
    return pFile->Seek(pFile->m_qwBegin + qwPosition) ? 0 : -1;
  };
  return output;
}

void C_FileObject::RaiseAgain() {
  if (!m_raised) return;
  auto raised = std::exchange(m_raised, std::nullopt);
  throw py::error_already_set(std::move(*raised));
}

// The library is C to whoever calls it, so nothing may be thrown through it.
template <typename Result, typename Work>
Result C_FileObject::Guarded(Result failed, Work&& fnWork) {
  const py::gil_scoped_acquire locked;
  try {
    return fnWork();
  } catch (py::error_already_set& raised) {
    if (!m_raised) m_raised.emplace(std::move(raised));
  } catch (const py::builtin_exception& raised) {
    raised.set_error();
    if (!m_raised) m_raised.emplace();
    PyErr_Clear();
  } catch (const std::exception& error) {
    PyErr_SetString(PyExc_TypeError, error.what());
    if (!m_raised) m_raised.emplace();
    PyErr_Clear();
  }
  return failed;
}

std::int64_t C_FileObject::Read(void* pBytes, std::size_t cbBytes) {
  return Guarded<std::int64_t>(-1, [&]() -> std::int64_t {
    const std::size_t cbWanted = std::min(cbBytes, kMostBytes);
    const py::object read = m_file.attr("read")(cbWanted);
    if (!PyBytes_Check(read.ptr())) {
      throw py::type_error("read() of the file object returned no bytes");
    }
    const auto cbRead = static_cast<std::size_t>(PyBytes_GET_SIZE(read.ptr()));
    if (cbRead > cbWanted) throw py::value_error("read() of the file object returned too much");
    std::memcpy(pBytes, PyBytes_AS_STRING(read.ptr()), cbRead);
    return static_cast<std::int64_t>(cbRead);
  });
}

bool C_FileObject::Write(const void* pBytes, std::size_t cbBytes) {
  return Guarded(false, [&] {
    const auto* pNext = static_cast<const char*>(pBytes);
    while (cbBytes > 0) {
      const std::size_t cbPiece = std::min(cbBytes, kMostBytes);
      const py::object written = m_file.attr("write")(py::bytes(pNext, cbPiece));
      // Raw files may take less than they were given, and others return nothing.
      const std::size_t cbTaken = written.is_none() ? cbPiece : py::cast<std::size_t>(written);
      if (cbTaken == 0 || cbTaken > cbPiece) return false;
      pNext += cbTaken;
      cbBytes -= cbTaken;
    }
    return true;
  });
}

bool C_FileObject::Seek(std::uint64_t qwPosition) {
  return Guarded(false, [&] {
    m_file.attr("seek")(qwPosition);
    return true;
  });
}

std::int64_t C_FileObject::Tell() {
  return Guarded<std::int64_t>(-1, [&] { return py::cast<std::int64_t>(m_file.attr("tell")()); });
}

std::int64_t C_FileObject::Size() {
  return Guarded<std::int64_t>(-1, [&] {
    const py::object before = m_file.attr("tell")();
    m_file.attr("seek")(0, 2);
    const auto nSize = py::cast<std::int64_t>(m_file.attr("tell")());
    m_file.attr("seek")(before);
    return nSize;
  });
}

}  // namespace python
