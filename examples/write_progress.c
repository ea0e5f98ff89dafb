/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Writes ten seconds of a tone with an event as Kestrel in a VEF file, and tells the progress:
 *
 *     cc write_progress.c $(pkg-config --cflags --libs voxplay) -o write_progress
 *     ./write_progress tone.vef
 */
#include <stdio.h>
#include <voxplay.h>

enum { RATE = 16000, SECONDS = 10 };

/* Called now and then; anything but 0 would stop the writing. */
static int tell(void *user, uint64_t done, uint64_t all) {
  unsigned *last = user;
  unsigned percent = all == 0 ? 0 : (unsigned)(done * 100 / all);
  if (percent / 10 != *last / 10) fprintf(stderr, "%u %%\n", percent);
  *last = percent;
  return 0;
}

static voxplay_status write_tone(voxplay_writer *writer) {
  voxplay_status status = VOXPLAY_OK;
  int16_t samples[RATE / 10];
  for (int piece = 0; piece < SECONDS * 10 && status == VOXPLAY_OK; ++piece) {
    for (int i = 0; i < RATE / 10; ++i) /* a triangle of 200 Hz */
      samples[i] = (int16_t)((i % 80 < 40 ? i % 40 : 40 - i % 40) * 400 - 8000);
    status = voxplay_writer_write_s16(writer, samples, RATE / 10);
  }
  return status;
}

int main(int argc, char **argv) {
  const voxplay_format format = {.container = VOXPLAY_CONTAINER_VEF,
                                 .codec = VOXPLAY_CODEC_KESTREL,
                                 .sample_rate = RATE,
                                 .channels = 1,
                                 .frames = (uint64_t)RATE * SECONDS};
  const voxplay_event event = {.frame = RATE, .main_command = 1, .sub_command = 2, .data = 7};
  voxplay_notes *notes = voxplay_notes_new();
  voxplay_writer *writer = voxplay_writer_new();
  unsigned percent = 0;
  int done = argc == 2 && voxplay_notes_add_event(notes, &event, sizeof event) == VOXPLAY_OK &&
             voxplay_writer_on_progress(writer, tell, &percent) == VOXPLAY_OK &&
             voxplay_writer_open_file(writer, argv[1], &format, sizeof format) == VOXPLAY_OK &&
             voxplay_writer_set_notes(writer, notes) == VOXPLAY_OK &&
             write_tone(writer) == VOXPLAY_OK && voxplay_writer_finish(writer) == VOXPLAY_OK;
  if (argc != 2)
    fprintf(stderr, "usage: write_progress FILE.vef\n");
  else if (!done && writer != NULL)
    fprintf(stderr, "%s\n", voxplay_writer_message(writer));
  voxplay_writer_free(writer);
  voxplay_notes_free(notes);
  return !done;
}
