// PICT data from anywhere: found in a file, and drawn on small canvases, its own
// size among them.

#include <vector>

#include "fuzz/support/checks.h"
#include "host/files/pict_file.h"
#include "platform/standin/box.h"
#include "platform/standin/standin.h"

namespace {

using fuzz::expect;

constexpr uint32_t kPaper = 0x00ABCDEF;
constexpr int32_t kLargestSide = 300;

std::vector<uint32_t> drawn(std::span<const uint8_t> data, int32_t width, int32_t height) {
  std::vector<uint32_t> words(static_cast<size_t>(width) * static_cast<size_t>(height), kPaper);
  standin::drawPict(data, {words.data(), width, height});
  for (const uint32_t word : words) expect(word <= 0x00FFFFFF);
  return words;
}

void draw(std::span<const uint8_t> data) {
  const standin::Box frame = standin::boxOf(standin::pictFrame(data));
  const auto words = drawn(data, 37, 23);
  if (frame.isEmpty()) {
    expect(words == std::vector<uint32_t>(words.size(), kPaper));
  } else if (frame.width() <= kLargestSide && frame.height() <= kLargestSide) {
    drawn(data, frame.width(), frame.height());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  const std::span<const uint8_t> data(bytes, size);
  draw(data);
  const auto found = host::pictDataIn(data);
  if (found && found->size() < size) draw(*found);
  return 0;
}
