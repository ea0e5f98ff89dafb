/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Says what a sound file is, and how loud it gets:
 *
 *     cc read.c $(pkg-config --cflags --libs voxplay) -o read
 *     ./read speech.kst
 */
#include <stdio.h>
#include <stdlib.h>
#include <voxplay.h>

enum { CHUNK = 1024 };

static int loudest(voxplay_reader *reader, uint32_t channels, uint64_t *frames) {
  int16_t *samples = malloc((size_t)CHUNK * channels * sizeof *samples);
  int peak = 0;
  size_t done = 0;
  voxplay_status status = samples == NULL ? VOXPLAY_NO_MEMORY : VOXPLAY_OK;
  while (status == VOXPLAY_OK) {
    status = voxplay_reader_read_s16(reader, samples, CHUNK, &done);
    if (done == 0) break;
    *frames += done;
    for (size_t i = 0; i < done * channels; ++i)
      if (abs(samples[i]) > peak) peak = abs(samples[i]);
  }
  free(samples);
  return status == VOXPLAY_OK ? peak : -1;
}

int main(int argc, char **argv) {
  voxplay_reader *reader = voxplay_reader_new();
  voxplay_info info;
  uint64_t frames = 0;
  int peak = -1;
  if (argc != 2) {
    fprintf(stderr, "usage: read FILE\n");
  } else if (voxplay_reader_open_file(reader, argv[1], 0) == VOXPLAY_OK &&
             voxplay_reader_info(reader, &info, sizeof info) == VOXPLAY_OK) {
    peak = loudest(reader, info.channels, &frames);
    if (peak >= 0)
      printf("%lu Hz, %lu channels, %llu frames, peak %d\n", (unsigned long)info.sample_rate,
             (unsigned long)info.channels, (unsigned long long)frames, peak);
  }
  if (peak < 0 && reader != NULL) fprintf(stderr, "%s\n", voxplay_reader_message(reader));
  voxplay_reader_free(reader);
  return peak < 0;
}
