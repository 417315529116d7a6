#include "host/bench/measure.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "host/core/interrupt.h"
#include "host/core/native_call.h"
#include "host/core/runtime.h"
#include "host/core/store_pool.h"
#include "platform/standin/standin.h"

namespace host {
namespace {

using Clock = std::chrono::steady_clock;
using Nanoseconds = std::chrono::duration<double, std::nano>;

constexpr size_t kFewestRuns = 15;
/// Short runs are repeated more often: being interrupted slows them most.
constexpr Nanoseconds kShortestTotal = std::chrono::milliseconds(40);
constexpr Nanoseconds kShortestRun = std::chrono::milliseconds(1);
constexpr size_t kPixelBytes = 4;

/// While it lives, new pictures hold anything.
class PicturesAsTheyCome {
 public:
  PicturesAsTheyCome() { runtime().settings.blanksNewPictures = false; }
  PicturesAsTheyCome(const PicturesAsTheyCome&) = delete;
  PicturesAsTheyCome& operator=(const PicturesAsTheyCome&) = delete;
  ~PicturesAsTheyCome() { runtime().settings.blanksNewPictures = true; }
};

/// What it takes to read the clock before and after nothing.
Nanoseconds clockTime() {
  Nanoseconds least = kShortestRun;
  for (int i = 0; i < 1000; ++i) {
    const auto start = Clock::now();
    least = std::min<Nanoseconds>(least, Clock::now() - start);
  }
  return least;
}

/// How many calls make a run.
int64_t callsPerRun(Nanoseconds call) {
  return std::max<int64_t>(1, std::llround(kShortestRun / std::max(call, Nanoseconds(1))));
}

class MemberRuns {
 public:
  MemberRuns(const BenchCase& benchCase, const Member& member, const Subject& subject)
      : member_(member), call_(benchCase.make(subject)) {}

  /// The result of a call.
  Value once() {
    std::vector<Value> arguments = call_.arguments;
    Value result = Nil{};
    if (call_.assigned) {
      member_.assign(call_.self.get(), arguments, *call_.assigned);
    } else {
      result = member_.call(call_.self.get(), arguments);
    }
    if (call_.release) call_.release();
    return result;
  }
  /// Mean time of the calls.
  Nanoseconds run(int64_t calls) {
    const CallStopwatch stopwatch;
    for (int64_t i = 0; i < calls; ++i) static_cast<void>(once());
    const Nanoseconds elapsed = stopwatch.elapsed();
    return std::max(elapsed / calls - clockTime_, Nanoseconds(0));
  }
  /// Whether the work was done, as far as the result tells.
  [[nodiscard]] bool isDone(const Value& result) const {
    if (call_.expected) return result == *call_.expected;
    const auto& type = member_.declaration.result;
    if (call_.assigned || !type) return true;
    if (type->kind == Type::Kind::Object) return objectOf(result) != nullptr;
    return type->kind != Type::Kind::String || !std::get<std::string>(result).empty();
  }

 private:
  const Member& member_;
  BenchCall call_;
  Nanoseconds clockTime_ = clockTime();
};

/// Copies into a block such as the member's new picture gets.
class CopyRuns {
 public:
  CopyRuns(size_t bytes, PictureSize size)
      : bytes_(bytes),
        blockSize_(std::max(bytes, static_cast<size_t>(standin::rowBytesFor(size.width, 32)) *
                                       static_cast<size_t>(size.height))),
        source_(newStoreBlock(blockSize_)) {
    if (source_ == nullptr) throw std::bad_alloc();
    memset(source_.get(), 0x55, blockSize_);
  }

  Nanoseconds run(int64_t copies) {
    const StoreBlock target = newStoreBlock(blockSize_);
    if (target == nullptr) throw std::bad_alloc();
    const auto start = Clock::now();
    for (int64_t i = 0; i < copies; ++i) {
      memcpy(target.get(), source_.get(), bytes_);
      asm volatile("" : : "r"(target.get()) : "memory");  // every copy is made
    }
    return Nanoseconds(Clock::now() - start) / copies;
  }

 private:
  size_t bytes_;
  size_t blockSize_;
  StoreBlock source_;
};

double medianOf(std::vector<double> numbers) {
  std::ranges::sort(numbers);
  return numbers[numbers.size() / 2];
}

size_t writtenBytes(const Value& result, double pixels) {
  if (const auto* text = std::get_if<std::string>(&result)) return text->size();
  return kPixelBytes * static_cast<size_t>(pixels);
}

}  // namespace

Measurement measure(const BenchCase& benchCase, const Member& member, const Subject& subject) {
  MemberRuns runs(benchCase, member, subject);
  const PicturesAsTheyCome asTheyCome;
  const double pixels = static_cast<double>(subject.size.width) * subject.size.height;
  size_t bytes = 0;
  {
    const Value result = runs.once();
    if (!runs.isDone(result)) throw NotMeasured(benchCase.name());
    bytes = writtenBytes(result, pixels);
  }
  CopyRuns copies(bytes, subject.size);
  copies.run(1);
  const int64_t calls = callsPerRun(runs.run(1));
  const int64_t copiesPerRun = callsPerRun(copies.run(1));
  std::vector<double> times;
  std::vector<double> copyTimes;
  for (Nanoseconds total(0); times.size() < kFewestRuns || total < kShortestTotal;) {
    checkInterrupt();
    const Nanoseconds time = runs.run(calls);
    total += std::max(time * calls, kShortestRun / 2);
    times.push_back(time.count() / pixels);
    copyTimes.push_back(copies.run(copiesPerRun).count() / pixels);
  }
  return {std::ranges::min(times), medianOf(times), medianOf(copyTimes)};
}

}  // namespace host
