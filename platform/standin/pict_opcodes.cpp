// The lengths of the opcodes of version 2; those of version 1 are among them, with
// data of the same length.

#include <iterator>

#include "platform/standin/pict_rows.h"

namespace standin {
namespace {

/// How an opcode's data tells its length.
enum class Kind : uint8_t {
  Fixed,        ///< `length` bytes
  ByteCounted,  ///< `length` bytes, of which the last counts what follows
  WordCounted,  ///< the same with the last two bytes
  LongCounted,  ///< the same with the last four bytes
  Sized,        ///< a word counts all, itself included
  PixelPattern,
  Unknown,
};

/// Opcodes up to `last`, from the entry before on.
struct Lengths {
  uint16_t last;
  Kind kind;
  uint8_t length;
};

constexpr Lengths lengths[] = {
    {0x0000, Kind::Fixed, 0},        {0x0001, Kind::Sized, 0},  // clip region
    {0x0002, Kind::Fixed, 8},                                   // background pattern
    {0x0003, Kind::Fixed, 2},                                   // font
    {0x0004, Kind::Fixed, 1},                                   // text face
    {0x0005, Kind::Fixed, 2},                                   // text mode
    {0x0007, Kind::Fixed, 4},                                   // extra space, pen size
    {0x0008, Kind::Fixed, 2},                                   // pen mode
    {0x000A, Kind::Fixed, 8},                                   // pen and fill pattern
    {0x000C, Kind::Fixed, 4},                                   // oval size, origin
    {0x000D, Kind::Fixed, 2},                                   // text size
    {0x000F, Kind::Fixed, 4},                                   // colours
    {0x0010, Kind::Fixed, 8},                                   // text ratio
    {0x0011, Kind::Fixed, 2},                                   // version
    {0x0014, Kind::PixelPattern, 0}, {0x0016, Kind::Fixed, 2},  // fractions of pen and characters
    {0x0019, Kind::Fixed, 0},        {0x001B, Kind::Fixed, 6},  // RGB colours
    {0x001C, Kind::Fixed, 0},        {0x001D, Kind::Fixed, 6},  // highlight colour
    {0x001E, Kind::Fixed, 0},        {0x001F, Kind::Fixed, 6},  // arithmetic modes' colour
    {0x0020, Kind::Fixed, 8},                                   // lines
    {0x0021, Kind::Fixed, 4},        {0x0022, Kind::Fixed, 6},       {0x0023, Kind::Fixed, 2},
    {0x0027, Kind::WordCounted, 2},  {0x0028, Kind::ByteCounted, 5},  // text
    {0x002A, Kind::ByteCounted, 2},  {0x002B, Kind::ByteCounted, 3}, {0x002F, Kind::WordCounted, 2},
    {0x0037, Kind::Fixed, 8},                                     // rectangles
    {0x003F, Kind::Fixed, 0},        {0x0047, Kind::Fixed, 8},    // rounded rectangles
    {0x004F, Kind::Fixed, 0},        {0x0057, Kind::Fixed, 8},    // ovals
    {0x005F, Kind::Fixed, 0},        {0x0067, Kind::Fixed, 12},   // arcs
    {0x006F, Kind::Fixed, 4},        {0x0077, Kind::Sized, 0},    // polygons
    {0x007F, Kind::Fixed, 0},        {0x0087, Kind::Sized, 0},    // regions
    {0x008F, Kind::Fixed, 0},        {0x0091, Kind::Unknown, 0},  // pixels
    {0x0097, Kind::WordCounted, 2},  {0x009B, Kind::Unknown, 0},  // pixels
    {0x009F, Kind::WordCounted, 2},  {0x00A0, Kind::Fixed, 2},    // comments
    {0x00A1, Kind::WordCounted, 4},  {0x00AF, Kind::WordCounted, 2}, {0x00CF, Kind::Fixed, 0},
    {0x00FE, Kind::LongCounted, 4},  {0x00FF, Kind::Unknown, 0},  // the end
};

constexpr uint16_t kFirstByHighByte = 0x0100;
constexpr uint16_t kFirstReservedEmpty = 0x8000;
constexpr uint16_t kFirstReservedLong = 0x8100;

Lengths lengthsOf(uint16_t opcode) {
  if (opcode >= kFirstReservedLong) return {opcode, Kind::LongCounted, 4};
  if (opcode >= kFirstReservedEmpty) return {opcode, Kind::Fixed, 0};
  if (opcode >= kFirstByHighByte) {
    return {opcode, Kind::Fixed, static_cast<uint8_t>(2 * (opcode >> 8))};
  }
  const auto* entry = std::begin(lengths);
  while (entry->last < opcode) ++entry;
  return *entry;
}

void skipRest(PictReader& reader, size_t size, size_t read) {
  if (size < read) throw DamagedPict();
  reader.skip(size - read);
}

/// A pattern of one bit, and a colour that it stands for or a pixel map.
void skipPixelPattern(PictReader& reader) {
  constexpr uint16_t kDithered = 2;
  const bool isDithered = reader.read16() == kDithered;
  reader.skip(8);
  if (isDithered) return reader.skip(6);
  const PictMap map = readPictMap(reader, PictMapKind::Packed);
  PictRows rows(reader, map);
  for (int32_t y = map.bounds.top; y < map.bounds.bottom; ++y) rows.next();
}

}  // namespace

void skipOpcodeData(PictReader& reader, uint16_t opcode) {
  const Lengths found = lengthsOf(opcode);
  const auto before = [&](size_t countSize) { reader.skip(found.length - countSize); };
  switch (found.kind) {
    case Kind::Fixed:
      return reader.skip(found.length);
    case Kind::ByteCounted:
      before(1);
      return reader.skip(reader.read8());
    case Kind::WordCounted:
      before(2);
      return reader.skip(reader.read16());
    case Kind::LongCounted:
      before(4);
      return reader.skip(reader.read32());
    case Kind::Sized:
      return skipRest(reader, reader.read16(), 2);
    case Kind::PixelPattern:
      return skipPixelPattern(reader);
    case Kind::Unknown:
      throw DamagedPict();
  }
}

}  // namespace standin
