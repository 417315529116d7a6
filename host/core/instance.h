// Instances of the classes that the plug-in registered.
#pragma once

#include <cstdint>

#include "host/core/object.h"
#include "plugin/binding/records.h"

namespace host {

/// An object with the plug-in's instance data behind it, zero-filled when it is
/// handed over, at the offset that the class record tells.
class Instance final : public Object {
 public:
  /// Runs the record's constructor.
  static Ref<Instance> create(qrz::ClassRecord& record);
  /// Where the instance data of the `index`-th registered class goes. Every
  /// class has another offset, aligned to words and no more.
  static int32_t dataOffset(int32_t index);

  /// The field at a byte offset of the instance data.
  template <typename Field>
  Field& field(int32_t offset) {
    return *reinterpret_cast<Field*>(reinterpret_cast<uint8_t*>(this) + record_.systemUse + offset);
  }

 protected:
  ~Instance() override = default;
  void destroy() override;

 private:
  explicit Instance(qrz::ClassRecord& record) : Object(record.name), record_(record) {}
  qrz::ClassRecord& record_;
};

}  // namespace host
