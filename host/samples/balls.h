// Shiny balls on a bright table: the stage of several samples.
#pragma once

#include <span>

#include "host/samples/drawing.h"

namespace host {

/// A ball as seen: its middle and radius on a stage that reaches from -1.5 to 1.5 across and from
/// -1 to 1 down.
struct Ball {
  Place middle;
  double radius = 0;
  Paint color;
};

/// Maps places of a picture to the stage, as large as fits, and shades it.
class BallStage {
 public:
  /// balls (which have to outlive the stage) in the order of painting, far ones first.
  BallStage(const Frame& frame, std::span<const Ball> balls);

  Place toStage(Place place) const { return {place.x / scale_, place.y / scale_}; }

  /// The colour at a place of the stage: the balls over the table with their shadows.
  Paint colorAt(Place place) const;

 private:
  Paint tableAt(Place place) const;

  std::span<const Ball> balls_;
  double scale_;  // a step on the stage, measured in the picture
  double pixel_;  // the side of a pixel on the stage
};

}  // namespace host
