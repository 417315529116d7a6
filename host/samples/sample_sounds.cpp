#include "host/samples/sample_sounds.h"

#include <cmath>
#include <cstddef>
#include <numbers>

#include "host/files/sound_file.h"
#include "host/samples/drawing.h"

namespace host {
namespace {

constexpr int32_t kRate = 22050;
constexpr double kTurn = 2 * std::numbers::pi;

struct Stereo {
  double left = 0;
  double right = 0;
};

Stereo operator+(Stereo a, Stereo b) { return {a.left + b.left, a.right + b.right}; }

/// From the middle, place 0, to the left, -1, or the right, 1.
Stereo panned(double level, double place) {
  return {level * (1 - place) / 2, level * (1 + place) / 2};
}

/// levelAt(seconds) gives the sample at each moment.
template <typename LevelAt>
std::vector<uint8_t> record(double seconds, const LevelAt& levelAt) {
  const auto count = static_cast<int32_t>(seconds * kRate);
  std::vector<uint8_t> pairs;
  pairs.reserve(2 * static_cast<size_t>(count));
  for (int32_t i = 0; i < count; ++i) {
    const Stereo sample = levelAt(static_cast<double>(i) / kRate);
    pairs.push_back(levelOf(sample.left));
    pairs.push_back(levelOf(sample.right));
  }
  return pairs;
}

// ---- A chord, plucked note by note

/// A string that was plucked `age` seconds ago: overtones that die away the faster the higher
/// they are.
double plucked(double pitch, double age) {
  if (age < 0) return 0;
  double level = 0;
  for (int overtone = 1; overtone <= 5; ++overtone) {
    const double decay = std::exp(-age * (1.3 + 0.9 * overtone));
    level += std::sin(kTurn * pitch * overtone * age) * decay / overtone;
  }
  return level * smoothStep(0, 0.004, age);
}

std::vector<uint8_t> makeChord() {
  constexpr double kPitches[] = {130.81, 196.00, 261.63, 329.63, 392.00, 523.25};
  return record(2.5, [&kPitches](double time) {
    Stereo sum;
    double start = 0.05;
    double place = -0.7;
    for (const double pitch : kPitches) {
      sum = sum + panned(0.5 * plucked(pitch, time - start), place);
      start += 0.16;
      place += 0.28;
    }
    return sum;
  });
}

// ---- Two bars of drums

constexpr double kBeat = 0.5;

/// Seconds since the last of the moments first, first + period, …; negative before the first.
double sinceLast(double time, double first, double period) {
  return time < first ? -1 : std::fmod(time - first, period);
}

/// A low tone that falls from its stroke on.
double kick(double age) {
  if (age < 0) return 0;
  return std::sin(kTurn * (48 * age + 4 * (1 - std::exp(-age * 30)))) * std::exp(-age * 9);
}

/// Noise that dies away at a rate.
double hiss(double time, double age, double rate, uint32_t seed) {
  if (age < 0) return 0;
  const auto moment = static_cast<int32_t>(std::lround(time * kRate));
  return (2 * randomAt(moment, 0, seed) - 1) * std::exp(-age * rate);
}

std::vector<uint8_t> makeDrums() {
  return record(8 * kBeat, [](double time) {
    const double snare = hiss(time, sinceLast(time, kBeat, 2 * kBeat), 14, 1);
    const double cymbal = hiss(time, sinceLast(time, 0, kBeat / 2), 40, 2);
    return panned(1.5 * kick(sinceLast(time, 0, 2 * kBeat)), 0) + panned(1.2 * snare, -0.3) +
           panned(0.5 * cymbal, 0.5);
  });
}

}  // namespace

std::span<const SampleSound> sampleSounds() {
  static constexpr SampleSound kSounds[] = {
      {"chord", "A chord, plucked note by note", &makeChord},
      {"drums", "Two bars of drums", &makeDrums},
  };
  return kSounds;
}

}  // namespace host
