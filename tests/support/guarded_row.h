// Rows in memory around which nothing may be touched.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <vector>

namespace host {

/// Bytes right behind a page that cannot be touched, right before one, or a little
/// off, between guarded bytes; and what is to be there in the end.
class GuardedRow {
 public:
  static constexpr uint32_t kPlaces = 8;

  explicit GuardedRow(size_t capacity = 16384);
  GuardedRow(const GuardedRow&) = delete;
  GuardedRow& operator=(const GuardedRow&) = delete;
  ~GuardedRow();

  /// A row whose bytes, various by the seed, are to stay. Places 0 to 3 are that many
  /// steps before the end of the memory, 4 to 7 up to three steps after its start.
  void place(size_t size, uint32_t place, size_t step, uint32_t seed);

  /// The row as whatever a kernel takes.
  template <typename T>
  operator T*() const {  // NOLINT(google-explicit-constructor)
    return reinterpret_cast<T*>(begin_);
  }
  /// The element that is to be there.
  template <typename T>
  T get(int32_t i) const {
    T value;
    memcpy(&value, &expected_[front_] + sizeof(T) * static_cast<size_t>(i), sizeof value);
    return value;
  }
  template <typename T>
  void expect(int32_t i, T value) {
    memcpy(&expected_[front_] + sizeof(T) * static_cast<size_t>(i), &value, sizeof value);
  }
  /// Now and in the end.
  template <typename T>
  void set(int32_t i, T value) {
    expect(i, value);
    memcpy(begin_ + sizeof(T) * static_cast<size_t>(i), &value, sizeof value);
  }

  /// Names the first byte, here or near, that is not what it is to be.
  [[nodiscard]] testing::AssertionResult isAsExpected() const;
  /// Where an address is, counted from the row's start; nothing if it is elsewhere.
  [[nodiscard]] std::optional<ptrdiff_t> distanceTo(const void* address) const;

 private:
  uint8_t* mapping_;
  size_t capacity_;
  uint8_t* begin_ = nullptr;
  size_t front_ = 0;               ///< guarded bytes in front of the row
  std::vector<uint8_t> expected_;  ///< guarded bytes, the row, and guarded bytes
};

/// Calls a function. If it touches memory that it must not, it is stopped where it
/// is, without destructors, and the address returned.
std::optional<const void*> faultIn(const std::function<void()>& function);

}  // namespace host
