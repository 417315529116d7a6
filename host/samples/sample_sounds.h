// Sample sounds made by our own code, so that waveforms can be drawn without any file.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace host {

struct SampleSound {
  std::string_view name;   // one lower-case word, for scripts
  std::string_view title;  // a few words, for people
  /// The signed levels of the left and the right channel in turn, one byte each, 22050 pairs a
  /// second; always the same.
  std::vector<uint8_t> (*make)();
};

/// "chord" and "drums", in this order.
std::span<const SampleSound> sampleSounds();

}  // namespace host
