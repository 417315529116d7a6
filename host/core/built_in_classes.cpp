// The classes that every script has: Picture, Graphics and MemoryBlock.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>

#include "host/core/memory_block.h"
#include "host/core/picture.h"
#include "host/core/runtime.h"
#include "host/files/picture_io.h"

namespace host {
namespace {

using Arguments = std::span<Value>;

int32_t integer(const Value& value) { return std::get<int32_t>(value); }

template <typename T>
T& as(Object* self) {
  return static_cast<T&>(*self);
}

Member method(const char* declaration, std::function<Value(Object*, Arguments)> call) {
  Member member;
  member.declaration = parseDeclaration(declaration);
  if (member.declaration.result) member.assignedType = *member.declaration.result;
  member.call = std::move(call);
  return member;
}

Member property(const char* declaration, std::function<Value(Object*)> get,
                std::function<void(Object*, const Value&)> set = nullptr) {
  Member member = method(
      declaration, [get = std::move(get)](Object* self, Arguments /*none*/) { return get(self); });
  member.isProperty = true;
  if (set != nullptr) {
    member.assign = [set = std::move(set)](Object* self, Arguments /*none*/, const Value& value) {
      set(self, value);
    };
  }
  return member;
}

Member assignable(const char* declaration, std::function<Value(Object*, Arguments)> get,
                  std::function<void(Object*, Arguments, const Value&)> set) {
  Member member = method(declaration, std::move(get));
  member.assign = std::move(set);
  return member;
}

// --- Picture -----------------------------------------------------------------

Value makePicture(Arguments arguments) {
  const int32_t width = integer(arguments[0]);
  const int32_t height = integer(arguments[1]);
  const std::string size = std::to_string(width) + " x " + std::to_string(height) + " pixels";
  if (width < 1 || height < 1) {
    raise("OutOfBoundsException", "A picture cannot have " + size + ".");
  }
  auto picture =
      Picture::create(runtime().storageOfOpenedPictures(), width, height, integer(arguments[2]));
  if (!picture) raise("OutOfMemoryException", "There is no memory for " + size + ".");
  return objectValue(picture);
}

void addPicture(Registry& registry) {
  Class& picture = registry.addClass("Picture");
  picture.constructors = {
      method("Constructor(width as integer, height as integer, depth as integer = 32) as Picture",
             [](Object*, Arguments arguments) { return makePicture(arguments); })};
  picture.sharedMembers = {
      method("Open(path as string) as Picture", [](Object*, Arguments arguments) {
        return objectValue(openPicture(std::get<std::string>(arguments[0])));
      })};
  picture.members = {
      property("Width as Integer", [](Object* self) { return as<Picture>(self).width(); }),
      property("Height as Integer", [](Object* self) { return as<Picture>(self).height(); }),
      property("Depth as Integer", [](Object* self) { return as<Picture>(self).depth(); }),
      property(
          "Mask as Picture", [](Object* self) { return objectValue(as<Picture>(self).mask); },
          [](Object* self, const Value& value) {
            setMask(as<Picture>(self), Ref<Picture>::share(objectAs<Picture>(value)));
          }),
      property("Graphics as Graphics",
               [](Object* self) {
                 return objectValue(makeObject<Graphics>(Ref<Picture>::share(&as<Picture>(self))));
               }),
      method("Save(path as string)",
             [](Object* self, Arguments arguments) -> Value {
               savePicture(as<Picture>(self), std::get<std::string>(arguments[0]));
               return Nil{};
             }),
  };
}

// --- Graphics ----------------------------------------------------------------

Picture& target(Object* self) { return as<Graphics>(self).picture(); }

Member penProperty(const char* declaration, int32_t Pen::*field) {
  return property(
      declaration, [field](Object* self) { return target(self).pen.*field; },
      [field](Object* self, const Value& value) {
        // Pens are measured in the platform's 16-bit coordinates.
        target(self).pen.*field = std::clamp(integer(value), 0, INT16_MAX);
      });
}

const Picture& pictureArgument(Arguments arguments) {
  const auto* picture = objectAs<Picture>(arguments[0]);
  if (picture == nullptr) raise("NilObjectException", "The picture to draw is nil.");
  return *picture;
}

Value drawWhole(Object* self, Arguments arguments) {
  const Picture& source = pictureArgument(arguments);
  drawPicture(target(self), source,
              {integer(arguments[1]), integer(arguments[2]), source.width(), source.height(), 0, 0,
               source.width(), source.height()});
  return Nil{};
}

Value drawPart(Object* self, Arguments arguments) {
  const auto at = [&arguments](size_t i) { return integer(arguments[i]); };
  drawPicture(target(self), pictureArgument(arguments),
              {at(1), at(2), at(3), at(4), at(5), at(6), at(7), at(8)});
  return Nil{};
}

void addGraphics(Registry& registry) {
  registry.addClass("Graphics").members = {
      property("Width as Integer", [](Object* self) { return target(self).width(); }),
      property("Height as Integer", [](Object* self) { return target(self).height(); }),
      property(
          "ForeColor as Color", [](Object* self) { return Color{target(self).pen.color}; },
          [](Object* self, const Value& value) {
            target(self).pen.color = std::get<Color>(value).rgb;
          }),
      penProperty("PenWidth as Integer", &Pen::width),
      penProperty("PenHeight as Integer", &Pen::height),
      assignable(
          "Pixel(x as integer, y as integer) as color",
          [](Object* self, Arguments arguments) {
            return Color{target(self).pixel(integer(arguments[0]), integer(arguments[1]))};
          },
          [](Object* self, Arguments arguments, const Value& value) {
            target(self).fill(integer(arguments[0]), integer(arguments[1]), 1, 1,
                              std::get<Color>(value).rgb);
          }),
      method("FillRect(x as integer, y as integer, width as integer, height as integer)",
             [](Object* self, Arguments arguments) -> Value {
               target(self).fill(integer(arguments[0]), integer(arguments[1]),
                                 integer(arguments[2]), integer(arguments[3]),
                                 target(self).pen.color);
               return Nil{};
             }),
      method("DrawLine(x1 as integer, y1 as integer, x2 as integer, y2 as integer)",
             [](Object* self, Arguments arguments) -> Value {
               drawLine(target(self), integer(arguments[0]), integer(arguments[1]),
                        integer(arguments[2]), integer(arguments[3]));
               return Nil{};
             }),
      method("DrawPicture(Image as Picture, x as Integer, y as Integer)", drawWhole),
      method(kDrawPictureDeclaration, drawPart),
  };
}

// --- MemoryBlock -------------------------------------------------------------

/// The address of `count` bytes from the index on; raises an exception if they
/// are not all in the block.
uint8_t* bytesAt(Object* self, const Value& index, size_t count) {
  auto& bytes = as<MemoryBlock>(self).bytes;
  const int32_t offset = integer(index);
  if (offset < 0 || static_cast<size_t>(offset) + count > bytes.size()) {
    raise("OutOfBoundsException", "Byte " + std::to_string(offset) + " is not in a block of " +
                                      std::to_string(bytes.size()) + " bytes.");
  }
  return bytes.data() + offset;
}

Value makeMemoryBlock(Arguments arguments) {
  const int32_t size = integer(arguments[0]);
  if (size < 0) raise("OutOfBoundsException", "A block cannot have fewer than 0 bytes.");
  try {
    return objectValue(makeObject<MemoryBlock>(std::vector<uint8_t>(static_cast<size_t>(size))));
  } catch (const std::bad_alloc&) {
    raise("OutOfMemoryException", "There is no memory for " + std::to_string(size) + " bytes.");
  }
}

void addMemoryBlock(Registry& registry) {
  Class& block = registry.addClass("MemoryBlock");
  block.constructors = {
      method("Constructor(size as integer) as MemoryBlock",
             [](Object*, Arguments arguments) { return makeMemoryBlock(arguments); })};
  block.members = {
      property(
          "Size as Integer",
          [](Object* self) { return static_cast<int32_t>(as<MemoryBlock>(self).bytes.size()); }),
      assignable(
          "Byte(index as integer) as integer",
          [](Object* self, Arguments arguments) -> Value {
            return static_cast<int32_t>(*bytesAt(self, arguments[0], 1));
          },
          [](Object* self, Arguments arguments, const Value& value) {
            *bytesAt(self, arguments[0], 1) = static_cast<uint8_t>(integer(value));
          }),
      assignable(
          "Long(index as integer) as integer",
          [](Object* self, Arguments arguments) -> Value {
            int32_t number = 0;
            memcpy(&number, bytesAt(self, arguments[0], sizeof number), sizeof number);
            return number;
          },
          [](Object* self, Arguments arguments, const Value& value) {
            const int32_t number = integer(value);
            memcpy(bytesAt(self, arguments[0], sizeof number), &number, sizeof number);
          }),
  };
}

}  // namespace

void addBuiltInClasses(Registry& registry) {
  addPicture(registry);
  addGraphics(registry);
  addMemoryBlock(registry);
}

}  // namespace host
