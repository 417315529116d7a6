// The registration records, in the layout that the host reads: 32-bit
// little-endian words, strings as pointers to NUL-terminated bytes.
//
// Records are static and writable. The host keeps pointers to them for the
// life of the process and writes the system-use word of each class record.
#pragma once

#include <cstddef>
#include <cstdint>

#include "plugin/binding/handles.h"

namespace qrz {

struct MethodRecord {
  HostFunction function;    ///< object first (class and extension members), then the parameters
  HostFunction setter;      ///< object, parameters, assigned value; null if not assignable
  const char* declaration;  ///< in the host's language
  uint32_t flags;
};
static_assert(sizeof(MethodRecord) == 16);
static_assert(offsetof(MethodRecord, setter) == 4);
static_assert(offsetof(MethodRecord, declaration) == 8);
static_assert(offsetof(MethodRecord, flags) == 12);

struct PropertyRecord {
  const char* reserved;
  const char* name;
  const char* type;
  uint32_t flags;
  HostFunction getter;  ///< getter(object, param), or kHostFieldAccess
  HostFunction setter;  ///< setter(object, param, value), or kHostFieldAccess
  int32_t param;        ///< for host field access the field's offset in the instance data
  uint32_t unused[3];
};
static_assert(sizeof(PropertyRecord) == 40);
static_assert(offsetof(PropertyRecord, flags) == 12);
static_assert(offsetof(PropertyRecord, getter) == 16);
static_assert(offsetof(PropertyRecord, param) == 24);

/// In place of a getter or setter: the host reads or writes the field itself.
#define QRZ_HOST_FIELD_ACCESS reinterpret_cast<qrz::HostFunction>(0xFFFFFFFFU)

struct ClassRecord {
  int32_t version;
  const char* name;  ///< for an extension the host class that is extended
  const char* superclass;
  int32_t dataSize;   ///< bytes of instance data in every object
  int32_t systemUse;  ///< written by the host: offset of the instance data in an object
  HostFunction constructor;
  HostFunction destructor;
  PropertyRecord* properties;
  int32_t propertyCount;
  MethodRecord* methods;
  int32_t methodCount;
  uint32_t unused1[9];
  uint32_t flags;
  PropertyRecord* secondProperties;
  int32_t secondPropertyCount;
  MethodRecord* secondMethods;
  int32_t secondMethodCount;
  uint32_t unused2[7];
};
static_assert(sizeof(ClassRecord) == 128);
static_assert(offsetof(ClassRecord, dataSize) == 12);
static_assert(offsetof(ClassRecord, systemUse) == 16);
static_assert(offsetof(ClassRecord, constructor) == 20);
static_assert(offsetof(ClassRecord, properties) == 28);
static_assert(offsetof(ClassRecord, methods) == 36);
static_assert(offsetof(ClassRecord, unused1) == 44);
static_assert(offsetof(ClassRecord, flags) == 80);
static_assert(offsetof(ClassRecord, secondProperties) == 84);
static_assert(offsetof(ClassRecord, secondMethods) == 92);
static_assert(offsetof(ClassRecord, unused2) == 100);

/// The version of the plug-in interface that the records are written for.
constexpr int32_t kInterfaceVersion = 9;

/// Marks members for hosts of every age; translated before registration.
constexpr uint32_t kMemberFlag = 0x40000;

/// The block of instance data that the host reserved in `object`, an instance
/// of the class that `record` registered.
template <typename Data>
Data& instanceData(const ClassRecord& record, HostObject object) {
  return *reinterpret_cast<Data*>(reinterpret_cast<uint8_t*>(object) + record.systemUse);
}

}  // namespace qrz
