// SPDX-License-Identifier: Apache-2.0
#include "StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <initializer_list>

namespace {

bool IsMissing(int nDescriptor) { return fcntl(nDescriptor, F_GETFD) == -1 && errno == EBADF; }

}  // namespace

// In ascending order, because a file that is opened gets the lowest free number.
void FillStandardStreams() {
  for (const int nDescriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (IsMissing(nDescriptor) && open("/dev/null", O_RDWR) != nDescriptor) return;
  }
}
