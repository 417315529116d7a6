// Host services, bound by name on first use.
#pragma once

#include <cstdint>
#include <type_traits>

#include "plugin/binding/handles.h"

namespace qrz {

/// Maps a service's name to its address, or to null if the host has none.
using HostResolver = void* (*)(const char* name);

/// The resolver handed to the entry point; set once, before anything is bound.
inline HostResolver resolver = nullptr;

template <typename Signature>
class HostService;

/// One service of the host. The first call that finds the service keeps its
/// address for good; while the host lacks the service, every call looks again
/// and yields 0 (null, false). A boolean result is the low byte of the host's
/// result, widened.
template <typename Result, typename... Arguments>
class HostService<Result(Arguments...)> {
 public:
  constexpr explicit HostService(const char* name) : name_(name) {}

  Result operator()(Arguments... arguments) {
    return isThere() ? call(address_, arguments...) : Result();
  }

  /// Whether the host has the service: for what must only be given back if it was
  /// taken.
  bool isThere() {
    if (address_ == nullptr && resolver != nullptr) address_ = resolver(name_);
    return address_ != nullptr;
  }

  /// Calls the service at an address that the caller found.
  static Result call(void* address, Arguments... arguments) {
    // Booleans cross as whole words: zero-extended going in, and only the low
    // byte counts coming out, whatever the compiler's own rule for narrow types.
    auto* function = reinterpret_cast<Word<Result> (*)(Word<Arguments>...)>(address);
    return static_cast<Result>(function(arguments...));
  }

 private:
  template <typename Type>
  using Word = std::conditional_t<std::is_same_v<Type, HostBoolean>, uint32_t, Type>;

  const char* name_;
  void* address_ = nullptr;
};

}  // namespace qrz
