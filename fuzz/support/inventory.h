// What a program of calls has in hand, and what it makes and chooses by its input.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "fuzz/support/byte_source.h"
#include "host/core/picture.h"
#include "host/core/registry.h"

namespace fuzz {

inline int64_t pixelsOf(const host::Picture& picture) {
  return int64_t{picture.width()} * picture.height();
}

class Inventory {
 public:
  explicit Inventory(ByteSource& in) : in_(in) {}

  /// Objects and strings take the place of the oldest ones; other values are dropped.
  void keep(host::Value value);
  void dropOne() { slots_[in_.below(slots_.size())] = host::Nil{}; }
  [[nodiscard]] const auto& slots() const { return slots_; }
  /// Whether something was chosen that is not of the type asked for.
  [[nodiscard]] bool hasForeign() const { return hasForeign_; }
  /// Of all pictures that were kept.
  [[nodiscard]] int64_t pixels() const { return pixels_; }

  host::Value newPicture();
  host::Value newBlock();
  std::string newText();
  void giveMask();

  /// A value for a parameter of a member.
  host::Value argument(const host::Parameter& parameter);
  /// The object of a call of a class's member.
  host::Value self(const host::Class* owner);

 private:
  host::Value newInstance(const host::Class& kind);
  host::Value anyObject();
  host::Value object(const std::string& className);
  int32_t integer();
  int32_t handle();
  double number();
  host::Color color();
  std::string text();

  ByteSource& in_;
  std::array<host::Value, 12> slots_;
  size_t next_ = 0;
  bool hasForeign_ = false;
  int64_t pixels_ = 0;
};

}  // namespace fuzz
