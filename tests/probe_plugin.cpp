// A plug-in of our own making that shows what the host hands over and takes
// back: every kind of parameter and result, setters, properties, exceptions,
// and references or locks that were forgotten.

#include <cstring>

#include "plugin/binding/exceptions.h"
#include "plugin/binding/services.h"
#include "plugin/binding/strings.h"

namespace {

using namespace qrz;  // NOLINT(google-build-using-namespace): a plug-in like the real one

template <typename Function>
HostFunction function(Function* f) {
  return reinterpret_cast<HostFunction>(f);
}

double ProbeSum(int32_t a, double b, HostBoolean c, HostColor d, int32_t e) {
  return a + b + 1000.0 * c + 10000.0 * (d & 0xFF) + e;
}

/// The text of a string record: one byte into the buffer, by the stated length.
HostString ProbeText(HostString string) {
  if (string == nullptr) return MakeHostString("nil", 3, kASCII);
  int32_t words[4];
  memcpy(words, string, sizeof words);
  char reversed[64];
  const int32_t length = words[3] < 64 ? words[3] : 64;
  for (int32_t i = 0; i < length; ++i) {
    reversed[i] = reinterpret_cast<const char*>(words[1])[length - i];
  }
  return MakeHostString(reversed, length, kRawBytes);
}

void ProbeRefs(int32_t* integer, double* number, HostMemoryBlock* block, uint8_t* flag) {
  *integer += 1;
  *number /= 2;
  if (*block == nullptr) *block = service::newMemoryBlock(12);
  static_cast<uint8_t*>(service::memoryBlockGetPtr(*block))[0] += 7;
  *flag = *flag == 0 ? 1 : 0;
}

HostColor ProbeColor(HostColor color) { return color ^ 0x00FFFFFF; }

void ProbeRaise() { RaiseNilObjectException("raised by the probe"); }

int32_t level = 0;
int32_t ProbeLevel(HostPicture /*picture*/, int32_t x) { return level + x; }
void SetProbeLevel(HostPicture /*picture*/, int32_t x, int32_t value) { level = 100 * x + value; }

void ProbeForget(HostPicture picture) { service::REALLockObject(asObject(picture)); }
void ProbeStayLocked(HostPicture picture) {
  PictureDescription description{};
  service::lockPictureDescription(picture, &description);
  LockPixels(GetGWorldPixMap(static_cast<GWorldPtr>(description.data)));
}

struct Fields {
  HostPicture picture;
  int32_t count;
  double size;
  int32_t constructed;
};

ClassRecord probeClass;

Fields& fieldsOf(HostObject object) { return instanceData<Fields>(probeClass, object); }
void construct(HostObject object) { fieldsOf(object).constructed = 41; }
void destroy(HostObject object) {
  if (HostPicture picture = fieldsOf(object).picture) service::REALUnlockObject(asObject(picture));
}
double half(HostObject object, int32_t param) { return fieldsOf(object).size / 2 + param; }
void setHalf(HostObject object, int32_t param, double value) {
  fieldsOf(object).size = 2 * (value - param);
}
int32_t constructed(HostObject object) { return fieldsOf(object).constructed; }

PropertyRecord properties[] = {
    {nullptr, "Picture", "Picture", 0, QRZ_HOST_FIELD_ACCESS, QRZ_HOST_FIELD_ACCESS, 0, {}},
    {nullptr, "Count", "Integer", 0, QRZ_HOST_FIELD_ACCESS, QRZ_HOST_FIELD_ACCESS, 4, {}},
    {nullptr, "Size", "Double", 0, QRZ_HOST_FIELD_ACCESS, QRZ_HOST_FIELD_ACCESS, 8, {}},
    {nullptr, "Half", "Double", 0, function(half), function(setHalf), 3, {}},
};
MethodRecord classMethods[] = {{function(constructed), nullptr, "Constructed as integer", 0}};
MethodRecord pictureMethods[] = {
    {function(ProbeLevel), function(SetProbeLevel), "ProbeLevel(x as integer) as integer", 0},
    {function(ProbeForget), nullptr, "ProbeForget", 0},
    {function(ProbeStayLocked), nullptr, "ProbeStayLocked", 0},
};
MethodRecord globals[] = {
    {function(ProbeSum), nullptr,
     "ProbeSum(a as integer, b as double, c as boolean=true, d as color=&c000002, e as integer = "
     "-5) as double",
     0},
    {function(ProbeText), nullptr, "ProbeText(s as string) as string", 0},
    {function(ProbeRefs), nullptr,
     "ProbeRefs(byref i as integer, byref d as double, byref m as memoryblock, byref b as boolean)",
     0},
    {function(ProbeColor), nullptr, "ProbeColor(c as color) as color", 0},
    {function(ProbeRaise), nullptr, "ProbeRaise", 0},
};

ClassRecord pictureExtension;

}  // namespace

extern "C" __attribute__((visibility("default"))) void REALPluginMain(HostResolver hostResolver) {
  resolver = hostResolver;
  probeClass.version = kInterfaceVersion;
  probeClass.name = "ProbeQRZ";
  probeClass.dataSize = 32;
  probeClass.constructor = function(construct);
  probeClass.destructor = function(destroy);
  probeClass.properties = properties;
  probeClass.propertyCount = 4;
  probeClass.methods = classMethods;
  probeClass.methodCount = 1;
  service::PluginRegisterClass(&probeClass);
  pictureExtension.version = kInterfaceVersion;
  pictureExtension.name = "Picture";
  pictureExtension.methods = pictureMethods;
  pictureExtension.methodCount = 3;
  service::PluginRegisterClassExtension(&pictureExtension);
  for (MethodRecord& method : globals) service::PluginRegisterMethod(&method);
}
