#include "host/core/registry.h"

namespace host {

Class* Registry::findClass(std::string_view name) {
  for (Class& candidate : classes_) {
    if (sameName(candidate.name, name)) return &candidate;
  }
  return nullptr;
}

Class& Registry::addClass(std::string name) {
  classes_.emplace_back().name = std::move(name);
  return classes_.back();
}

}  // namespace host
