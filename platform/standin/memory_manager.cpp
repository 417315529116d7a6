// The Memory Manager: handles.

#include <cstdlib>
#include <cstring>
#include <new>

#include "platform/standin/state.h"

namespace standin {
namespace {

/// The handle points to the first field, its master pointer.
struct HandleRecord {
  char* master;
  long size;
  int32_t locks;
};

HandleRecord* recordOf(Handle handle) { return reinterpret_cast<HandleRecord*>(handle); }

constexpr int16_t kNoError = 0;
constexpr int16_t kMemoryFull = -108;
constexpr int16_t kBadParameter = -50;

}  // namespace

Handle newHandle(long size) {
  if (size < 0) return nullptr;
  // One byte more, since an empty block may be null.
  auto* bytes = static_cast<char*>(calloc(static_cast<size_t>(size) + 1, 1));
  auto* record = bytes != nullptr ? new (std::nothrow) HandleRecord{bytes, size, 0} : nullptr;
  if (record == nullptr) {
    free(bytes);
    return nullptr;
  }
  ++held.handles;
  return &record->master;
}

long sizeOf(Handle handle) { return recordOf(handle)->size; }

void disposeHandle(Handle handle) {
  if (handle == nullptr) return;
  HandleRecord* record = recordOf(handle);
  held.handleLocks -= record->locks;
  --held.handles;
  free(record->master);
  delete record;
}

}  // namespace standin

using standin::called;
using standin::held;
using standin::recordOf;

int16_t PtrToHand(const void* source, Handle* result, long size) {
  if (size < 0 || (source == nullptr && size > 0)) return standin::kBadParameter;
  Handle handle = called("PtrToHand") ? standin::newHandle(size) : nullptr;
  if (handle == nullptr) return standin::kMemoryFull;
  if (size > 0) memcpy(*handle, source, static_cast<size_t>(size));
  *result = handle;
  return standin::kNoError;
}

void HLock(Handle handle) {
  called("HLock");
  if (handle == nullptr) return;
  ++recordOf(handle)->locks;
  ++held.handleLocks;
}

void HUnlock(Handle handle) {
  called("HUnlock");
  if (handle == nullptr || recordOf(handle)->locks == 0) return;
  --recordOf(handle)->locks;
  --held.handleLocks;
}

long GetHandleSize(Handle handle) {
  if (!called("GetHandleSize") || handle == nullptr) return 0;
  return recordOf(handle)->size;
}
