// Sounds from files, as the pairs of levels that waveforms are drawn from.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace host {

/// The level of a sample from -1 to 1: times 128, to the nearest integer (halves away from zero),
/// within -128 to 127; two's complement. What is no number is 0.
uint8_t levelOf(double sample);

/// True for the bytes of a WAV file, sound or not.
bool isWave(std::span<const uint8_t> bytes);

/// The samples of a WAV file, two bytes each: the level of the first channel and that of the
/// second, or the first again if there is only one; further channels are left out. Integers of 8
/// (unsigned), 16, 24 and 32 bits and floating-point numbers of 32 and 64 bits are read. If the
/// file ends early, what is there counts. Throws FileFault if nothing can be read.
std::vector<uint8_t> levelPairs(std::span<const uint8_t> wave);

/// As many pairs as asked for, at least one, each for its stretch of the samples: minus the loudest
/// level of the first values, and the loudest of the second ones. Drawn side by side they show a
/// long sound as people know it. No pairs if there are no samples.
std::vector<uint8_t> peaksOf(std::span<const uint8_t> pairs, size_t count);

}  // namespace host
