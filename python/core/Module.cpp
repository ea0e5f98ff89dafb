// SPDX-License-Identifier: Apache-2.0
//
// voxplay._core: the library as it is. voxplay/*.py makes of it what users of Python expect, and
// voxplay/_core.pyi describes it.
#include <pybind11/pybind11.h>

#include <array>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <voxplay.hpp>

#include "Failure.h"
#include "KestrelObjects.h"
#include "ReaderObject.h"
#include "WriterObject.h"

namespace py = pybind11;

namespace {

py::tuple Probe(const py::bytes& first) {
  const std::string bytes = first;
  const voxplay::Probe probe = voxplay::probe(std::as_bytes(std::span(bytes)));
  return py::make_tuple(probe.kind.container, probe.kind.codec, probe.kind.supported != 0,
                        py::bytes(probe.text));
}

void AddReader(py::module_& module) {
  using Reader = python::C_ReaderObject;
  py::class_<Reader>(module, "Reader")
      .def_static("open_path",
                  [](const py::bytes& path, std::uint32_t dwFlags) {
                    return std::make_unique<Reader>(std::string(path), dwFlags);
                  })
      .def_static("open_bytes",
                  [](const py::buffer& bytes, std::uint32_t dwFlags) {
                    return std::make_unique<Reader>(bytes, dwFlags);
                  })
      .def_static("open_file",
                  [](py::object file, std::uint32_t dwFlags) {
                    return std::make_unique<Reader>(std::move(file), dwFlags);
                  })
      .def("info", &Reader::Info)
      .def("headers", &Reader::Headers)
      .def("chunks", &Reader::Chunks)
      .def("notes", &Reader::Notes)
      .def("read_into", &Reader::ReadInto)
      .def("seek", &Reader::Seek)
      .def("tell", &Reader::Tell)
      .def("close", &Reader::Close);
}

void AddWriter(py::module_& module) {
  using Writer = python::C_WriterObject;
  py::class_<Writer>(module, "Writer")
      .def_static("open_path",
                  [](const py::bytes& path, const py::dict& format) {
                    return std::make_unique<Writer>(std::string(path), format);
                  })
      .def_static("open_file",
                  [](py::object file, const py::dict& format) {
                    return std::make_unique<Writer>(std::move(file), format);
                  })
      .def("write", &Writer::Write)
      .def("set_notes", &Writer::SetNotes)
      .def("finish", &Writer::Finish)
      .def("abandon", &Writer::Abandon);
}

void AddKestrel(py::module_& module) {
  using Encoder = python::C_EncoderObject;
  using Decoder = python::C_DecoderObject;
  module.attr("KESTREL_FRAME") = VOXPLAY_KESTREL_FRAME;
  py::class_<Encoder>(module, "KestrelEncoder")
      .def(py::init<std::uint32_t>())
      .def_property_readonly("frame_bytes", &Encoder::FrameBytes)
      .def("encode", &Encoder::Encode)
      .def("reset", &Encoder::Reset);
  py::class_<Decoder>(module, "KestrelDecoder")
      .def(py::init<std::uint32_t>())
      .def_property_readonly("frame_bytes", &Decoder::FrameBytes)
      .def("decode", &Decoder::Decode)
      .def("decode_lost", &Decoder::DecodeLost)
      .def("reset", &Decoder::Reset);
}

}  // namespace

PYBIND11_MODULE(_core, module) {
  python::AddFailure(module);
  AddReader(module);
  AddWriter(module);
  AddKestrel(module);
  module.def("version", &voxplay_version);
  module.def("probe", &Probe);
  module.def("format_problem",
             [](const py::dict& format) { return voxplay::problem(python::FormatOf(format)); });
  module.attr("READ_STREAM") = static_cast<int>(VOXPLAY_READ_STREAM);
  module.attr("READ_NO_BARE") = static_cast<int>(VOXPLAY_READ_NO_BARE);
  module.attr("WRITE_RF64") = static_cast<int>(VOXPLAY_WRITE_RF64);
}
