// The benchmark: every member that handles pixels, against a plain copy.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/bench/measure.h"

namespace host {

/// Of one member on one subject.
struct BenchResult {
  std::string member;  ///< the case's name
  PictureSize asked;   ///< of the step
  PictureSize size;    ///< smaller where a case is limited
  std::string_view content;
  std::string level;  ///< see observedLevel
  Measurement time;
};

/// One measurement to come.
struct BenchStep {
  const BenchCase* benchCase;
  const Member* member;
  PictureSize size;
  Content content;
};

/// What there is to measure in these sizes, of the cases whose names pass the
/// filter and whose members are registered; in the order of sizes and cases. The
/// cases are measured in the size that `Limit::Recording` allows.
std::vector<BenchStep> benchSteps(const std::vector<PictureSize>& sizes,
                                  const std::function<bool(const std::string& name)>& filter);

/// Measures steps in their order; keeps the subjects of one size from step to step.
class Benchmark {
 public:
  Benchmark();
  [[nodiscard]] const std::string& level() const { return level_; }
  /// Throws NotMeasured, RaisedException, std::bad_alloc.
  BenchResult measureStep(const BenchStep& step);

 private:
  const Subject& subjectFor(Content content, PictureSize size);

  std::string level_;
  std::vector<Subject> subjects_;
};

}  // namespace host
