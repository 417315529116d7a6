// Sound files from anywhere: the pairs of their levels, and the peaks of those.

#include <algorithm>

#include "fuzz/support/checks.h"
#include "host/files/file_fault.h"
#include "host/files/sound_file.h"

namespace {

using fuzz::expect;

void checkPeaks(const std::vector<uint8_t>& pairs, size_t count) {
  const auto peaks = host::peaksOf(pairs, count);
  expect(peaks.size() == (pairs.size() < 2 ? 0 : 2 * count));
  for (size_t i = 0; i < peaks.size(); ++i) {
    const auto level = static_cast<int8_t>(peaks[i]);
    expect(i % 2 == 0 ? level <= 0 : level >= 0);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  if (!host::isWave({bytes, size})) return 0;
  try {
    const auto pairs = host::levelPairs({bytes, size});
    expect(pairs.size() % 2 == 0);
    for (const size_t count : {size_t{1}, size_t{7}, pairs.size() + 3}) checkPeaks(pairs, count);
  } catch (const host::FileFault&) {
    // Refused.
  }
  return 0;
}
