// The host's objects as the plug-in sees them: opaque 32-bit handles.
//
// A handle that a host service returns carries one reference for the plug-in,
// dropped with REALUnlockObject (REALUnlockString for strings) unless it is
// returned to the host as a result.
#pragma once

#include <cstdint>

namespace qrz {

/// Any host object; pictures, graphics and memory blocks are objects, too.
struct HostObjectRecord;
using HostObject = HostObjectRecord*;

/// One handle type per kind of object, so that they cannot be mixed up.
struct HostPictureRecord;
using HostPicture = HostPictureRecord*;
struct HostGraphicsRecord;
using HostGraphics = HostGraphicsRecord*;
struct HostMemoryBlockRecord;
using HostMemoryBlock = HostMemoryBlockRecord*;
struct HostStringRecord;
using HostString = HostStringRecord*;

/// The plain object behind a handle, for the services that take any object.
template <typename Record>
HostObject asObject(Record* handle) {
  return reinterpret_cast<HostObject>(handle);
}

/// A boolean argument: one byte, 0 or the host's true value, zero-extended
/// into a stack word. (A `bool` would make other values than 0 and 1 undefined.)
using HostBoolean = uint8_t;

/// Any function; the reader of such a pointer knows the real signature.
using HostFunction = void (*)();

/// A host colour, 0x00RRGGBB. Bits 24 to 31 are ignored.
using HostColor = uint32_t;

}  // namespace qrz
