// Reference-counted host objects: what the plug-in sees as opaque handles and
// scripts as object values.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

/// Base of everything that is counted and handed out by reference. An object
/// is born with one reference, which belongs to whoever created it (see
/// makeObject), and dies with its last one. Every living object is listed, so
/// that a forgotten reference can be named at exit.
class Object {
 public:
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  /// The class as scripts name it, for instance "Picture".
  [[nodiscard]] const std::string& className() const { return className_; }
  /// One line for reports, for instance "Picture 640x480 (GWorld 32)".
  [[nodiscard]] virtual std::string describe() const { return className_; }

  void retain() { ++references_; }
  void release();
  [[nodiscard]] int32_t references() const { return references_; }

  /// True if `object` is the address of a living object; any address is fine.
  [[nodiscard]] static bool isAlive(const void* object);
  /// Every living object, oldest first.
  [[nodiscard]] static std::vector<const Object*> living();

 protected:
  explicit Object(std::string className);
  virtual ~Object();
  /// Frees the storage; overridden by objects with storage of their own size.
  virtual void destroy() { delete this; }

 private:
  std::string className_;
  int32_t references_ = 1;
  uint64_t serial_;
};

/// One counted reference to an Object, or nothing.
template <typename T>
class Ref {
 public:
  Ref() = default;
  Ref(std::nullptr_t) {}  // NOLINT(google-explicit-constructor): nil is a value of every reference
  /// Takes over the reference that the caller owns.
  static Ref adopt(T* object) {
    Ref reference;
    reference.object_ = object;
    return reference;
  }
  /// Adds a reference of its own.
  static Ref share(T* object) {
    if (object != nullptr) object->retain();
    return adopt(object);
  }
  Ref(const Ref& other) : object_(other.object_) {
    if (object_ != nullptr) object_->retain();
  }
  Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  template <typename U>
  // NOLINTNEXTLINE(google-explicit-constructor): a derived reference is a reference
  Ref(const Ref<U>& other) : object_(other.get()) {
    if (object_ != nullptr) object_->retain();
  }
  Ref& operator=(Ref other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Ref() {
    if (object_ != nullptr) object_->release();
  }

  [[nodiscard]] T* get() const { return object_; }
  T* operator->() const { return object_; }
  T& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }
  /// The same object, not an equal one.
  friend bool operator==(const Ref& left, const Ref& right) {
    return left.object_ == right.object_;
  }
  /// Gives the reference away without dropping it.
  [[nodiscard]] T* detach() { return std::exchange(object_, nullptr); }

 private:
  T* object_ = nullptr;
};

template <typename T, typename... Arguments>
Ref<T> makeObject(Arguments&&... arguments) {
  return Ref<T>::adopt(new T(std::forward<Arguments>(arguments)...));
}

}  // namespace host
