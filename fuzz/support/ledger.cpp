#include "fuzz/support/ledger.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <map>
#include <set>

#include "host/core/instance.h"
#include "host/core/memory_block.h"
#include "host/core/picture.h"
#include "host/core/runtime.h"
#include "host/core/string_record.h"
#include "platform/standin/standin.h"
#include "plugin/classes/filter_instance.h"
#include "tests/support/store_bytes.h"

namespace fuzz {
namespace {

using host::Object;
using host::Picture;

std::vector<Object*> livingObjects() {
  std::vector<Object*> objects;
  for (const Object* object : Object::living()) objects.push_back(const_cast<Object*>(object));
  return objects;
}

/// How many references there ought to be.
using Owners = std::map<const Object*, int32_t>;

void addFieldsOf(Object& object, Owners& owners) {
  if (const auto* picture = dynamic_cast<Picture*>(&object)) ++owners[picture->mask.get()];
  if (auto* instance = dynamic_cast<host::Instance*>(&object)) {
    ++owners[instance->field<Object*>(offsetof(qrz::FilterInstance, SourcePicture))];
    ++owners[instance->field<Object*>(offsetof(qrz::FilterInstance, DestinationPicture))];
  }
  if (const auto* graphics = dynamic_cast<host::Graphics*>(&object)) ++owners[&graphics->picture()];
}

/// Counts stores by type; pictures can share a GWorld.
struct Stores {
  std::set<void*> worlds, contexts, handles;

  void add(Picture& picture) {
    void* data = picture.store().data();
    if (picture.store().type() == qrz::kGWorld) worlds.insert(data);
    if (picture.store().type() == qrz::kBitmapContext) contexts.insert(data);
    if (picture.store().type() == qrz::kPictData) handles.insert(data);
  }
  [[nodiscard]] bool areAll() const {
    const standin::Counts counts = standin::counts();
    const int32_t open =
        counts.pixelLocks + counts.handleLocks + counts.regions + counts.recordings;
    return open == 0 && counts.worlds == std::ssize(worlds) &&
           counts.contexts == std::ssize(contexts) && counts.handles == std::ssize(handles);
  }
};

void checkPicture(const std::string& after, Picture& picture) {
  if (picture.locks() != 0) fail(after + " locked " + picture.describe());
  if (!host::rowEndsAreIntact(picture))
    fail(after + " wrote between the rows of " + picture.describe());
}

/// Quicker under sanitizers than the library's.
bool areSame(std::span<const uint8_t> left, std::span<const uint8_t> right) {
  if (left.size() != right.size()) return false;
  return left.empty() || memcmp(left.data(), right.data(), left.size()) == 0;
}

}  // namespace

void fail(const std::string& what) {
  std::cerr << what << '\n';
  for (const std::string& line : host::runtime().findLeaks()) std::cerr << "  " << line << '\n';
  abort();
}

void checkOwners(const std::string& after,
                 std::initializer_list<std::span<const host::Value>> values, bool hasForeign) {
  Owners owners;
  Stores stores;
  for (const auto& list : values) {
    for (const host::Value& value : list) ++owners[host::objectOf(value)];
  }
  const auto objects = livingObjects();
  for (Object* object : objects) addFieldsOf(*object, owners);
  for (Object* object : objects) {
    const int32_t owned = owners[object];
    if (object->references() != owned) {
      fail(after + ": " + object->describe() + " has not " + std::to_string(owned) + " references");
    }
    auto* picture = dynamic_cast<Picture*>(object);
    if (picture == nullptr) continue;
    stores.add(*picture);
    checkPicture(after, *picture);
  }
  if (!stores.areAll() || host::livingStrings() != 0) fail(after + ": something is left");
  for (const std::string& misuse : host::runtime().takeMisuses()) {
    const bool isForeign = misuse.ends_with("of another kind") || misuse.ends_with("of no GWorld");
    if (!hasForeign || !isForeign) fail(after + ": " + misuse);
  }
}

std::span<uint8_t> bytesOf(Object& object) {
  if (auto* block = dynamic_cast<host::MemoryBlock*>(&object)) return block->bytes;
  auto* picture = dynamic_cast<Picture*>(&object);
  if (picture == nullptr) return {};
  if (picture->store().type() != qrz::kPictData) return host::storeBytesOf(*picture);
  auto* data = static_cast<Handle>(picture->store().data());
  return {reinterpret_cast<uint8_t*>(*data), static_cast<size_t>(standin::sizeOf(data))};
}

bool isEqual(const host::Value& left, const host::Value& right) {
  if (const auto* number = std::get_if<double>(&left)) {
    const auto* other = std::get_if<double>(&right);
    return other != nullptr && std::bit_cast<uint64_t>(*number) == std::bit_cast<uint64_t>(*other);
  }
  Object* object = host::objectOf(left);
  Object* other = host::objectOf(right);
  if (object == nullptr || other == nullptr) return left == right;
  return object == other ||
         (object->describe() == other->describe() && areSame(bytesOf(*object), bytesOf(*other)));
}

Snapshot::Snapshot() {
  for (Object* object : livingObjects()) {
    const auto bytes = bytesOf(*object);
    bytes_.emplace_back(object, std::vector<uint8_t>(bytes.begin(), bytes.end()));
  }
}

std::vector<Object*> Snapshot::changed() const {
  std::vector<Object*> objects;
  for (const auto& [object, before] : bytes_) {
    if (Object::isAlive(object) && !areSame(bytesOf(*object), before)) {
      objects.push_back(object);
    }
  }
  return objects;
}

void Snapshot::restore() const {
  for (const auto& [object, before] : bytes_) {
    const auto bytes = Object::isAlive(object) ? bytesOf(*object) : std::span<uint8_t>();
    if (!bytes.empty() && !areSame(bytes, before)) {
      memcpy(bytes.data(), before.data(), before.size());
    }
  }
}

}  // namespace fuzz
