// The classes that every script has: Picture, Graphics and MemoryBlock.

#include <algorithm>
#include <cstdint>
#include <string>

#include "host/core/built_in_members.h"
#include "host/core/memory_block_class.h"
#include "host/core/picture.h"
#include "host/core/runtime.h"
#include "host/files/picture_io.h"
#include "plugin/binding/description.h"

namespace host {
namespace {

using Arguments = std::span<Value>;

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

/// The picture, to draw into it.
Picture& canvas(Object* self) {
  Picture& picture = target(self);
  if (picture.store().isWritable()) return picture;
  raise("UnsupportedOperationException",
        "A picture of PICT data cannot be drawn into; draw it into a new picture, and into that.");
}

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
  drawPicture(canvas(self), source,
              {integer(arguments[1]), integer(arguments[2]), source.width(), source.height(), 0, 0,
               source.width(), source.height()});
  return Nil{};
}

Value drawPart(Object* self, Arguments arguments) {
  const auto at = [&arguments](size_t i) { return integer(arguments[i]); };
  drawPicture(canvas(self), pictureArgument(arguments),
              {at(1), at(2), at(3), at(4), at(5), at(6), at(7), at(8)});
  return Nil{};
}

/// The address of the GWorld behind the picture; 0 if there is none.
int32_t worldHandle(Object* self) {
  PixelStore& store = target(self).store();
  return store.type() == qrz::kGWorld ? reinterpret_cast<int32_t>(store.data()) : 0;
}

void addGraphics(Registry& registry) {
  registry.addClass("Graphics").members = {
      property("Width as Integer", [](Object* self) { return target(self).width(); }),
      property("Height as Integer", [](Object* self) { return target(self).height(); }),
      property("Handle as Integer", worldHandle),
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
            canvas(self).fill(integer(arguments[0]), integer(arguments[1]), 1, 1,
                              std::get<Color>(value).rgb);
          }),
      method("FillRect(x as integer, y as integer, width as integer, height as integer)",
             [](Object* self, Arguments arguments) -> Value {
               canvas(self).fill(integer(arguments[0]), integer(arguments[1]),
                                 integer(arguments[2]), integer(arguments[3]),
                                 target(self).pen.color);
               return Nil{};
             }),
      method("DrawLine(x1 as integer, y1 as integer, x2 as integer, y2 as integer)",
             [](Object* self, Arguments arguments) -> Value {
               drawLine(canvas(self), integer(arguments[0]), integer(arguments[1]),
                        integer(arguments[2]), integer(arguments[3]));
               return Nil{};
             }),
      method("DrawPicture(Image as Picture, x as Integer, y as Integer)", drawWhole),
      method(kDrawPictureDeclaration, drawPart),
  };
}

}  // namespace

void addBuiltInClasses(Registry& registry) {
  addPicture(registry);
  addGraphics(registry);
  addMemoryBlock(registry);
}

}  // namespace host
