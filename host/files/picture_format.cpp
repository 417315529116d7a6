#include "host/files/picture_format.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

#include "host/files/byte_reader.h"
#include "host/files/pict_file.h"
#include "host/files/picture_limits.h"

namespace host {

namespace {

using Bytes = std::span<const uint8_t>;

[[noreturn]] void unsupported(const std::string& kind) {
  throw FileFault(kind + " is not supported; save the picture as an ordinary PNG and try again");
}

// ---- PNG -----------------------------------------------------------------------------------

constexpr std::array<uint8_t, 8> kPngSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

constexpr std::array<uint32_t, 256> makeCrcTable() {
  std::array<uint32_t, 256> table{};
  for (uint32_t byte = 0; byte < 256; ++byte) {
    uint32_t crc = byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc & 1) != 0 ? crc >> 1 ^ 0xEDB88320 : crc >> 1;
    table[byte] = crc;
  }
  return table;
}

uint32_t crc32(Bytes bytes) {
  static constexpr std::array<uint32_t, 256> kTable = makeCrcTable();
  uint32_t crc = 0xFFFFFFFF;
  for (const uint8_t byte : bytes) crc = crc >> 8 ^ kTable[(crc ^ byte) & 0xFF];
  return ~crc;
}

void checkPng(Bytes bytes) {
  ByteReader reader(bytes);
  reader.skip(kPngSignature.size());
  std::string type;
  while (type != "IEND") {
    const uint64_t length = reader.u32be();
    const Bytes typeAndData = reader.take(4 + length);
    type.assign(typeAndData.begin(), typeAndData.begin() + 4);
    if (reader.u32be() != crc32(typeAndData)) throw DamagedFile("a checksum does not fit");
  }
}

// ---- JPEG ----------------------------------------------------------------------------------

constexpr uint8_t kStartOfImage = 0xD8;
constexpr uint8_t kEndOfImage = 0xD9;
constexpr uint8_t kStartOfScan = 0xDA;
constexpr uint8_t kHuffmanTables = 0xC4;

/// The decoder reserves 256 codes for a table and does not check that they suffice.
void checkHuffmanTables(Bytes segment) {
  ByteReader reader(segment);
  while (reader.left() > 0) {
    reader.skip(1);  // class and number of the table
    uint32_t codes = 0;
    for (const uint8_t count : reader.take(16)) codes += count;
    if (codes > 256) throw DamagedFile("a code table is too long");
    reader.skip(codes);
  }
}

uint8_t nextMarker(ByteReader& reader) {
  while (reader.u8() != 0xFF) {
  }
  uint8_t marker = 0xFF;
  while (marker == 0xFF) marker = reader.u8();
  return marker;
}

/// Skips the coded pixels of a scan: in them, 0xFF is followed by 0 or a restart marker (0xD0 to
/// 0xD7). Gives the marker that ends them.
uint8_t skipScan(ByteReader& reader) {
  uint8_t marker = 0;
  while (marker == 0 || (marker >= 0xD0 && marker <= 0xD7)) marker = nextMarker(reader);
  return marker;
}

void checkJpeg(Bytes bytes) {
  ByteReader reader(bytes);
  reader.skip(2);  // the start of image
  uint8_t marker = nextMarker(reader);
  while (marker != kEndOfImage) {
    const uint32_t length = reader.u16be();
    if (length < 2) throw DamagedFile("a segment has no length");
    const Bytes segment = reader.take(length - 2);
    if (marker == kHuffmanTables) checkHuffmanTables(segment);
    marker = marker == kStartOfScan ? skipScan(reader) : nextMarker(reader);
  }
}

// ---- BMP -----------------------------------------------------------------------------------

constexpr uint32_t kBmpFileHeader = 14;

struct BmpHeader {
  uint32_t pixelOffset = 0;
  uint32_t infoSize = 0;
  int64_t width = 0;
  int64_t height = 0;  // negative if the rows run downwards
  uint32_t bits = 0;
  uint32_t compression = 0;
};

BmpHeader readBmpHeader(Bytes bytes) {
  ByteReader reader(bytes);
  BmpHeader header;
  reader.skip(10);
  header.pixelOffset = reader.u32le();
  header.infoSize = reader.u32le();
  const bool old = header.infoSize == 12;
  header.width = old ? reader.u16le() : static_cast<int32_t>(reader.u32le());
  header.height = old ? reader.u16le() : static_cast<int32_t>(reader.u32le());
  reader.skip(2);  // planes
  header.bits = reader.u16le();
  if (!old) header.compression = reader.u32le();
  return header;
}

void checkBmpKind(const BmpHeader& header) {
  constexpr std::array<uint32_t, 4> kInfoSizes = {40, 56, 108, 124};
  constexpr std::array<uint32_t, 6> kBits = {1, 4, 8, 16, 24, 32};
  const bool oldWithoutPalette = header.infoSize == 12 && header.bits == 24;
  if (std::ranges::count(kInfoSizes, header.infoSize) == 0 && !oldWithoutPalette) {
    unsupported("this kind of BMP header");
  }
  if (std::ranges::count(kBits, header.bits) == 0) throw DamagedFile("wrong bits per pixel");
  const bool masked = header.compression == 3 && (header.bits == 16 || header.bits == 32);
  if (header.compression != 0 && !masked) unsupported("this compression of BMP");
}

void checkBmpPalette(const BmpHeader& header) {
  if (header.bits > 8) return;
  const int64_t palette =
      int64_t{header.pixelOffset} - kBmpFileHeader - static_cast<int64_t>(header.infoSize);
  if (palette < 4 || palette / 4 > 256) throw DamagedFile("the palette is missing");
}

void checkBmp(Bytes bytes) {
  const BmpHeader header = readBmpHeader(bytes);
  checkBmpKind(header);
  checkBmpPalette(header);
  if (header.width < 0) throw DamagedFile("the width is negative");
  const auto rows = static_cast<uint64_t>(std::abs(header.height));
  checkSize(static_cast<uint64_t>(header.width), rows);
  const uint64_t rowBits = static_cast<uint64_t>(header.width) * header.bits;
  const uint64_t paddedRow = (rowBits + 31) / 32 * 4;
  const uint64_t lastRow = (rowBits + 7) / 8;  // some writers leave out its padding
  ByteReader(bytes).skip(header.pixelOffset + paddedRow * (rows - 1) + lastRow);
}

// ---- GIF -----------------------------------------------------------------------------------

void skipSubBlocks(ByteReader& reader) {
  for (uint8_t size = reader.u8(); size != 0; size = reader.u8()) reader.skip(size);
}

void skipColorTable(ByteReader& reader, uint8_t flags) {
  if ((flags & 0x80) != 0) reader.skip(3U * (2U << (flags & 7)));
}

/// Only the first frame is decoded, so only that has to be whole.
void checkGif(Bytes bytes) {
  constexpr uint8_t kExtension = 0x21;
  constexpr uint8_t kFrame = 0x2C;
  ByteReader reader(bytes);
  reader.skip(10);  // signature and size
  const uint8_t screenFlags = reader.u8();
  reader.skip(2);  // background and aspect
  skipColorTable(reader, screenFlags);
  uint8_t block = reader.u8();
  for (; block == kExtension; block = reader.u8()) {
    reader.skip(1);  // kind of extension
    skipSubBlocks(reader);
  }
  if (block != kFrame) throw DamagedFile("there is no picture in it");
  reader.skip(8);  // the frame's place
  skipColorTable(reader, reader.u8());
  reader.skip(1);  // code size
  skipSubBlocks(reader);
}

// ---- TGA -----------------------------------------------------------------------------------

struct TgaHeader {
  uint8_t idLength = 0;
  uint8_t paletteKind = 0;
  uint8_t pictureKind = 0;
  uint16_t paletteStart = 0;
  uint16_t paletteLength = 0;
  uint8_t paletteBits = 0;
  uint16_t width = 0;
  uint16_t height = 0;
  uint8_t bits = 0;
};

TgaHeader readTgaHeader(ByteReader& reader) {
  TgaHeader header;
  header.idLength = reader.u8();
  header.paletteKind = reader.u8();
  header.pictureKind = reader.u8();
  header.paletteStart = reader.u16le();
  header.paletteLength = reader.u16le();
  header.paletteBits = reader.u8();
  reader.skip(4);  // origin
  header.width = reader.u16le();
  header.height = reader.u16le();
  header.bits = reader.u8();
  reader.skip(1);  // order of the rows
  return header;
}

bool isTgaDepth(uint8_t bits) {
  return bits == 8 || bits == 15 || bits == 16 || bits == 24 || bits == 32;
}

bool isPlausible(const TgaHeader& header) {
  const uint8_t kind = header.pictureKind & 7;
  const bool runs = header.pictureKind == (kind | 8);
  if (header.pictureKind != kind && !runs) return false;
  if (header.width == 0 || header.height == 0) return false;
  if (header.paletteKind == 1) {
    return kind == 1 && isTgaDepth(header.paletteBits) && (header.bits == 8 || header.bits == 16);
  }
  return header.paletteKind == 0 && (kind == 2 || kind == 3) && isTgaDepth(header.bits);
}

bool looksLikeTga(Bytes bytes) {
  if (bytes.size() < 18) return false;
  ByteReader reader(bytes);
  return isPlausible(readTgaHeader(reader));
}

void skipRuns(ByteReader& reader, uint64_t pixels, uint32_t pixelBytes) {
  while (pixels > 0) {
    const uint8_t packet = reader.u8();
    const uint32_t count = (packet & 127U) + 1;
    reader.skip((packet & 128) != 0 ? pixelBytes : count * pixelBytes);
    pixels -= std::min<uint64_t>(pixels, count);
  }
}

void checkTga(Bytes bytes) {
  ByteReader reader(bytes);
  const TgaHeader header = readTgaHeader(reader);
  checkSize(header.width, header.height);
  reader.skip(header.idLength);
  if (header.paletteKind == 1) {
    // The decoder misplaces such a palette.
    if (header.paletteStart != 0) unsupported("a TGA palette that does not start at 0");
    if (header.paletteLength == 0) throw DamagedFile("the palette is missing");
    reader.skip(uint64_t{header.paletteLength} * ((header.paletteBits + 7U) / 8));
  }
  const uint64_t pixels = uint64_t{header.width} * header.height;
  const uint32_t pixelBytes = (header.bits + 7U) / 8;
  if ((header.pictureKind & 8) != 0) {
    skipRuns(reader, pixels, pixelBytes);
  } else {
    reader.skip(pixels * pixelBytes);
  }
}

bool startsWith(Bytes bytes, std::string_view text) {
  return bytes.size() >= text.size() &&
         std::equal(text.begin(), text.end(), bytes.begin(),
                    [](char a, uint8_t b) { return static_cast<uint8_t>(a) == b; });
}

}  // namespace

