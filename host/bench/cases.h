// The calls that the benchmark measures.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/bench/subject.h"
#include "host/core/value.h"

namespace host {

/// Everything that a call takes, made before any is timed.
struct BenchCall {
  Ref<Object> self;  ///< null for global methods
  std::vector<Value> arguments;
  std::optional<Value> assigned;  ///< the call is `member(arguments) = assigned`
  std::optional<Value> expected;  ///< another result means that the work was not done
  std::function<void()> release;  ///< drops what a call left elsewhere than in its result
};

/// One way to call a registered member.
struct BenchCase {
  std::string_view member;   ///< as NamedMember names it
  std::string_view variant;  ///< what sets it apart from other cases of the member; or empty
  std::span<const Content> contents;
  BenchCall (*make)(const Subject&);
  enum class Limit {
    None,
    GWorlds,   ///< leaves all other pictures alone
    Recording  ///< pictures as wide as a recording can be
  } limit = Limit::None;

  /// "ScrollQRZ, wrap".
  [[nodiscard]] std::string name() const;
};

/// Every case, grouped as users think of the members.
std::span<const BenchCase> benchCases();

/// The names of the members that have no case though they could touch pixels.
std::vector<std::string> membersWithoutCase();

}  // namespace host
