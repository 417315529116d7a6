// Who owns what in the host, and what it holds.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "host/core/value.h"

namespace fuzz {

/// Says what is wrong and ends the process.
[[noreturn]] void fail(const std::string& what);

/// Ends the process unless every living object has just the references that the values
/// and other objects own, nothing is locked or open, and the bytes between rows are
/// intact, `after` a call. A misuse of a handle of another kind is fine if `hasForeign`.
void checkOwners(const std::string& after,
                 std::initializer_list<std::span<const host::Value>> values, bool hasForeign);

/// The bytes of a picture with those between its rows, of PICT data, or of a memory block.
std::span<uint8_t> bytesOf(host::Object& object);

/// Bit for bit, objects by what they hold.
bool isEqual(const host::Value& left, const host::Value& right);

/// What all living objects held at a moment.
class Snapshot {
 public:
  Snapshot();
  /// The objects that hold something else now.
  [[nodiscard]] std::vector<host::Object*> changed() const;
  /// They hold it again.
  void restore() const;

 private:
  std::vector<std::pair<host::Object*, std::vector<uint8_t>>> bytes_;
};

}  // namespace fuzz
