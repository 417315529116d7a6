// Measures one case on one subject.
#pragma once

#include <stdexcept>

#include "host/bench/cases.h"
#include "host/core/registry.h"

namespace host {

/// Nanoseconds per pixel of the subject.
struct Measurement {
  double fastest;      ///< of all runs
  double median;       ///< of all runs
  double fastestCopy;  ///< of the copies of what the member writes
};

/// The member did not do what is to be measured; what() says which did not.
class NotMeasured : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Runs the member and, between its runs, a plain copy by turns. A run is as many
/// calls as take about a millisecond, at least one. Only the time inside the
/// plug-in's function counts: arguments are made before and results released
/// after it. New pictures are not filled, and their blocks are used again. The
/// copy has as many bytes as the member writes: those of a string, else four a
/// pixel, also for members that only read. Throws NotMeasured, RaisedException,
/// std::bad_alloc.
Measurement measure(const BenchCase& benchCase, const Member& member, const Subject& subject);

}  // namespace host
