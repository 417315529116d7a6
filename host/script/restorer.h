// Puts a variable back when a block ends, also by an exception.
#pragma once

#include <utility>

namespace host {

template <typename T>
class Restorer {
 public:
  explicit Restorer(T& variable) : variable_(variable), value_(variable) {}
  ~Restorer() { variable_ = std::move(value_); }
  Restorer(const Restorer&) = delete;
  Restorer& operator=(const Restorer&) = delete;

 private:
  T& variable_;
  T value_;
};

}  // namespace host
