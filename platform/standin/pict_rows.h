// The rows of bitmaps and pixel maps in PICT data.
#pragma once

#include "platform/standin/pict_map.h"

namespace standin {

/// The rows of a map, from the top one on, as words 0x00RRGGBB.
class PictRows {
 public:
  /// The reader stands where the rows start. Throws DamagedPict if there can be no
  /// such rows.
  PictRows(PictReader& reader, const PictMap& map);

  /// As many words as the map is wide, valid until the next call. Throws
  /// DamagedPict.
  std::span<const uint32_t> next();

 private:
  enum class Packing : uint8_t { None, Bytes, Words };
  enum class Layout : uint8_t {
    Indexed,
    Words555,
    Padded,  ///< a pad byte, red, green, blue
    Triples,
    Planes,  ///< the whole row of one component after the other; the last three are colours
  };

  void chooseDirect16();
  void chooseDirect32();
  [[nodiscard]] size_t rowCount(PictReader& reader) const;
  [[nodiscard]] bool looksPacked(PictReader reader) const;
  std::span<const uint8_t> nextBytes();

  PictReader& reader_;
  const PictMap& map_;
  Layout layout_ = Layout::Indexed;
  Packing packing_ = Packing::Bytes;
  size_t size_;  ///< bytes of a row before they are packed
  std::vector<uint8_t> unpacked_;
  std::vector<uint32_t> words_;
};

}  // namespace standin
