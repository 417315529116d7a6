#include "host/files/sound_file.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

#include "host/files/byte_reader.h"
#include "host/files/file_fault.h"

namespace host {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr uint16_t kInteger = 1;
constexpr uint16_t kFloat = 3;
constexpr uint16_t kExtensible = 0xFFFE;

/// What the format chunk tells.
struct Format {
  uint16_t encoding;
  uint16_t channels;
  uint16_t frameBytes;  ///< of one sample of all channels
  uint16_t bits;
  size_t sampleBytes;
};

bool startsWith(Bytes bytes, const char* text) {
  return bytes.size() >= strlen(text) && memcmp(bytes.data(), text, strlen(text)) == 0;
}

/// In the extensible form the encoding stands at the start of a long identifier.
uint16_t extendedEncoding(ByteReader& chunk) {
  constexpr size_t kBeforeIdentifier = 8;  // its own size, significant bits, loudspeakers
  chunk.skip(kBeforeIdentifier);
  return chunk.u16le();
}

void checkFormat(const Format& format) {
  const bool isKnown = (format.encoding == kInteger && format.bits >= 1 && format.bits <= 32) ||
                       (format.encoding == kFloat && (format.bits == 32 || format.bits == 64));
  if (!isKnown) {
    throw FileFault("WAV of encoding " + std::to_string(format.encoding) + " with " +
                    std::to_string(format.bits) +
                    " bits is not supported; save the sound as 16-bit PCM and try again");
  }
  if (format.channels == 0 || format.frameBytes != format.channels * format.sampleBytes) {
    throw DamagedFile("its format chunk contradicts itself");
  }
}

Format readFormat(Bytes bytes) {
  ByteReader chunk(bytes);
  Format format{};
  format.encoding = chunk.u16le();
  format.channels = chunk.u16le();
  chunk.skip(8);  // samples and bytes per second
  format.frameBytes = chunk.u16le();
  format.bits = chunk.u16le();
  if (format.encoding == kExtensible) format.encoding = extendedEncoding(chunk);
  format.sampleBytes = (format.bits + size_t{7}) / 8;
  checkFormat(format);
  return format;
}

uint64_t littleEndian(Bytes bytes) {
  uint64_t word = 0;
  for (size_t i = bytes.size(); i-- > 0;) word = word << 8 | bytes[i];
  return word;
}

/// From -1 to 1.
double sampleOf(const Format& format, Bytes bytes) {
  const uint64_t word = littleEndian(bytes);
  if (format.encoding == kFloat) {
    return bytes.size() == sizeof(float) ? std::bit_cast<float>(static_cast<uint32_t>(word))
                                         : std::bit_cast<double>(word);
  }
  if (bytes.size() == 1) return (static_cast<double>(word) - 128) / 128;
  // The sign goes to the top of a 32-bit word.
  const auto shift = static_cast<uint32_t>(32 - 8 * bytes.size());
  const auto number = static_cast<int32_t>(static_cast<uint32_t>(word) << shift);
  return number / 2147483648.0;
}

std::vector<uint8_t> pairsOf(const Format& format, Bytes data) {
  const size_t frames = data.size() / format.frameBytes;
  const size_t second = format.channels > 1 ? format.sampleBytes : 0;
  std::vector<uint8_t> pairs(2 * frames);
  for (size_t i = 0; i < frames; ++i) {
    const Bytes frame = data.subspan(i * format.frameBytes, format.frameBytes);
    pairs[2 * i] = levelOf(sampleOf(format, frame.first(format.sampleBytes)));
    pairs[2 * i + 1] = levelOf(sampleOf(format, frame.subspan(second, format.sampleBytes)));
  }
  return pairs;
}

std::vector<uint8_t> readChunks(Bytes wave) {
  constexpr size_t kHeader = 12;
  ByteReader reader(wave);
  reader.skip(kHeader);
  Format format{};
  bool hasFormat = false;
  for (;;) {
    const Bytes name = reader.take(4);
    const uint32_t size = reader.u32le();
    if (startsWith(name, "data")) {
      if (!hasFormat) throw DamagedFile("it has no format chunk before its samples");
      return pairsOf(format, reader.take(std::min<size_t>(size, reader.left())));
    }
    const Bytes chunk = reader.take(size);
    if (startsWith(name, "fmt ")) {
      format = readFormat(chunk);
      hasFormat = true;
    }
    if (size % 2 != 0) reader.skip(1);
  }
}

/// The distance from silence.
int loudness(uint8_t level) { return std::abs(static_cast<int8_t>(level)); }

}  // namespace

uint8_t levelOf(double sample) {
  if (std::isnan(sample)) return 0;
  const double level = std::clamp(std::round(sample * 128), -128.0, 127.0);
  return static_cast<uint8_t>(static_cast<int8_t>(level));
}

bool isWave(std::span<const uint8_t> bytes) {
  return startsWith(bytes, "RIFF") && bytes.size() >= 12 && startsWith(bytes.subspan(8), "WAVE");
}

std::vector<uint8_t> levelPairs(std::span<const uint8_t> wave) {
  try {
    return readChunks(wave);
  } catch (const DamagedFile& damage) {
    throw FileFault(std::string("the WAV sound is damaged (") + damage.what() +
                    "); get an intact copy of the file");
  }
}

std::vector<uint8_t> peaksOf(std::span<const uint8_t> pairs, size_t count) {
  const uint64_t samples = pairs.size() / 2;
  if (samples == 0) return {};
  const auto startOf = [&](size_t i) { return static_cast<size_t>(i * samples / count); };
  std::vector<uint8_t> peaks(2 * count);
  for (size_t i = 0; i < count; ++i) {
    int first = 0;
    int second = 0;
    const size_t end = std::max(startOf(i) + 1, startOf(i + 1));
    for (size_t k = startOf(i); k < end; ++k) {
      first = std::max(first, loudness(pairs[2 * k]));
      second = std::max(second, loudness(pairs[2 * k + 1]));
    }
    peaks[2 * i] = static_cast<uint8_t>(-first);
    peaks[2 * i + 1] = static_cast<uint8_t>(std::min(second, 127));
  }
  return peaks;
}

}  // namespace host
