// Measures one case on one subject.
#pragma once

#include <stdexcept>

#include "host/bench/cases.h"
#include "host/core/registry.h"

namespace host {

/// Nanoseconds per pixel of the subject.
struct Measurement {
  double fastest;  ///< of the member's runs
  double median;   ///< of the member's runs
  double copy;     ///< median of the copies of what the member writes

  /// How many plain copies the member takes. Member and copy run by turns, so that
  /// whatever else the machine does slows the medians of both.
  [[nodiscard]] double ratio() const { return median / copy; }
};

/// The member did not do what is to be measured; what() says which did not.
class NotMeasured : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Runs the member and, between its runs, a plain copy by turns. A run is as many
/// calls as take about a millisecond, at least one; there are 15 or more. Only the time inside the
/// plug-in's function counts: arguments are made before and results released
/// after it. New pictures are not filled, and their blocks are used again. The
/// copy has as many bytes as the member writes: those of a string, else four a
/// pixel, also for members that only read. Throws NotMeasured, RaisedException,
/// std::bad_alloc.
Measurement measure(const BenchCase& benchCase, const Member& member, const Subject& subject);

}  // namespace host
