// The frame that all operations share: open the pictures, make the new one,
// run over the rows, give everything back.
//
//   readPictures    opens readers on one or more pictures and works with them
//   makePicture     the same, and makes a new picture of the first one's size
//   filterPictures  the same, and runs a row operation over an area of it
//   drawNewPicture  makes a new picture without reading one
//
// An operation that has to do something in between takes the one above and calls
// what the lower one is made of.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "plugin/pixels/area.h"
#include "plugin/pixels/reader.h"
#include "plugin/pixels/streamed_rows.h"
#include "plugin/pixels/writer.h"

namespace qrz {

template <size_t Count>
using Pictures = std::array<HostPicture, Count>;

namespace detail {

/// Opens all readers on one path, in order. False if the first one refuses:
/// then it is the other path's turn. Otherwise the matter is settled, also when
/// a further picture cannot be read. Readers close in the reverse order.
template <typename Path, size_t Count, typename Work>
bool readOnPath(const Pictures<Count>& pictures, Work& work) {
  std::array<PictureReader<Path>, Count> readers;
  if (!readers[0].open(pictures[0])) return false;
  for (size_t i = 1; i < Count; ++i) {
    if (!readers[i].open(pictures[i])) return true;
  }
  work(Path(), readers);
  return true;
}

}  // namespace detail

/// Opens a reader on each picture, on the first path or else on the second, and
/// calls `work(Path(), readers)` with an array of `PictureReader<Path>`. Does
/// not call it if a picture cannot be read.
template <typename First = GWorldPath, typename Second = RowTablePath, size_t Count, typename Work>
void readPictures(const Pictures<Count>& pictures, Work work) {
  if (!detail::readOnPath<First>(pictures, work)) detail::readOnPath<Second>(pictures, work);
}

/// Size rule of the operations with one source: every size will do.
struct AnySize {
  template <typename Readers>
  bool operator()(const Readers& /*readers*/) const {
    return true;
  }
};

/// Size rule of the operations that pair the pixels of equal pictures.
struct EqualSizes {
  template <typename Readers>
  bool operator()(const Readers& readers) const {
    for (const auto& reader : readers) {
      if (reader.width() != readers[0].width() || reader.height() != readers[0].height()) {
        return false;
      }
    }
    return true;
  }
};

/// What happens to a new picture while its sources are still open: nothing more.
struct NothingMore {
  void operator()(HostPicture /*made*/) const {}
};

/// Makes a new picture of the size of the first one, with one reference for the
/// caller: opens the readers, tests `sizesFit(readers)`, creates the writer,
/// calls `work(Path(), readers, writer)` and, with the finished picture and
/// before the readers close, `whenMade(picture)`. Null if a picture cannot be
/// read, the sizes do not fit, no new picture can be written or `work` gives it
/// up by returning false.
template <size_t Count, typename SizeRule, typename Work, typename WhenMade = NothingMore>
HostPicture makePicture(const Pictures<Count>& pictures, SizeRule sizesFit, Work work,
                        WhenMade whenMade = {}) {
  HostPicture result = nullptr;
  readPictures(pictures, [&](auto path, const auto& readers) {
    if (!sizesFit(readers)) return;
    PictureWriter<decltype(path)> writer;
    if (!writer.create(readers[0].width(), readers[0].height())) return;
    if (!work(path, readers, writer)) return;
    result = writer.finish();
    whenMade(result);
  });
  return result;
}

namespace detail {

/// `count` pixels of every source, from (x, y) on, for the row operation.
template <typename Format, typename Readers, typename RowOperation, size_t... Index>
void filterRow(const Readers& readers, int32_t x, int32_t y, PixelWord* destination, int32_t count,
               const RowOperation& operation, std::index_sequence<Index...> /*sources*/) {
  operation.template row<Format>(destination, count, (readers[Index].row(y) + x)...);
}

/// Pixels on their way past the caches, which hold them for as long as that takes.
constexpr int32_t kStreamedAtOnce = 1024;

}  // namespace detail

/// Runs the operation over the rows of an area, from the top down:
///
///   operation.row<Format>(destination, count, source0, source1, …)
///
/// with `count` pixels, of a row or of a part of it, at the same place of every
/// picture. Sources and destination never overlap. Pixels outside the area are not
/// written.
template <typename Path, size_t Count, typename RowOperation>
void filterRows(const std::array<PictureReader<Path>, Count>& readers,
                const PictureWriter<Path>& writer, const Area& area,
                const RowOperation& operation) {
  if (area.x0 >= area.x1) return;
  const auto filter = [&](int32_t x, int32_t y, PixelWord* destination, int32_t count) {
    detail::filterRow<typename Path::Format>(readers, x, y, destination, count, operation,
                                             std::make_index_sequence<Count>());
  };
  const int32_t width = area.x1 - area.x0;
  const int64_t pixels = int64_t{width} * (area.y1 - area.y0);
  constexpr int64_t kBytesPerPixel = sizeof(PixelWord) * (Count + 1);
  if (pixels * kBytesPerPixel <= cacheBytes) {
    for (int32_t y = area.y0; y < area.y1; ++y) {
      filter(area.x0, y, writer.row(y) + area.x0, width);
    }
    return;
  }
  PixelWord filtered[detail::kStreamedAtOnce];
  for (int32_t y = area.y0; y < area.y1; ++y) {
    for (int32_t x = area.x0; x < area.x1; x += detail::kStreamedAtOnce) {
      const int32_t count = std::min(area.x1 - x, detail::kStreamedAtOnce);
      filter(x, y, filtered, count);
      streamPixels(writer.row(y) + x, filtered, count);
    }
  }
  endStream();
}

/// Makes a new picture of the size of the first one and filters an area of it,
/// which `areaRule.within(width, height)` gives. Null as makePicture says.
template <size_t Count, typename SizeRule, typename AreaRule, typename RowOperation,
          typename WhenMade = NothingMore>
HostPicture filterPictures(const Pictures<Count>& pictures, SizeRule sizesFit,
                           const AreaRule& areaRule, const RowOperation& operation,
                           WhenMade whenMade = {}) {
  const auto work = [&](auto /*path*/, const auto& readers, auto& writer) {
    filterRows(readers, writer, areaRule.within(readers[0].width(), readers[0].height()),
               operation);
    return true;
  };
  return makePicture(pictures, sizesFit, work, whenMade);
}

/// filterPictures for the operations with one source.
template <typename AreaRule, typename RowOperation, typename WhenMade = NothingMore>
HostPicture filterPicture(HostPicture picture, const AreaRule& areaRule,
                          const RowOperation& operation, WhenMade whenMade = {}) {
  return filterPictures(Pictures<1>{picture}, AnySize(), areaRule, operation, whenMade);
}

namespace detail {

template <typename Path, typename Draw>
HostPicture drawOnPath(int32_t width, int32_t height, Draw& draw) {
  PictureWriter<Path> writer;
  if (!writer.create(width, height)) return nullptr;
  draw(Path(), writer);
  return writer.finish();
}

}  // namespace detail

/// Makes a new picture of width × height pixels, on the GWorldPath or else on
/// the RowTablePath, and calls `draw(Path(), writer)`; one reference for the
/// caller. Null if no new picture can be written.
template <typename Draw>
HostPicture drawNewPicture(int32_t width, int32_t height, Draw draw) {
  HostPicture picture = detail::drawOnPath<GWorldPath>(width, height, draw);
  return picture != nullptr ? picture : detail::drawOnPath<RowTablePath>(width, height, draw);
}

}  // namespace qrz
