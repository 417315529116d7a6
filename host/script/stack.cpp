#include "host/script/stack.h"

#include <pthread.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace host {
namespace {

constexpr size_t kReserve = 256U << 10;

/// The address below which the stack is low: a small one by a quarter; 0 if that is not known.
uintptr_t lowAddress() {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return 0;
  void* lowest = nullptr;
  size_t size = 0;
  pthread_attr_getstack(&attributes, &lowest, &size);
  pthread_attr_destroy(&attributes);
  return reinterpret_cast<uintptr_t>(lowest) + std::min(kReserve, size / 4);
}

}  // namespace

bool isStackLow() {
  thread_local const uintptr_t low = lowAddress();
  return reinterpret_cast<uintptr_t>(__builtin_frame_address(0)) < low;
}

}  // namespace host
