// The entry point, the bundle's one export.

#include "plugin/binding/services.h"
#include "plugin/frame/registration.h"
#include "plugin/kernels/level.h"
#include "plugin/pixels/streamed_rows.h"

namespace qrz {
namespace {

// Used once each, so looked up here and not kept.

void registerInterfaceVersion() {
  if (void* address = resolver("RegisterPluginVersion")) {
    reinterpret_cast<void (*)(int32_t)>(address)(kInterfaceVersion);
  }
}

void readHostVersion() {
  if (void* address = resolver("REALGetRBVersion")) {
    HostVersion = reinterpret_cast<double (*)()>(address)();
  }
}

}  // namespace
}  // namespace qrz

/// Called once by the host, before any registered member.
extern "C" __attribute__((visibility("default"))) void REALPluginMain(
    qrz::HostResolver hostResolver) {
  if (hostResolver == nullptr) return;
  qrz::resolver = hostResolver;
  qrz::cpuLevel = qrz::detectCpuLevel();
  qrz::cacheBytes = qrz::detectCacheBytes();
  qrz::registerInterfaceVersion();
  qrz::readHostVersion();
  qrz::PluginEntry();
}
