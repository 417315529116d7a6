#include "host/core/instance.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace host {
namespace {

void call(qrz::HostFunction function, Object* object) {
  if (function != nullptr) reinterpret_cast<void (*)(Object*)>(function)(object);
}

}  // namespace

int32_t Instance::dataOffset(int32_t index) {
  constexpr int32_t afterObject = (sizeof(Instance) + 15) / 16 * 16 + 4;
  return afterObject + 16 * index;
}

Ref<Instance> Instance::create(qrz::ClassRecord& record) {
  const auto size = static_cast<size_t>(record.systemUse + record.dataSize);
  void* memory = calloc(size, 1);
  if (memory == nullptr) throw std::bad_alloc();
  auto instance = Ref<Instance>::adopt(new (memory) Instance(record));
  call(record.constructor, instance.get());
  return instance;
}

void Instance::destroy() {
  call(record_.destructor, this);
  this->~Instance();
  free(this);
}

}  // namespace host
