#include "plugin/binding/properties.h"

#include "plugin/binding/services.h"

namespace qrz {
namespace {

int32_t integerProperty(HostObject object, const char* name) {
  if (object == nullptr) return 0;
  int32_t value = 0;
  return service::REALGetPropValueInt(object, name, &value) != 0 ? value : 0;
}

}  // namespace

int32_t GetWidthProperty(HostObject object) { return integerProperty(object, "Width"); }

int32_t GetHeightProperty(HostObject object) { return integerProperty(object, "Height"); }

int32_t SetForeColorProperty(HostObject object, HostColor color) {
  return service::REALSetPropValueInt(object, "ForeColor", static_cast<int32_t>(color));
}

int32_t SetPenWidthProperty(HostObject object, int32_t value) {
  return service::REALSetPropValueInt(object, "PenWidth", value);
}

int32_t SetPenHeightProperty(HostObject object, int32_t value) {
  return service::REALSetPropValueInt(object, "PenHeight", value);
}

}  // namespace qrz
