#include "fuzz/support/inventory.h"

#include <algorithm>
#include <limits>
#include <tuple>

#include "fuzz/support/failing_host.h"
#include "fuzz/support/patterns.h"
#include "host/bench/members.h"
#include "host/core/exception.h"
#include "host/core/instance.h"
#include "host/core/memory_block.h"
#include "host/core/pict_recording.h"
#include "host/core/runtime.h"
#include "plugin/classes/lut3d.h"
#include "tests/support/store_bytes.h"

namespace fuzz {

using host::Nil;
using host::Object;
using host::Picture;
using host::Ref;
using host::Value;

void Inventory::keep(Value value) {
  const bool isObject = host::objectOf(value) != nullptr;
  if (!isObject && !std::holds_alternative<std::string>(value)) return;
  if (isObject && std::ranges::find(slots_, value) != slots_.end()) return;
  if (const auto* picture = host::objectAs<Picture>(value)) {
    pixels_ += pixelsOf(*picture);
  }
  slots_[next_++ % slots_.size()] = std::move(value);
}

Value Inventory::newPicture() {
  constexpr uint8_t kSpecial = 250;
  const uint8_t across = in_.byte();
  int32_t width = across < 160 ? across % 71 : 60 + across % 80;  // for the widest vectors, too
  int32_t height = in_.byte() % 41;
  if (across >= kSpecial) std::tie(width, height) = std::pair(across % 2 != 0 ? 5000 : 1, 1);
  if (across >= kSpecial + 3) std::swap(width, height);
  const uint8_t kind = in_.byte();
  const Pattern pattern{in_.byte(), in_.byte(), host::objectAs<Picture>(object("Picture"))};
  host::Storage storage = host::runtime().storageOfOpenedPictures();
  if (kind % 16 >= 9) storage = host::Storage::GWorld;
  if (kind % 16 == 7) storage = host::Storage::Context;
  if (kind % 16 == 8) storage = host::Storage::Bitmap;
  const int32_t depth = kind % 16 == 10 || kind % 16 == 11 ? 24 : kind % 16 == 12 ? 16 : 32;
  auto picture = Picture::create(storage, width, height, depth);
  if (!picture) return Nil{};
  host::markRowEnds(*picture);
  paint(*picture, pattern);
  if (kind % 16 < 13) return objectValue(picture);
  const auto bytes = host::pictDataOf(*picture);
  Handle data = nullptr;
  PtrToHand(bytes.data(), &data, static_cast<long>(bytes.size()));
  return objectValue(host::makeObject<Picture>(host::pictStore(data)));
}

Value Inventory::newBlock() {
  constexpr size_t kSizes[] = {0, 1, 2, 255, 256, 257, 1023, 1024, 1025, 1100, 3000};
  const uint8_t choice = in_.byte();
  const size_t size = choice < std::size(kSizes) ? kSizes[choice] : choice;
  return objectValue(host::makeObject<host::MemoryBlock>(noise(size, in_.byte())));
}

/// Bytes of the input, or an earlier string with a few of them.
std::string Inventory::newText() {
  const uint8_t choice = in_.byte();
  if (choice % 2 == 0) return in_.text(choice / 2);
  std::string changed = text();
  for (size_t left = choice / 2 % 8; left > 0 && !changed.empty(); --left) {
    changed[in_.raw<uint16_t>() % changed.size()] = static_cast<char>(in_.byte());
  }
  if (choice >= 0xF0) changed.resize(changed.size() / 2);
  return changed;
}

/// With a source, and a region around it; a table of any levels.
Value Inventory::newInstance(const host::Class& kind) {
  Value made = kind.constructors.front().call(nullptr, {});
  auto* instance = host::objectAs<host::Instance>(made);
  keep(made);
  const uint8_t seed = in_.byte();
  host::memberOf(kind.name, "SourcePicture").assign(instance, {}, object("Picture"));
  for (const char* edge : {"MaxX", "MaxY"}) {
    host::memberOf(kind.name, edge).assign(instance, {}, 6000 * (seed % 2));
  }
  if (kind.name != "PictureLut3DQRZ" || seed < 2) return made;
  const auto levels = noise(qrz::kLut3DElements, seed);
  for (size_t i = 0; i < levels.size(); ++i) {
    const auto offset = offsetof(qrz::PictureLut3D, table) + i * sizeof(qrz::Lut3DElement);
    instance->field<qrz::Lut3DElement>(static_cast<int32_t>(offset)) = levels[i] * 1.25 - 30;
  }
  return made;
}

void Inventory::giveMask() {
  const Value picture = object("Picture");
  const Value mask = object("Picture");
  auto* given = host::objectAs<Picture>(mask);
  const bool isLarge = given != nullptr && pixelsOf(*given) > kMostPixels;
  if (host::objectAs<Picture>(picture) == nullptr || isLarge) return;
  try {
    host::setMask(*host::objectAs<Picture>(picture), Ref<Picture>::share(given));
  } catch (const host::RaisedException&) {  // it would be its own mask
    return;
  }
}

Value Inventory::anyObject() {
  const Value& slot = slots_[in_.below(slots_.size())];
  if (host::objectAs<Object>(slot) == nullptr || host::objectAs<host::Instance>(slot) != nullptr) {
    return Nil{};
  }
  hasForeign_ = true;
  return slot;
}

/// An object of the class; now and then nil, or another one, which the host takes for a
/// mistake of its own.
Value Inventory::object(const std::string& className) {
  const uint8_t choice = in_.byte();
  if (choice == 255) return Nil{};
  if (choice == 254) return anyObject();
  std::vector<Value> fitting;
  for (const Value& slot : slots_) {
    const Object* held = host::objectOf(slot);
    if (held != nullptr && host::sameName(held->className(), className)) fitting.push_back(slot);
  }
  return fitting.empty() ? Value(Nil{}) : fitting[choice % fitting.size()];
}

int32_t Inventory::integer() {
  // clang-format off
  constexpr int32_t kNumbers[] = {
      -1, -2, -17, -50, -255, -256, -300, -65536, 100, 127, 128, 255, 256, 257, 299, 300, 301, 500,
      1023, 1024, 1025, 4096, 5000, 32767, 32768, 65535, 0x7FFFFFFF, -0x7FFFFFFF,
      std::numeric_limits<int32_t>::min()};
  // clang-format on
  const uint8_t choice = in_.byte();
  if (choice < 32) return choice % 4;
  if (choice < 128) return choice % 72;
  if (choice < 250) return kNumbers[choice % std::size(kNumbers)];
  return in_.raw<int32_t>();
}

double Inventory::number() {
  using Limits = std::numeric_limits<double>;
  // clang-format off
  constexpr double kNumbers[] = {
      0.0, -0.0, 0.5, 0.1, 1e-9, 1e-310, 127.5, -127.5, 254.9, 255, -255, 256, 1000, 32, -32,
      32767.0 / 1024, 1e9, -1e9, 2147483647, -2147483648.0, 1e19, 1e300, -1e300,
      Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()};
  // clang-format on
  const uint8_t choice = in_.byte();
  if (choice < 64) return choice * 4.25 - 100;
  if (choice < 128) return (choice - 96) / 16.0;
  if (choice < 240) return kNumbers[choice % std::size(kNumbers)];
  return in_.raw<double>();
}

host::Color Inventory::color() {
  const uint8_t choice = in_.byte();
  if (choice >= 0xF0) return {in_.raw<uint32_t>()};
  const auto* picture = host::objectAs<Picture>(object("Picture"));
  if (choice % 2 == 0 || picture == nullptr || picture->store().type() == qrz::kPictData) {
    return {plainColor(choice / 2)};
  }
  return {picture->pixel(in_.byte() % picture->width(), in_.byte() % picture->height())};
}

std::string Inventory::text() {
  std::vector<const std::string*> texts;
  for (const Value& slot : slots_) {
    if (const auto* held = std::get_if<std::string>(&slot)) texts.push_back(held);
  }
  return texts.empty() ? std::string() : *in_.oneOf(texts);
}

/// A GWorld's address, or any other.
int32_t Inventory::handle() {
  auto* picture = host::objectAs<Picture>(object("Picture"));
  if (picture != nullptr && picture->store().type() == qrz::kGWorld) {
    return reinterpret_cast<int32_t>(picture->store().data());
  }
  hasForeign_ = true;
  return integer();
}

Value Inventory::argument(const host::Parameter& parameter) {
  using Kind = host::Type::Kind;
  switch (parameter.type.kind) {
    case Kind::Integer:
      if (parameter.name != "handle") return integer();
      return handle();
    case Kind::Double:
      return number();
    case Kind::Boolean:
      return in_.byte() % 2 != 0;
    case Kind::Color:
      return color();
    case Kind::String:
      return text();
    default:
      return object(parameter.type.className);
  }
}

Value Inventory::self(const host::Class* owner) {
  if (owner == nullptr) return Nil{};
  if (owner->name == "Picture") return object(owner->name);
  if (owner->name == "Graphics") {
    auto* picture = host::objectAs<Picture>(object("Picture"));
    if (picture == nullptr) return Nil{};
    return objectValue(host::makeObject<host::Graphics>(Ref<Picture>::share(picture)));
  }
  // Of an instance's data the plug-in is sure.
  for (const Value& slot : slots_) {
    const Object* held = host::objectOf(slot);
    if (held != nullptr && held->className() == owner->name) return slot;
  }
  return newInstance(*owner);
}

}  // namespace fuzz
