/* SPDX-License-Identifier: Apache-2.0 */
/* Fails unless the library has the version that it is given. */
#include <stdio.h>
#include <string.h>
#include <voxplay.h>

int main(int argc, char **argv) {
  puts(voxplay_version());
  return argc != 2 || strcmp(argv[1], voxplay_version()) != 0;
}
