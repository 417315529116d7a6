#include "host/files/pnm.h"

#include <string_view>

#include "host/files/byte_reader.h"
#include "host/files/picture_limits.h"

namespace host {

namespace {

struct Header {
  char kind = 0;  // '1' to '6'
  uint32_t width = 0;
  uint32_t height = 0;
  uint32_t maximum = 1;

  uint32_t channels() const { return kind == '3' || kind == '6' ? 3 : 1; }
};

bool isSpace(uint8_t byte) {
  return std::string_view(" \t\n\v\f\r").find(static_cast<char>(byte)) != std::string_view::npos;
}

bool isDigit(uint8_t byte) { return byte >= '0' && byte <= '9'; }

/// Skips white space and comments, which run from '#' to the end of their line, and gives the
/// byte after them.
uint8_t nextByte(ByteReader& reader) {
  uint8_t byte = reader.u8();
  while (isSpace(byte) || byte == '#') {
    if (byte == '#') {
      while (byte != '\n' && byte != '\r') byte = reader.u8();
    }
    byte = reader.u8();
  }
  return byte;
}

/// Reads a decimal number and the one byte after it, if there is one.
uint32_t readNumber(ByteReader& reader) {
  uint8_t byte = nextByte(reader);
  if (!isDigit(byte)) throw DamagedFile("a number is expected");
  uint32_t value = 0;
  while (isDigit(byte)) {
    if (value > 99'999'999) throw DamagedFile("a number is too large");
    value = value * 10 + (byte - uint32_t{'0'});
    byte = reader.left() > 0 ? reader.u8() : uint8_t{' '};
  }
  if (!isSpace(byte)) throw DamagedFile("a number is followed by something else");
  return value;
}

Header readHeader(ByteReader& reader) {
  Header header;
  reader.skip(1);
  header.kind = static_cast<char>(reader.u8());
  if (!isSpace(reader.u8())) throw DamagedFile("white space is expected after the first letters");
  header.width = readNumber(reader);
  header.height = readNumber(reader);
  checkSize(header.width, header.height);
  if (header.kind != '1' && header.kind != '4') header.maximum = readNumber(reader);
  if (header.maximum < 1 || header.maximum > 65535) {
    throw DamagedFile("the largest sample has to be 1 to 65535");
  }
  return header;
}

/// Refuses a short file before memory for its pixels is asked for.
void checkLength(const Header& header, size_t left) {
  const uint64_t samples = uint64_t{header.width} * header.height * header.channels();
  uint64_t needed = samples;
  if (header.kind == '2' || header.kind == '3') needed = 2 * samples - 1;
  if (header.kind == '4') needed = (header.width + uint64_t{7}) / 8 * header.height;
  if (header.kind >= '5' && header.maximum > 255) needed = 2 * samples;
  if (needed > left) throw EndOfBytes();
}

/// 1 is black in both kinds of black and white pictures.
uint32_t readDigit(ByteReader& reader) {
  const uint8_t byte = nextByte(reader);
  if (byte != '0' && byte != '1') throw DamagedFile("0 or 1 is expected");
  return byte == '1' ? 0 : 1;
}

uint32_t readSample(ByteReader& reader, const Header& header) {
  switch (header.kind) {
    case '1':
      return readDigit(reader);
    case '2':
    case '3':
      return readNumber(reader);
    default:
      return header.maximum > 255 ? reader.u16be() : reader.u8();
  }
}

uint32_t readByteSample(ByteReader& reader, const Header& header) {
  const uint32_t sample = readSample(reader, header);
  if (sample > header.maximum) throw DamagedFile("a sample is larger than the largest allowed");
  return (sample * 255 + header.maximum / 2) / header.maximum;
}

void readPackedRow(ByteReader& reader, std::span<uint32_t> row) {
  const auto bytes = reader.take((row.size() + 7) / 8);
  for (size_t x = 0; x < row.size(); ++x) {
    const bool black = (bytes[x / 8] >> (7 - x % 8) & 1) != 0;
    row[x] = black ? 0x000000 : 0xFFFFFF;
  }
}

void readRow(ByteReader& reader, const Header& header, std::span<uint32_t> row) {
  if (header.kind == '4') return readPackedRow(reader, row);
  for (uint32_t& pixel : row) {
    const uint32_t red = readByteSample(reader, header);
    const bool grey = header.channels() == 1;
    const uint32_t green = grey ? red : readByteSample(reader, header);
    const uint32_t blue = grey ? red : readByteSample(reader, header);
    pixel = red << 16 | green << 8 | blue;
  }
}

}  // namespace

Image readPnm(std::span<const uint8_t> bytes) {
  ByteReader reader(bytes);
  const Header header = readHeader(reader);
  checkLength(header, reader.left());
  Image image{static_cast<int32_t>(header.width), static_cast<int32_t>(header.height), false, {}};
  image.pixels.resize(size_t{header.width} * header.height);
  for (size_t y = 0; y < header.height; ++y) {
    readRow(reader, header, std::span(image.pixels).subspan(y * header.width, header.width));
  }
  return image;
}

}  // namespace host
