#include "plugin/binding/exceptions.h"

#include <cstring>

#include "plugin/binding/services.h"
#include "plugin/binding/strings.h"

namespace qrz {

void RaiseHostException(const char* className, const char* message) {
  if (!service::RuntimeRaiseException.isThere()) return;
  HostObject exception = service::PluginNewInstance(className);
  if (exception == nullptr) return;
  HostString text = nullptr;
  if (message != nullptr) {
    text = MakeHostString(message, static_cast<int32_t>(strlen(message)), kASCII);
  }
  // The raise takes over the reference to the exception; the host still keeps
  // the object alive while the Message is set.
  service::RuntimeRaiseException(exception);
  service::REALSetPropValueString(exception, "Message", text);
  if (text != nullptr) service::REALUnlockString(text);
}

void RaiseNilObjectException(const char* message) {
  RaiseHostException("NilObjectException", message);
}

}  // namespace qrz
