// SPDX-License-Identifier: Apache-2.0
//
// Prints what a file says beside its samples:
//
//     c++ -std=c++20 list_notes.cpp $(pkg-config --cflags --libs voxplay) -o list_notes
//     ./list_notes speech.vef
#include <iostream>
#include <string_view>
#include <voxplay.hpp>

namespace {

void print(const voxplay::NotesView& notes) {
  for (const voxplay::Event event : notes.events()) {
    std::cout << "event   " << event.frame << "  " << event.main_command << ' ' << event.sub_command
              << ' ' << event.data << '\n';
  }
  for (const voxplay::Range range : notes.silence()) {
    std::cout << "silence " << range.first << "  " << range.count << '\n';
  }
  for (const voxplay::Range range : notes.regions()) {
    std::cout << "region  " << range.first << "  " << range.count << '\n';
  }
  for (const voxplay::Cue cue : notes.cues()) {
    std::cout << "cue     " << cue.sample_offset << "  " << cue.id << '\n';
  }
  for (const voxplay::Label label : notes.labels()) {
    std::cout << "label   " << label.cue_id << "  " << label.text << '\n';
  }
  for (const voxplay::Loop loop : notes.loops()) {
    std::cout << "loop    " << loop.first << "  " << loop.last << '\n';
  }
  for (const voxplay::Chunk chunk : notes.chunks()) {
    std::cout << "chunk   " << std::string_view(chunk.id, 4) << "  " << chunk.size << '\n';
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: list_notes FILE\n";
    return 1;
  }
  try {
    print(voxplay::Reader(argv[1]).notes());
    return 0;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
