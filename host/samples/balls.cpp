#include "host/samples/balls.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

struct Direction {
  double x;
  double y;  // down
  double z;  // towards the eye
};

constexpr Direction kLight = {-0.48, -0.64, 0.60};
constexpr Direction kHalfway = {-0.268, -0.358, 0.894};  // between the light and the eye

double dot(Direction a, Direction b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

/// The direction of the ball's surface where it shows at the given place.
Direction surface(const Ball& ball, Place place) {
  const double x = (place.x - ball.middle.x) / ball.radius;
  const double y = (place.y - ball.middle.y) / ball.radius;
  return {x, y, std::sqrt(std::max(0.0, 1 - x * x - y * y))};
}

Paint ballColor(const Ball& ball, Place place) {
  const Direction normal = surface(ball, place);
  const double facing = dot(normal, kLight);
  const double lit = smoothStep(-0.35, 1.05, facing);
  Paint color = ball.color * mix(0.30, 1.12, lit);
  const double bounce = smoothStep(0.2, 1, normal.y) * (1 - lit);
  color = mix(color, ball.color * 0.75 + grey(0.16), 0.75 * bounce);
  const double rim = std::pow(1 - normal.z, 3.0);
  color = lighten(color, grey(0.30 * rim * (0.4 + 0.6 * lit)));
  const double gleam = std::max(0.0, dot(normal, kHalfway));
  return lighten(color, grey(0.85 * std::pow(gleam, 90.0) + 0.16 * std::pow(gleam, 12.0)));
}

/// How dark the ball's shadow makes the table, from 0 to 1.
double shadowAt(const Ball& ball, Place place) {
  const double floor = ball.middle.y + 0.86 * ball.radius;
  const double x = (place.x - ball.middle.x) / ball.radius;
  const double y = (place.y - floor) / ball.radius;
  if (std::abs(y) > 0.5 || x < -1 || x > 2.5) return 0;  // beyond both of its parts
  const double touching = length(x * 1.25 - 0.15, y * 3.6);
  const double cast = length((x - 0.75) * 0.72, (y + 0.02) * 2.9);
  return std::max(0.62 * smoothStep(1.25, 0.1, touching), 0.34 * smoothStep(1.25, 0.1, cast));
}

}  // namespace

BallStage::BallStage(const Frame& frame, std::span<const Ball> balls)
    : balls_(balls),
      scale_(std::min(frame.halfWidth() / 1.5, frame.halfHeight())),
      pixel_(frame.pixel() / scale_) {}

Paint BallStage::tableAt(Place place) const {
  const double wall = smoothStep(-0.05, -0.55, place.y);
  const double light = std::exp(-0.35 * ((place.x + 0.6) * (place.x + 0.6) + place.y * place.y));
  const Paint table = mix({0.74, 0.73, 0.72}, {0.97, 0.96, 0.94}, light);
  Paint color = mix(table, table * 0.86, wall);
  for (const Ball& ball : balls_) color = color * (1 - shadowAt(ball, place) * (1 - wall));
  return color;
}

Paint BallStage::colorAt(Place place) const {
  // From the nearest on: what it hides need not be shaded.
  size_t first = balls_.size();
  const auto distance = [&](const Ball& ball) {
    const double toMiddle = length(place.x - ball.middle.x, place.y - ball.middle.y);
    return (toMiddle - ball.radius) / pixel_;
  };
  while (first > 0 && coverage(distance(balls_[first - 1])) < 1) --first;
  Paint color = first == 0 ? tableAt(place) : ballColor(balls_[first - 1], place);
  for (const Ball& ball : balls_.subspan(first)) {
    const double share = coverage(distance(ball));
    if (share > 0) color = mix(color, ballColor(ball, place), share);
  }
  return color;
}

}  // namespace host
