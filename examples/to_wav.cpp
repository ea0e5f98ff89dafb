// SPDX-License-Identifier: Apache-2.0
//
// Makes a WAV file of any sound, with its notes, and says which of them a WAV file cannot hold:
//
//     c++ -std=c++20 to_wav.cpp $(pkg-config --cflags --libs voxplay) -o to_wav
//     ./to_wav speech.kst speech.wav
#include <cstdint>
#include <iostream>
#include <span>
#include <string>
#include <vector>
#include <voxplay.hpp>

namespace {

void convert(const std::string& source, const std::string& target) {
  voxplay::Reader reader(source);
  voxplay::Format format{};
  format.container = VOXPLAY_CONTAINER_WAV;
  format.codec = VOXPLAY_CODEC_PCM;
  format.bits_per_sample = 16;
  format.sample_rate = reader.info().sample_rate;
  format.channels = reader.info().channels;

  voxplay::Writer writer(target, format);
  writer.set_notes(reader.notes());
  std::vector<std::int16_t> samples(4096 * std::size_t{format.channels});
  while (const std::size_t frames = reader.read(std::span(samples))) {
    writer.write(std::span(samples).first(frames * format.channels));
  }
  writer.finish();
  for (const std::string& lost : writer.lost()) std::cerr << "lost: " << lost << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: to_wav FILE TARGET.wav\n";
    return 1;
  }
  try {
    convert(argv[1], argv[2]);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
