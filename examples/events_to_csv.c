/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Prints the events of a sound file as comma-separated values:
 *
 *     cc events_to_csv.c $(pkg-config --cflags --libs voxplay) -o events_to_csv
 *     ./events_to_csv speech.vef >events.csv
 */
#include <stdio.h>
#include <voxplay.h>

/* A text between quotes, with its own quotes doubled. */
static void print_text(const char *text) {
  putchar('"');
  for (; *text != '\0'; ++text) {
    if (*text == '"') putchar('"');
    putchar(*text);
  }
  putchar('"');
}

static void print_events(const voxplay_notes *notes, uint32_t rate) {
  printf("frame,seconds,main,sub,data,description\n");
  for (size_t i = 0; i < voxplay_notes_count(notes, VOXPLAY_NOTE_EVENT); ++i) {
    voxplay_event event;
    if (voxplay_notes_event(notes, i, &event, sizeof event) != VOXPLAY_OK) continue;
    printf("%llu,%.6f,%u,%u,%lu,", (unsigned long long)event.frame,
           rate == 0 ? 0.0 : (double)event.frame / rate, (unsigned)event.main_command,
           (unsigned)event.sub_command, (unsigned long)event.data);
    print_text(event.description);
    putchar('\n');
  }
}

int main(int argc, char **argv) {
  voxplay_reader *reader = voxplay_reader_new();
  voxplay_info info;
  int failed = 1;
  if (argc != 2) {
    fprintf(stderr, "usage: events_to_csv FILE\n");
  } else if (voxplay_reader_open_file(reader, argv[1], 0) == VOXPLAY_OK &&
             voxplay_reader_info(reader, &info, sizeof info) == VOXPLAY_OK) {
    print_events(voxplay_reader_notes(reader), info.sample_rate);
    failed = 0;
  } else if (reader != NULL) {
    fprintf(stderr, "%s\n", voxplay_reader_message(reader));
  }
  voxplay_reader_free(reader);
  return failed;
}
