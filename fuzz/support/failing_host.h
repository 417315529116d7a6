// The plug-in, linked into the fuzzer, and a host that fails it.
#pragma once

#include <cstdint>

#include "plugin/kernels/level.h"
#include "plugin/pixels/latches.h"

namespace fuzz {

/// Pixels of the largest picture that the plug-in gets.
constexpr int64_t kMostPixels = 100'000;

/// Registers the plug-in with the host. Once.
void startFailingHost();
/// The plug-in forgets what it has bound and settled since its start.
void resetPlugin();

/// What the plug-in has settled: which pixel paths work.
struct Latches {
  qrz::RepresentationLatch reader = qrz::readerLatch;
  qrz::RepresentationLatch writer = qrz::writerLatch;
  qrz::RepresentationLatch lock = qrz::lockLatch;
  void restore() const;
};

/// How the plug-in goes over pixels; no result depends on it.
struct Pace {
  qrz::CpuLevel level;
  bool isStreamed;
  void set() const;
};

/// Which of the plug-in's calls of services, platform and calloc fail.
struct FaultPlan {
  uint32_t first = 0;  ///< this one, counted from 1; 0: none
  bool forGood = false;
  uint32_t rate = 0;  ///< so many of 256, by chance
  uint32_t seed = 0;
  uint32_t lacking = 0;  ///< 1 to 32: services that are never found
};
void arm(const FaultPlan& plan);

/// A call of the plug-in, which has little memory.
class PluginCall {
 public:
  /// Calls fail by the plan that is armed, or none do.
  explicit PluginCall(bool canFail);
  PluginCall(const PluginCall&) = delete;
  PluginCall& operator=(const PluginCall&) = delete;
  ~PluginCall();
  /// Whether anything did fail.
  [[nodiscard]] static bool hasFailed();
};

}  // namespace fuzz
