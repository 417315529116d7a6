// Exceptions of the host's language.
#pragma once

#include <string>
#include <utility>

#include "host/core/object.h"

namespace host {

/// An exception object: its class name ("NilObjectException") and Message.
class ExceptionObject final : public Object {
 public:
  explicit ExceptionObject(std::string className, std::string text = {})
      : Object(std::move(className)), message(std::move(text)) {}
  std::string message;

 protected:
  ~ExceptionObject() override = default;
};

/// Carries a raised exception object through C++ frames to the script's Catch.
struct RaisedException {
  Ref<Object> instance;
};

/// What is said of an exception that no script caught.
inline std::string messageOf(const RaisedException& raised) {
  const auto* exception = dynamic_cast<const ExceptionObject*>(raised.instance.get());
  return exception != nullptr && !exception->message.empty() ? exception->message
                                                             : raised.instance->className();
}

[[noreturn]] inline void raise(std::string className, std::string message) {
  throw RaisedException{makeObject<ExceptionObject>(std::move(className), std::move(message))};
}

}  // namespace host
