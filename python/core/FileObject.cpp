// SPDX-License-Identifier: Apache-2.0
#include "FileObject.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <string>
#include <utility>

namespace py = pybind11;

namespace python {
namespace {

// Pieces of this size are asked for, so that a file object never makes a copy of a whole sound.
constexpr std::size_t kMostBytes = std::size_t{1} << 20;

bool IsSeekable(const py::object& file) {
  if (!py::hasattr(file, "seekable")) return py::hasattr(file, "seek") && py::hasattr(file, "tell");
  const int nTrue = PyObject_IsTrue(py::object(file.attr("seekable")()).ptr());
  if (nTrue < 0) throw py::error_already_set();
  return nTrue == 1;
}

// Those may take nothing, and say so by None.
bool IsRaw(const py::object& file) {
  return py::isinstance(file, py::module_::import("io").attr("RawIOBase"));
}

// TypeError, with the name of the method, for what is no number or below 0.
std::uint64_t Number(const py::object& result, const char* pszMethod) {
  const unsigned long long qwNumber = PyLong_Check(result.ptr())
                                          ? PyLong_AsUnsignedLongLong(result.ptr())
                                          : static_cast<unsigned long long>(-1);
  if (PyErr_Occurred() != nullptr) PyErr_Clear();
  if (qwNumber > static_cast<unsigned long long>(std::numeric_limits<std::int64_t>::max())) {
    throw py::type_error(std::string(pszMethod) +
                         " of the file object returned no number of bytes");
  }
  return qwNumber;
}

}  // namespace

C_FileObject::C_FileObject(py::object file)
    : m_file(std::move(file)), m_bSeekable(IsSeekable(m_file)), m_bRaw(IsRaw(m_file)) {
  if (m_bSeekable) m_qwBegin = Number(m_file.attr("tell")(), "tell()");
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

// The library calls this through a C interface, so no exception may leave it.
template <typename Result, typename Work>
Result C_FileObject::Guarded(Result failed, Work&& fnWork) {
  const C_LockedAgain locked;
  try {
    return fnWork();
  } catch (py::error_already_set& raised) {
    if (!m_raised) m_raised.emplace(std::move(raised));
    return failed;
  } catch (const py::builtin_exception& raised) {
    raised.set_error();
  } catch (const std::exception& error) {
    PyErr_SetString(PyExc_TypeError, error.what());
  }
  // This takes the exception from the interpreter.
  py::error_already_set raised;
  if (!m_raised) m_raised.emplace(std::move(raised));
  return failed;
}

std::int64_t C_FileObject::Read(void* pBytes, std::size_t cbBytes) {
  return Guarded<std::int64_t>(-1, [&]() -> std::int64_t {
    const std::size_t cbWanted = std::min(cbBytes, kMostBytes);
    const py::object read = m_file.attr("read")(cbWanted);
    if (PyObject_CheckBuffer(read.ptr()) == 0) {
      throw py::type_error("read() of the file object returned no bytes");
    }
    const py::buffer_info bytes = py::cast<py::buffer>(read).request();
    const auto cbRead = static_cast<std::size_t>(bytes.view()->len);
    if (cbRead > cbWanted) throw py::value_error("read() of the file object returned too much");
    if (PyBuffer_ToContiguous(pBytes, bytes.view(), bytes.view()->len, 'C') != 0) {
      throw py::error_already_set();
    }
    return static_cast<std::int64_t>(cbRead);
  });
}

bool C_FileObject::Write(const void* pBytes, std::size_t cbBytes) {
  return Guarded(false, [&] {
    const auto* pNext = static_cast<const char*>(pBytes);
    while (cbBytes > 0) {
      const std::size_t cbPiece = std::min(cbBytes, kMostBytes);
      const py::object written = m_file.attr("write")(py::bytes(pNext, cbPiece));
      if (written.is_none() && m_bRaw) {
        PyErr_SetString(PyExc_BlockingIOError, "write() of the file object took nothing");
        throw py::error_already_set();
      }
      // Raw files may take less than they were given, and some others return nothing.
      const std::size_t cbTaken = written.is_none() ? cbPiece : Number(written, "write()");
      if (cbTaken == 0 || cbTaken > cbPiece) {
        throw py::value_error(
            "write() of the file object returned another number than it was given");
      }
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
  return Guarded<std::int64_t>(
      -1, [&] { return static_cast<std::int64_t>(Number(m_file.attr("tell")(), "tell()")); });
}

std::int64_t C_FileObject::Size() {
  return Guarded<std::int64_t>(-1, [&] {
    const py::object before = m_file.attr("tell")();
    m_file.attr("seek")(0, 2);
    const std::uint64_t qwSize = Number(m_file.attr("tell")(), "tell()");
    m_file.attr("seek")(before);
    return static_cast<std::int64_t>(qwSize);
  });
}

}  // namespace python
