#include "platform/standin/pict_region.h"

#include <iterator>

#include "platform/standin/pict_canvas.h"
#include "platform/standin/pict_format.h"

namespace standin {
namespace {

/// Coordinates up to the one that ends a row; throws DamagedPict unless they ascend.
Edges readFlips(PictReader& reader) {
  Edges flips;
  for (int32_t x = reader.readCoordinate(); x != pict::kRegionEnd; x = reader.readCoordinate()) {
    if (!flips.empty() && x <= flips.back()) throw DamagedPict();
    flips.push_back(x);
  }
  if (flips.size() % 2 != 0) throw DamagedPict();
  return flips;
}

std::vector<PictBand> readBands(PictReader reader) {
  std::vector<PictBand> bands;
  for (int32_t y = reader.readCoordinate(); y != pict::kRegionEnd; y = reader.readCoordinate()) {
    if (!bands.empty() && y <= bands.back().top) throw DamagedPict();
    bands.push_back({y, readFlips(reader)});
  }
  return bands;
}

Edges intersectionOf(const Edges& a, const Edges& b) {
  Edges both;
  for (size_t i = 0, j = 0; i < a.size() && j < b.size();) {
    const int32_t begin = std::max(a[i], b[j]);
    const int32_t end = std::min(a[i + 1], b[j + 1]);
    if (begin < end) both.insert(both.end(), {begin, end});
    (a[i + 1] < b[j + 1] ? i : j) += 2;
  }
  return both;
}

}  // namespace

PictRegion regionOf(const Box& box) {
  if (box.isEmpty()) return {box, {}};
  const Edges sides = {box.left, box.right};
  return {box, {{box.top, sides}, {box.bottom, sides}}};
}

PictRegion readRegion(PictReader& reader) {
  const uint16_t size = reader.read16();
  if (size < pict::kRectangularRegionSize) throw DamagedPict();
  const Box bounds = reader.readBox();
  const auto rows = reader.take(size - size_t{pict::kRectangularRegionSize});
  if (rows.empty()) return regionOf(bounds);
  return {bounds, readBands(PictReader(rows))};
}

RegionRows::RegionRows(const PictRegion& region, const Box& space, const Canvas& canvas,
                       PictWork& work)
    : region_(region), space_(space), canvas_(canvas), work_(work) {}

bool RegionRows::advanceTo(int32_t y) {
  const size_t before = nextBand_;
  const auto& bands = region_.bands;
  while (nextBand_ < bands.size() && rowOnCanvas(bands[nextBand_].top, space_, canvas_) <= y) {
    const Edges& flips = bands[nextBand_++].flips;
    work_.spend(edges_.size() + flips.size() + 1);
    Edges next;
    std::ranges::set_symmetric_difference(edges_, flips, std::back_inserter(next));
    edges_ = std::move(next);
  }
  if (nextBand_ == before) return false;
  onCanvas_.clear();
  for (const int32_t x : edges_) onCanvas_.push_back(columnOnCanvas(x, space_, canvas_));
  return true;
}

ClipRows::ClipRows(const std::vector<const PictRegion*>& regions, const Box& space,
                   const Canvas& canvas, PictWork& work)
    : work_(work), bounds_{0, 0, canvas.width, canvas.height} {
  for (const PictRegion* region : regions) {
    regions_.emplace_back(*region, space, canvas, work);
    bounds_ = intersect(bounds_, boxOnCanvas(region->bounds, space, canvas));
  }
}

const Edges& ClipRows::at(int32_t y) {
  bool isOther = false;
  for (RegionRows& region : regions_) isOther = region.advanceTo(y) || isOther;
  if (!isOther) return edges_;
  edges_ = {bounds_.left, bounds_.right};
  for (const RegionRows& region : regions_) {
    work_.spend(edges_.size() + region.edges().size());
    edges_ = intersectionOf(edges_, region.edges());
  }
  return edges_;
}

}  // namespace standin
