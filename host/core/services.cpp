// The services that the plug-in asks the host for, by name. Handles that come
// from the plug-in are checked: what is no object is reported and ignored.

#include <cstring>
#include <iterator>
#include <new>

#include "host/core/instance.h"
#include "host/core/memory_block.h"
#include "host/core/pict_recording.h"
#include "host/core/picture.h"
#include "host/core/plugin_classes.h"
#include "host/core/runtime.h"
#include "host/core/string_record.h"
#include "platform/standin/standin.h"

namespace host {
namespace {

bool called(const char* service) { return runtime().called(service); }

/// The service as the plug-in calls it. Its frames cannot be unwound, so nothing
/// may be thrown through them: lack of memory becomes the service's failure
/// result, an exception of the language becomes pending.
template <auto service>
struct Guarded;

template <typename Result, typename... Arguments, Result (*service)(Arguments...)>
struct Guarded<service> {
  static Result call(Arguments... arguments) {
    try {
      return service(arguments...);
    } catch (const RaisedException& raised) {
      runtime().setPendingException(raised.instance);
    } catch (const std::bad_alloc&) {
      return Result();
    } catch (const std::exception& problem) {
      runtime().reportMisuse(std::string("a service failed: ") + problem.what());
    }
    return Result();
  }
};

template <auto service>
void* addressOf() {
  return reinterpret_cast<void*>(Guarded<service>::call);
}

/// The object behind a handle; null, and a report, for anything else.
template <typename T>
T* checked(void* handle, const char* service) {
  T* object = Object::isAlive(handle) ? dynamic_cast<T*>(static_cast<Object*>(handle)) : nullptr;
  if (object == nullptr) {
    runtime().reportMisuse(std::string(service) + " was called with a handle of another kind");
  }
  return object;
}

StringRecord* checkedString(StringRecord* string, const char* service) {
  if (isString(string)) return string;
  runtime().reportMisuse(std::string(service) + " was called with what is no string");
  return nullptr;
}

// --- Registration ------------------------------------------------------------

void registerPluginVersion(int32_t version) {
  called("RegisterPluginVersion");
  if (version != qrz::kInterfaceVersion) {
    runtime().reportMisuse("the plug-in is written for interface version " +
                           std::to_string(version));
  }
}

double getVersion() {
  called("REALGetRBVersion");
  return runtime().settings.version;
}

uint32_t pluginRegisterClass(qrz::ClassRecord* record) {
  called("PluginRegisterClass");
  registerClass(runtime().registry, *record);
  return 0;
}

uint32_t pluginRegisterClassExtension(qrz::ClassRecord* record) {
  called("PluginRegisterClassExtension");
  registerExtension(runtime().registry, *record);
  return 0;
}

uint32_t pluginRegisterMethod(qrz::MethodRecord* record) {
  called("PluginRegisterMethod");
  registerGlobalMethod(runtime().registry, *record);
  return 0;
}

uint32_t enterMovies() {
  called("REALenterMovies");
  return 0;
}

// --- Strings -----------------------------------------------------------------

StringRecord* buildString(const char* bytes, int32_t length) {
  if (!called("REALBuildString") || length < 0 || (bytes == nullptr && length > 0)) return nullptr;
  try {
    return newString({bytes, static_cast<size_t>(length)});
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

uint32_t setStringEncoding(StringRecord* string, int32_t encoding) {
  called("REALSetStringEncoding");
  if (checkedString(string, "REALSetStringEncoding") != nullptr) string->encoding = encoding;
  return 0;
}

/// Into UTF-8 only; that is all that anyone asks for.
StringRecord* convertString(StringRecord* string, int32_t encoding) {
  if (!called("REALConvertString")) return nullptr;
  if (checkedString(string, "REALConvertString") == nullptr) return nullptr;
  try {
    return newString(toUtf8(string->text(), string->encoding), encoding);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void unlockString(StringRecord* string) {
  called("REALUnlockString");
  releaseString(checkedString(string, "REALUnlockString"));
}

// --- Objects -----------------------------------------------------------------

void lockObject(void* handle) {
  called("REALLockObject");
  if (auto* object = checked<Object>(handle, "REALLockObject")) object->retain();
}

void unlockObject(void* handle) {
  called("REALUnlockObject");
  if (auto* object = checked<Object>(handle, "REALUnlockObject")) object->release();
}

bool endsWithException(std::string_view name) {
  constexpr std::string_view suffix = "Exception";
  return name.size() >= suffix.size() && sameName(name.substr(name.size() - suffix.size()), suffix);
}

Object* newInstance(const char* className) {
  if (!called("PluginNewInstance") || className == nullptr) return nullptr;
  if (endsWithException(className)) return makeObject<ExceptionObject>(className).detach();
  const Class* found = runtime().registry.findClass(className);
  if (found == nullptr || found->constructors.empty()) return nullptr;
  if (!found->constructors.front().declaration.parameters.empty()) return nullptr;
  const Value instance = found->constructors.front().call(nullptr, {});
  return Ref<Object>::share(objectOf(instance)).detach();
}

/// Takes over the plug-in's reference.
void raiseException(void* handle) {
  called("RuntimeRaiseException");
  if (auto* object = checked<ExceptionObject>(handle, "RuntimeRaiseException")) {
    runtime().setPendingException(Ref<Object>::adopt(object));
  }
}

/// The property of that name, or null.
const Member* findProperty(const Object& object, std::string_view name) {
  const Class* found = runtime().registry.findClass(object.className());
  if (found == nullptr) return nullptr;
  for (const Member& member : found->members) {
    if (member.isProperty && sameName(member.declaration.name, name)) return &member;
  }
  return nullptr;
}

uint8_t setPropValueString(void* handle, const char* name, StringRecord* string) {
  if (!called("REALSetPropValueString")) return 0;
  auto* object = checked<Object>(handle, "REALSetPropValueString");
  auto* exception = dynamic_cast<ExceptionObject*>(object);
  if (exception == nullptr || !sameName(name, "Message")) return 0;
  exception->message = isString(string) ? std::string(string->text()) : std::string();
  return 1;
}

uint8_t getPropValueInt(void* handle, const char* name, int32_t* value) {
  if (!called("REALGetPropValueInt")) return 0;
  auto* object = checked<Object>(handle, "REALGetPropValueInt");
  const Member* property = object != nullptr ? findProperty(*object, name) : nullptr;
  if (property == nullptr || property->call == nullptr) return 0;
  const Value current = property->call(object, {});
  const auto* number = std::get_if<int32_t>(&current);
  if (number == nullptr) return 0;
  *value = *number;
  return 1;
}

uint8_t setPropValueInt(void* handle, const char* name, int32_t value) {
  if (!called("REALSetPropValueInt")) return 0;
  auto* object = checked<Object>(handle, "REALSetPropValueInt");
  const Member* property = object != nullptr ? findProperty(*object, name) : nullptr;
  if (property == nullptr || property->assign == nullptr) return 0;
  const bool isColor = property->assignedType.kind == Type::Kind::Color;
  if (!isColor && property->assignedType.kind != Type::Kind::Integer) return 0;
  property->assign(
      object, {}, isColor ? Value{Color{static_cast<uint32_t>(value) & 0x00FFFFFF}} : Value{value});
  return 1;
}

// --- Drawing -----------------------------------------------------------------

/// Draws nothing, or not all, without memory: an exception must not pass through a
/// plug-in.
void tryToDraw(Picture& destination, const Picture& source, const Placement& placement) {
  try {
    drawPicture(destination, source, placement);
  } catch (const std::bad_alloc&) {
    return;
  }
}

void graphicsDrawPicture(void* graphicsHandle, void* pictureHandle, int32_t x, int32_t y, int32_t w,
                         int32_t h, int32_t sx, int32_t sy, int32_t sw, int32_t sh) {
  const bool works = called("DrawPicture");
  auto* graphics = checked<Graphics>(graphicsHandle, "DrawPicture");
  auto* picture = checked<Picture>(pictureHandle, "DrawPicture");
  if (graphics == nullptr || picture == nullptr || !works) return;
  tryToDraw(graphics->picture(), *picture, {x, y, w, h, sx, sy, sw, sh});
}

void* loadObjectMethod(void* handle, const char* declaration) {
  if (!called("REALLoadObjectMethod")) return nullptr;
  auto* object = checked<Object>(handle, "REALLoadObjectMethod");
  if (dynamic_cast<Graphics*>(object) == nullptr) return nullptr;
  if (!sameName(declaration, kDrawPictureDeclaration)) return nullptr;
  return addressOf<graphicsDrawPicture>();
}

void graphicsDrawLine(void* handle, int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
  called("RuntimeGraphicsDrawLine");
  if (auto* graphics = checked<Graphics>(handle, "RuntimeGraphicsDrawLine")) {
    drawLine(graphics->picture(), x1, y1, x2, y2);
  }
}

/// Into the current port, if it has pixels, or into the open recording.
void drawPrimitive(void* handle, const Rect* rect, int32_t /*zero*/) {
  const bool works = called("drawPicturePrimitive");
  auto* picture = checked<Picture>(handle, "drawPicturePrimitive");
  if (picture == nullptr || !works) return;
  if (standin::isRecording()) return recordPicture(*picture, *rect);
  CGrafPtr port = nullptr;
  GDHandle device = nullptr;
  GetGWorld(&port, &device);
  if (standin::pixelsOf(port).base == nullptr) return;
  const auto target = makeObject<Picture>(gworldStore(port, false));
  tryToDraw(*target, *picture, placementIn(*rect, *picture));
}

// --- Pictures ----------------------------------------------------------------

Object* newPicture(int32_t width, int32_t height, int32_t depth) {
  if (!called("newPicture")) return nullptr;
  try {
    return Picture::create(runtime().settings.newPictures, width, height, depth).detach();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

Object* pictureGraphics(void* handle) {
  if (!called("pluginPictureGraphicsGetter")) return nullptr;
  auto* picture = checked<Picture>(handle, "pluginPictureGraphicsGetter");
  if (picture == nullptr) return nullptr;
  return makeObject<Graphics>(Ref<Picture>::share(picture)).detach();
}

uint32_t lockDescription(void* handle, qrz::PictureDescription* description) {
  // A host that cannot lock leaves the description without a known type.
  const bool works = called("lockPictureDescription");
  auto* picture = checked<Picture>(handle, "lockPictureDescription");
  if (picture == nullptr) return 0;
  picture->lock(*description);
  if (!works) *description = {};
  return 0;
}

void unlockDescription(void* handle) {
  called("unlockPictureDescription");
  if (auto* picture = checked<Picture>(handle, "unlockPictureDescription")) picture->unlock();
}

uint8_t lockDescriptionAs(void* handle, qrz::PictureDescription* description, int32_t type) {
  if (!called("REALLockPictureDescription")) return 0;
  auto* picture = checked<Picture>(handle, "REALLockPictureDescription");
  if (picture == nullptr || picture->store().type() != type) return 0;
  picture->lock(*description);
  return 1;
}

void pictureClearCache(void* handle) {
  called("REALPictureClearCache");
  if (auto* picture = checked<Picture>(handle, "REALPictureClearCache")) picture->clearCache();
}

/// With the flag set, a picture without a mask gets one that is opaque.
Object* pictureMask(void* handle, uint8_t create) {
  if (!called("REALGetPictureMask")) return nullptr;
  auto* picture = checked<Picture>(handle, "REALGetPictureMask");
  if (picture == nullptr) return nullptr;
  if (!picture->mask && create != 0) {
    picture->mask =
        Picture::create(runtime().storageOfOpenedPictures(), picture->width(), picture->height());
  }
  return Ref<Picture>(picture->mask).detach();
}

/// With the flag set, the new picture takes the handle over; otherwise it gets
/// a copy.
Object* pictureFromPicHandle(PicHandle handle, uint8_t takeOver) {
  if (!called("REALBuildPictureFromPicHandle") || handle == nullptr) return nullptr;
  auto* data = reinterpret_cast<Handle>(handle);
  if (takeOver == 0) {
    Handle copy = nullptr;
    if (PtrToHand(*data, &copy, standin::sizeOf(data)) != 0) return nullptr;
    data = copy;
  }
  return makeObject<Picture>(pictStore(data)).detach();
}

/// With the flag set, the new picture owns the world; otherwise it only shows it.
Object* pictureFromGWorld(GWorldPtr world, uint8_t takeOver) {
  if (!called("REALBuildPictureFromGWorld") || world == nullptr) return nullptr;
  if (!standin::isGWorld(world)) {
    runtime().reportMisuse("REALBuildPictureFromGWorld got a handle of no GWorld");
    return nullptr;
  }
  return makeObject<Picture>(gworldStore(world, takeOver != 0)).detach();
}

// --- Memory blocks -----------------------------------------------------------

Object* newMemoryBlock(int32_t size) {
  if (!called("newMemoryBlock") || size < 0) return nullptr;
  try {
    return makeObject<MemoryBlock>(std::vector<uint8_t>(static_cast<size_t>(size))).detach();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void* memoryBlockGetPtr(void* handle) {
  if (!called("memoryBlockGetPtr")) return nullptr;
  auto* block = checked<MemoryBlock>(handle, "memoryBlockGetPtr");
  return block != nullptr ? block->bytes.data() : nullptr;
}

int32_t memoryBlockGetSize(void* handle) {
  if (!called("memoryBlockGetSize")) return 0;
  auto* block = checked<MemoryBlock>(handle, "memoryBlockGetSize");
  return block != nullptr ? static_cast<int32_t>(block->bytes.size()) : 0;
}

// --- The table ---------------------------------------------------------------

struct Service {
  std::string_view name;
  void* address;
};

const Service services[] = {
    {"RegisterPluginVersion", addressOf<registerPluginVersion>()},
    {"REALGetRBVersion", addressOf<getVersion>()},
    {"PluginRegisterClass", addressOf<pluginRegisterClass>()},
    {"PluginRegisterClassExtension", addressOf<pluginRegisterClassExtension>()},
    {"PluginRegisterMethod", addressOf<pluginRegisterMethod>()},
    {"REALenterMovies", addressOf<enterMovies>()},
    {"REALBuildString", addressOf<buildString>()},
    {"REALSetStringEncoding", addressOf<setStringEncoding>()},
    {"REALConvertString", addressOf<convertString>()},
    {"REALUnlockString", addressOf<unlockString>()},
    {"REALLockObject", addressOf<lockObject>()},
    {"REALUnlockObject", addressOf<unlockObject>()},
    {"PluginNewInstance", addressOf<newInstance>()},
    {"RuntimeRaiseException", addressOf<raiseException>()},
    {"REALSetPropValueString", addressOf<setPropValueString>()},
    {"REALGetPropValueInt", addressOf<getPropValueInt>()},
    {"REALSetPropValueInt", addressOf<setPropValueInt>()},
    {"REALLoadObjectMethod", addressOf<loadObjectMethod>()},
    {"RuntimeGraphicsDrawPicture", addressOf<graphicsDrawPicture>()},
    {"RuntimeGraphicsDrawLine", addressOf<graphicsDrawLine>()},
    {"newPicture", addressOf<newPicture>()},
    {"pluginPictureGraphicsGetter", addressOf<pictureGraphics>()},
    {"lockPictureDescription", addressOf<lockDescription>()},
    {"unlockPictureDescription", addressOf<unlockDescription>()},
    {"REALLockPictureDescription", addressOf<lockDescriptionAs>()},
    {"REALPictureClearCache", addressOf<pictureClearCache>()},
    {"REALGetPictureMask", addressOf<pictureMask>()},
    {"drawPicturePrimitive", addressOf<drawPrimitive>()},
    {"REALBuildPictureFromPicHandle", addressOf<pictureFromPicHandle>()},
    {"REALBuildPictureFromGWorld", addressOf<pictureFromGWorld>()},
    {"newMemoryBlock", addressOf<newMemoryBlock>()},
    {"memoryBlockGetPtr", addressOf<memoryBlockGetPtr>()},
    {"memoryBlockGetSize", addressOf<memoryBlockGetSize>()},
};

}  // namespace

void* resolveService(const char* name) {
  if (!called((std::string("resolve ") + name).c_str())) return nullptr;
  const auto& replaced = runtime().replacedServices;
  if (const auto found = replaced.find(std::string_view(name)); found != replaced.end()) {
    return found->second;
  }
  for (const Service& service : services) {
    if (service.name == name) return service.address;
  }
  return nullptr;
}

}  // namespace host
