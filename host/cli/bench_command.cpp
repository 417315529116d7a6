#include <regex.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <new>
#include <optional>
#include <stdexcept>

#include "host/bench/report.h"
#include "host/cli/commands.h"
#include "host/cli/progress.h"
#include "host/core/exception.h"
#include "host/core/interrupt.h"
#include "host/files/file_bytes.h"
#include "host/files/file_fault.h"
#include "host/files/picture_limits.h"

namespace host {
namespace {

/// The command line cannot be understood; what() is the line for the user.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

std::vector<PictureSize> sizesOf(const std::vector<std::string>& texts) {
  if (texts.empty()) return {{256, 256}, {1024, 1024}, {4096, 4096}};
  std::vector<PictureSize> sizes;
  for (const std::string& text : texts) {
    const auto size = parseSize(text);
    if (!size) {
      throw UsageError("--size is width x height in pixels, such as 640x480, not '" + text + "'");
    }
    try {
      checkSize(static_cast<uint64_t>(size->width), static_cast<uint64_t>(size->height));
    } catch (const FileFault& fault) {
      throw UsageError(std::string("--size: ") + fault.what());
    }
    sizes.push_back(*size);
  }
  return sizes;
}

/// An extended regular expression. Names compare as in the language: case does
/// not matter.
class Pattern {
 public:
  explicit Pattern(const std::string& text) {
    // The system's compiler of patterns calls itself for each bracket.
    if (text.size() > kLongest) {
      throw UsageError("--members is a regular expression of at most " + std::to_string(kLongest) +
                       " characters");
    }
    const int error = regcomp(&compiled_, text.c_str(), REG_EXTENDED | REG_ICASE | REG_NOSUB);
    if (error == 0) return;
    std::array<char, 200> reason{};
    regerror(error, &compiled_, reason.data(), reason.size());
    throw UsageError("--members is a regular expression, which '" + text +
                     "' is not: " + reason.data());
  }
  Pattern(const Pattern&) = delete;
  Pattern& operator=(const Pattern&) = delete;
  ~Pattern() { regfree(&compiled_); }

  [[nodiscard]] bool matches(const std::string& name) const {
    return regexec(&compiled_, name.c_str(), 0, nullptr, 0) == 0;
  }

 private:
  static constexpr size_t kLongest = 1000;

  regex_t compiled_{};
};

/// What there is to measure; a line for each member that should be and is not.
std::vector<BenchStep> stepsFor(const BenchOptions& options) {
  const Pattern pattern(options.members);
  const auto matches = [&pattern](const std::string& name) { return pattern.matches(name); };
  auto steps = benchSteps(sizesOf(options.sizes), matches);
  for (const std::string& name : membersWithoutCase()) {
    if (matches(name)) complain(name + ": is not measured; the benchmark has no call for it");
  }
  if (steps.empty()) complain("no member that is measured matches '" + options.members + "'");
  return steps;
}

/// Does `work` with the file of the path, unless that is empty; false, and a line,
/// if the file cannot be written.
template <typename Work>
bool tryWith(const std::string& path, const Work& work) {
  try {
    if (!path.empty()) work(path);
    return true;
  } catch (const FileFault& fault) {
    complain(fileMessage(path, fault.what()));
    return false;
  }
}

bool areWritable(const BenchOptions& options) {
  return tryWith(options.json, checkWritable) && tryWith(options.plot, checkWritable);
}

bool writeReports(const BenchOptions& options, const std::vector<BenchResult>& results) {
  const auto writeText = [&results](std::string (*make)(const std::vector<BenchResult>&)) {
    return [make, &results](const std::string& path) {
      const std::string text = make(results);
      writeFile(path, {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
    };
  };
  const bool json = tryWith(options.json, writeText(jsonOf));
  return tryWith(options.plot, writeText(plotOf)) && json;
}

/// A step's result; empty, and a line, if there is none.
std::optional<BenchResult> tryToMeasure(Benchmark& benchmark, const BenchStep& step) {
  const std::string what = step.benchCase->name() + " at " + textOf(step.size);
  try {
    return benchmark.measureStep(step);
  } catch (const NotMeasured&) {
    complain(what + ": did not do its work; is there memory for it?");
  } catch (const RaisedException& raised) {
    complain(what + ": raised " + raised.instance->className());
  } catch (const std::bad_alloc&) {
    complain(what + ": not enough memory; name smaller pictures with --size");
  }
  return std::nullopt;
}

size_t longestName(const std::vector<BenchStep>& steps) {
  size_t longest = 0;
  for (const BenchStep& step : steps) longest = std::max(longest, step.benchCase->name().size());
  return longest;
}

int measureAll(const BenchOptions& options, const std::vector<BenchStep>& steps) {
  Benchmark benchmark;
  const size_t nameWidth = longestName(steps);
  std::cout << "Nanoseconds per pixel, CPU level " << benchmark.level() << '\n'
            << tableHeader(nameWidth) << std::endl;
  std::vector<BenchResult> results;
  Progress progress(steps.size());
  for (const BenchStep& step : steps) {
    const auto result = tryToMeasure(benchmark, step);
    progress.wipe();
    if (result) {
      std::cout << tableLine(*result, nameWidth) << std::endl;
      results.push_back(*result);
    }
    checkInterrupt();
    progress.advance();
  }
  progress.wipe();
  const bool written = writeReports(options, results);
  return written && results.size() == steps.size() ? kDone : kFailed;
}

}  // namespace

int runBenchmark(const BenchOptions& options) {
  try {
    const auto steps = stepsFor(options);
    if (steps.empty() || !areWritable(options)) return kFailed;
    return measureAll(options, steps);
  } catch (const UsageError& error) {
    complain(std::string("qrz: ") + error.what() + "; `qrz --help` shows the usage");
    return kWrongUsage;
  }
}

}  // namespace host
