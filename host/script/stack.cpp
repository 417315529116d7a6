#include "host/script/stack.h"

#include <pthread.h>

#include <cstddef>
#include <cstdint>

namespace host {
namespace {

constexpr uintptr_t kReserve = 256U << 10;

/// The address that the stack must not grow below; 0 if that is not known.
uintptr_t lowestAddress() {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return 0;
  void* lowest = nullptr;
  size_t size = 0;
  pthread_attr_getstack(&attributes, &lowest, &size);
  pthread_attr_destroy(&attributes);
  return reinterpret_cast<uintptr_t>(lowest);
}

}  // namespace

bool isStackLow() {
  thread_local const uintptr_t lowest = lowestAddress();
  return reinterpret_cast<uintptr_t>(__builtin_frame_address(0)) < lowest + kReserve;
}

}  // namespace host
