#include "host/core/object.h"

#include <algorithm>
#include <unordered_map>

namespace host {
namespace {

/// Every living object and its serial number.
std::unordered_map<const void*, uint64_t>& livingObjects() {
  static std::unordered_map<const void*, uint64_t> objects;
  return objects;
}

uint64_t nextSerial() {
  static uint64_t serial = 0;
  return ++serial;
}

}  // namespace

Object::Object(std::string className) : className_(std::move(className)), serial_(nextSerial()) {
  livingObjects().emplace(this, serial_);
}

Object::~Object() { livingObjects().erase(this); }

void Object::release() {
  if (--references_ > 0) return;
  // What runs while the object dies may count references on it once more.
  references_ = 1;
  destroy();
}

bool Object::isAlive(const void* object) { return livingObjects().contains(object); }

std::vector<const Object*> Object::living() {
  std::vector<const Object*> objects;
  for (const auto& [object, serial] : livingObjects()) {
    objects.push_back(static_cast<const Object*>(object));
  }
  std::ranges::sort(objects, {}, [](const Object* object) { return object->serial_; });
  return objects;
}

}  // namespace host
