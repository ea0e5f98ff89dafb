// SPDX-License-Identifier: Apache-2.0
//
// Notes as tuples, from which voxplay/_notes.py makes its records. Texts are bytes, as files have
// them.
#pragma once

#include <pybind11/pybind11.h>

#include <voxplay.hpp>

namespace python {

// A dictionary with a list of tuples for each kind, and with a tuple for "sampler". The tuples have
// the members of the records in voxplay.h, in their order there.
pybind11::dict RecordsOf(const voxplay::NotesView& notes);

// The way back, where "sampler" may be None. Numbers fit their members.
voxplay::Notes NotesOf(const pybind11::dict& records);

}  // namespace python