std::string_view formatName(PictureFormat format) {
  constexpr std::array<std::string_view, 8> kNames = {"",    "PNG", "JPEG", "BMP",
                                                      "GIF", "TGA", "PNM",  "PICT"};
  return kNames[static_cast<size_t>(format)];
}

PictureFormat detectFormat(Bytes bytes) {
  // Its first bytes are a part of its size, or anybody's header, and may be those
  // of any other format.
  if (holdsPictVersion2(bytes)) return PictureFormat::kPict;
  if (bytes.size() >= kPngSignature.size() &&
      std::equal(kPngSignature.begin(), kPngSignature.end(), bytes.begin())) {
    return PictureFormat::kPng;
  }
  if (bytes.size() >= 3 && bytes[0] == 0xFF && bytes[1] == kStartOfImage && bytes[2] == 0xFF) {
    return PictureFormat::kJpeg;
  }
  if (startsWith(bytes, "GIF87a") || startsWith(bytes, "GIF89a")) return PictureFormat::kGif;
  if (startsWith(bytes, "BM")) return PictureFormat::kBmp;
  if (bytes.size() >= 3 && bytes[0] == 'P' && bytes[1] >= '1' && bytes[1] <= '6') {
    return PictureFormat::kPnm;
  }
  if (pictDataIn(bytes)) return PictureFormat::kPict;
  return looksLikeTga(bytes) ? PictureFormat::kTga : PictureFormat::kUnknown;
}

void checkStructure(PictureFormat format, Bytes bytes) {
  switch (format) {
    case PictureFormat::kPng:
      return checkPng(bytes);
    case PictureFormat::kJpeg:
      return checkJpeg(bytes);
    case PictureFormat::kBmp:
      return checkBmp(bytes);
    case PictureFormat::kGif:
      return checkGif(bytes);
    case PictureFormat::kTga:
      return checkTga(bytes);
    case PictureFormat::kPnm:
    case PictureFormat::kPict:
    case PictureFormat::kUnknown:
      return;  // read by readers of our own, or not at all
  }
}

bool alphaMayBePadding(PictureFormat format, Bytes bytes) {
  if (format == PictureFormat::kGif) return true;
  return format == PictureFormat::kBmp && readBmpHeader(bytes).compression == 0;
}

}  // namespace host
