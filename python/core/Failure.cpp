// SPDX-License-Identifier: Apache-2.0
#include "Failure.h"

#include <array>
#include <exception>
#include <new>

namespace py = pybind11;

namespace python {
namespace {

// The names of voxplay_status, as Python writes them.
constexpr std::array<const char*, 14> kNames = {
    "ok",          "no_memory",    "bad_argument", "wrong_state", "cannot_open",
    "cannot_read", "cannot_write", "cannot_seek",  "unknown",     "unsupported",
    "damaged",     "too_large",    "cancelled",    "internal"};

constexpr const char* kDocumentation =
    "The library could not do something. The text says which file, where in it, and why.\n\n"
    "Attributes:\n"
    "    status: what kind of failure it is: 'cannot_open', 'cannot_read', 'cannot_write',\n"
    "        'cannot_seek', 'unknown' (none of our formats), 'unsupported', 'damaged',\n"
    "        'too_large', 'cancelled', 'bad_argument', 'wrong_state' or 'internal'.\n"
    "    frames_read: how many frames a read had delivered before it failed.";

// The type lives as long as the interpreter, which may end after the objects of this library do.
PyObject* g_pErrorType = nullptr;

void Raise(const S_Failure& failure) {
  const auto type = py::reinterpret_borrow<py::object>(g_pErrorType);
  // File names need not be text.
  py::object text = py::reinterpret_steal<py::object>(
      PyUnicode_DecodeUTF8(failure.strSentence.data(),
                           static_cast<Py_ssize_t>(failure.strSentence.size()), "surrogateescape"));
  py::object error = type(text);
  error.attr("status") = kNames.at(static_cast<std::size_t>(failure.eStatus));
  error.attr("frames_read") = failure.nFramesRead;
  PyErr_SetObject(g_pErrorType, error.ptr());
}

}  // namespace

void Check(voxplay_status eStatus, const char* pszSentence, std::size_t nFramesRead) {
  if (eStatus == VOXPLAY_OK) return;
  if (eStatus == VOXPLAY_NO_MEMORY) throw std::bad_alloc();
  const bool bSaid = pszSentence != nullptr && *pszSentence != '\0';
  throw S_Failure{eStatus, bSaid ? pszSentence : voxplay_status_text(eStatus), nFramesRead};
}

void AddFailure(py::module_& module) {
  g_pErrorType = PyErr_NewExceptionWithDoc("voxplay.VoxplayError", kDocumentation,
                                           PyExc_RuntimeError, nullptr);
  if (g_pErrorType == nullptr) throw py::error_already_set();
  module.attr("VoxplayError") = py::reinterpret_borrow<py::object>(g_pErrorType);
  // NOLINTNEXTLINE(performance-unnecessary-value-param): pybind11 wants it so
  py::register_exception_translator([](std::exception_ptr pError) {
    try {
      if (pError) std::rethrow_exception(pError);
    } catch (const S_Failure& failure) {
      Raise(failure);
    }
  });
}

}  // namespace python
