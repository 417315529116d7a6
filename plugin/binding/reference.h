// Ownership of one reference to a host object.
#pragma once

#include "plugin/binding/services.h"

namespace qrz {

/// Holds one reference to a host object, or none, and drops it at its end.
template <typename Handle>
class Reference {
 public:
  Reference() = default;
  /// Takes over the reference that a host service returned; null is none.
  explicit Reference(Handle owned) : handle_(owned) {}
  Reference(const Reference&) = delete;
  Reference& operator=(const Reference&) = delete;
  ~Reference() { drop(); }

  /// Adds a reference of its own to `handle`; one that the host could not add is not
  /// dropped either. Holds none before.
  void share(Handle handle) {
    isCounted_ = service::REALLockObject.isThere();
    if (isCounted_) service::REALLockObject(asObject(handle));
    handle_ = handle;
  }
  /// Takes over a reference. Holds none before.
  void adopt(Handle owned) { handle_ = owned; }
  /// Passes the reference to the caller.
  [[nodiscard]] Handle release() {
    Handle handle = handle_;
    handle_ = nullptr;
    return handle;
  }
  void drop() {
    Handle handle = release();
    if (handle != nullptr && isCounted_) service::REALUnlockObject(asObject(handle));
  }

  Handle get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  Handle handle_ = nullptr;
  bool isCounted_ = true;
};

}  // namespace qrz
