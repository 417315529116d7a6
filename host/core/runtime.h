// The process-wide state of the host. The plug-in's services take no context,
// so there is one host in a process.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "host/core/exception.h"
#include "host/core/pixel_store.h"
#include "host/core/registry.h"

namespace host {

struct Settings {
  Storage newPictures = Storage::GWorld;  ///< what newPicture makes
  double version = 2019.0;                ///< what REALGetRBVersion reports
  /// New pictures are white. Without it they hold anything, which takes no time:
  /// for measurements.
  bool blanksNewPictures = true;
};

/// Called with the name of every host service and platform call, and with
/// "resolve NAME" for every look-up, before it is carried out. False makes a
/// call that can fail do so.
using CallHook = bool (*)(const char* call);

class Runtime {
 public:
  Settings settings;
  Registry registry;
  /// Services that the resolver answers with another address, or with null as
  /// if the host did not have them.
  std::map<std::string, void*, std::less<>> replacedServices;

  /// What opened files and new pictures of scripts are kept in.
  [[nodiscard]] Storage storageOfOpenedPictures() const {
    return settings.newPictures == Storage::Bitmap ? Storage::Bitmap : Storage::GWorld;
  }

  /// An exception raised during a call of the plug-in, delivered when the call
  /// returns. A later one replaces it.
  void setPendingException(Ref<Object> exception) { pending_ = std::move(exception); }
  /// Throws the pending exception, if any, as RaisedException.
  void deliverPendingException();

  /// What the plug-in did wrong, one line each: an unlock without a lock, a
  /// handle that is no object, …
  void reportMisuse(std::string text) { misuses_.push_back(std::move(text)); }
  [[nodiscard]] const std::vector<std::string>& misuses() const { return misuses_; }
  /// For those that are meant to happen.
  std::vector<std::string> takeMisuses() { return std::exchange(misuses_, {}); }

  /// Everything that is wrong at this moment if no script value is left:
  /// misuses, objects alive, pictures and pixel maps locked. Empty if all is well.
  [[nodiscard]] std::vector<std::string> findLeaks() const;

  void setCallHook(CallHook hook);
  /// Reports a call to the hook; false if it is to fail.
  [[nodiscard]] bool called(const char* call) const {
    return callHook_ == nullptr || callHook_(call);
  }

 private:
  Ref<Object> pending_;
  std::vector<std::string> misuses_;
  CallHook callHook_ = nullptr;
};

Runtime& runtime();

/// Adds the built-in classes to the registry. Once.
void addBuiltInClasses(Registry& registry);

/// The host's resolver: the address of a service, or null.
void* resolveService(const char* name);

}  // namespace host
