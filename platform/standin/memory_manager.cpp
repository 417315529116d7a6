// The Memory Manager: handles.

#include <climits>
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
  long capacity;
  int32_t locks;
};

HandleRecord* recordOf(Handle handle) { return reinterpret_cast<HandleRecord*>(handle); }

constexpr int16_t kNoError = 0;
constexpr int16_t kMemoryFull = -108;
constexpr int16_t kBadParameter = -50;

/// One byte more, since an empty block may be null.
size_t blockSize(long capacity) { return static_cast<size_t>(capacity) + 1; }

bool reallocate(HandleRecord* record, long capacity) {
  auto* moved = static_cast<char*>(realloc(record->master, blockSize(capacity)));
  if (moved == nullptr) return false;
  record->master = moved;
  record->capacity = capacity;
  return true;
}

}  // namespace

Handle newHandle(long size) {
  if (size < 0) return nullptr;
  auto* bytes = static_cast<char*>(calloc(blockSize(size), 1));
  auto* record = bytes != nullptr ? new (std::nothrow) HandleRecord{bytes, size, size, 0} : nullptr;
  if (record == nullptr) {
    free(bytes);
    return nullptr;
  }
  ++held.handles;
  return &record->master;
}

long sizeOf(Handle handle) { return recordOf(handle)->size; }

bool resizeHandle(Handle handle, long size) {
  HandleRecord* record = recordOf(handle);
  if (size > record->capacity) {
    // With room for more, so that many small steps cost little.
    const long roomy = size <= LONG_MAX / 2 ? size + size / 2 : size;
    if (!reallocate(record, roomy) && !reallocate(record, size)) return false;
  }
  record->size = size;
  return true;
}

void trimHandle(Handle handle) {
  HandleRecord* record = recordOf(handle);
  reallocate(record, record->size);
}

void disposeHandle(Handle handle) {
  if (handle == nullptr) return;
  forgetRecording(handle);
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
