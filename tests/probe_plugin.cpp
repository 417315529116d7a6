// A plug-in of our own making that shows what the host hands over and takes
// back, as far as no member of the real one does: parameters in any mixture,
// results and properties, and references or locks that were forgotten.

#include "plugin/binding/records.h"
#include "plugin/binding/services.h"

namespace {

using namespace qrz;  // NOLINT(google-build-using-namespace): a plug-in like the real one

template <typename Function>
HostFunction function(Function* f) {
  return reinterpret_cast<HostFunction>(f);
}

double ProbeSum(int32_t a, double b, HostBoolean c, HostColor d, int32_t e) {
  return a + b + 1000.0 * c + 10000.0 * (d & 0xFF) + e;
}

void ProbeRefs(int32_t* integer, double* number, HostMemoryBlock* block, uint8_t* flag) {
  *integer += 1;
  *number /= 2;
  if (*block == nullptr) *block = service::newMemoryBlock(12);
  static_cast<uint8_t*>(service::memoryBlockGetPtr(*block))[0] += 7;
  *flag = *flag == 0 ? 1 : 0;
}

HostColor ProbeColor(HostColor color) { return color ^ 0x00FFFFFF; }

void ProbeForget(HostPicture picture) { service::REALLockObject(asObject(picture)); }
void ProbeStayLocked(HostPicture picture) {
  PictureDescription description{};
  service::lockPictureDescription(picture, &description);
  LockPixels(GetGWorldPixMap(static_cast<GWorldPtr>(description.data)));
}

struct Fields {
  double size;
};

ClassRecord probeClass;

Fields& fieldsOf(HostObject object) { return instanceData<Fields>(probeClass, object); }
void construct(HostObject object) { fieldsOf(object).size = 41; }
void destroy(HostObject /*object*/) {}
double half(HostObject object, int32_t param) { return fieldsOf(object).size / 2 + param; }
void setHalf(HostObject object, int32_t param, double value) {
  fieldsOf(object).size = 2 * (value - param);
}

PropertyRecord properties[] = {
    {nullptr, "Size", "Double", 0, QRZ_HOST_FIELD_ACCESS, QRZ_HOST_FIELD_ACCESS, 0, {}},
    {nullptr, "Half", "Double", 0, function(half), function(setHalf), 3, {}},
};
MethodRecord pictureMethods[] = {
    {function(ProbeForget), nullptr, "ProbeForget", 0},
    {function(ProbeStayLocked), nullptr, "ProbeStayLocked", 0},
};
MethodRecord globals[] = {
    {function(ProbeSum), nullptr,
     "ProbeSum(a as integer, b as double, c as boolean=true, d as color=&c000002, e as integer = "
     "-5) as double",
     0},
    {function(ProbeRefs), nullptr,
     "ProbeRefs(byref i as integer, byref d as double, byref m as memoryblock, byref b as boolean)",
     0},
    {function(ProbeColor), nullptr, "ProbeColor(c as color) as color", 0},
};

ClassRecord pictureExtension;

}  // namespace

extern "C" __attribute__((visibility("default"))) void REALPluginMain(HostResolver hostResolver) {
  resolver = hostResolver;
  probeClass.version = kInterfaceVersion;
  probeClass.name = "ProbeQRZ";
  probeClass.dataSize = 16;
  probeClass.constructor = function(construct);
  probeClass.destructor = function(destroy);
  probeClass.properties = properties;
  probeClass.propertyCount = 2;
  service::PluginRegisterClass(&probeClass);
  pictureExtension.version = kInterfaceVersion;
  pictureExtension.name = "Picture";
  pictureExtension.methods = pictureMethods;
  pictureExtension.methodCount = 2;
  service::PluginRegisterClassExtension(&pictureExtension);
  for (MethodRecord& method : globals) service::PluginRegisterMethod(&method);
}
