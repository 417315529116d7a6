#include "plugin/frame/registration.h"

#include "plugin/binding/services.h"
#include "plugin/frame/catalogue.h"

namespace qrz {
namespace {

/// Hosts from this version on read two further bits of the member flags.
constexpr double kFirstVersionWithNewFlags = 2010.029;

/// The old bits stay set; each brings its new one along.
void translateFlags(uint32_t& flags) {
  if (HostVersion < kFirstVersionWithNewFlags) return;
  if ((flags & 0x40000) != 0) flags |= 4;
  if ((flags & 0x80000) != 0) flags |= 8;
}

/// Lists may be absent: a null pointer or no count.
template <typename Record>
void translateFlags(Record* records, int32_t count) {
  if (records == nullptr) return;
  for (int32_t i = 0; i < count; ++i) translateFlags(records[i].flags);
}

void translateFlags(ClassRecord& record) {
  translateFlags(record.flags);
  translateFlags(record.methods, record.methodCount);
  translateFlags(record.secondMethods, record.secondMethodCount);
  translateFlags(record.properties, record.propertyCount);
  translateFlags(record.secondProperties, record.secondPropertyCount);
}

/// The host reserves instance data in multiples of 16 bytes.
constexpr int32_t roundedDataSize(int32_t size) { return (size + 15) & ~15; }
static_assert(roundedDataSize(60) == 64 && roundedDataSize(64) == 64);

}  // namespace

void PluginEntry() {
  service::REALenterMovies();
  for (ClassRecord* record : classes()) translateFlags(*record);
  for (ClassRecord* record : extensions()) translateFlags(*record);
  for (MethodRecord& method : globalMethods()) translateFlags(method.flags);

  for (ClassRecord* record : classes()) {
    record->dataSize = roundedDataSize(record->dataSize);
    service::PluginRegisterClass(record);
  }
  for (ClassRecord* record : extensions()) service::PluginRegisterClassExtension(record);
  for (MethodRecord& method : globalMethods()) service::PluginRegisterMethod(&method);
}

}  // namespace qrz
