#include "host/core/memory_block_class.h"

#include <cstring>
#include <new>
#include <string>
#include <type_traits>

#include "host/core/built_in_members.h"
#include "host/core/exception.h"
#include "host/core/memory_block.h"
#include "host/files/memory_block_io.h"

namespace host {
namespace {

using Arguments = std::span<Value>;

Value makeMemoryBlock(Arguments arguments) {
  const int32_t size = integer(arguments[0]);
  if (size < 0) raise("OutOfBoundsException", "A block cannot have fewer than 0 bytes.");
  try {
    return objectValue(makeObject<MemoryBlock>(std::vector<uint8_t>(static_cast<size_t>(size))));
  } catch (const std::bad_alloc&) {
    raise("OutOfMemoryException", "There is no memory for " + std::to_string(size) + " bytes.");
  }
}

/// The address of `count` bytes from the index on; raises an exception if they
/// are not all in the block.
uint8_t* bytesAt(Object* self, const Value& index, size_t count) {
  auto& bytes = as<MemoryBlock>(self).bytes;
  const int32_t offset = integer(index);
  if (offset < 0 || static_cast<size_t>(offset) > bytes.size() ||
      count > bytes.size() - static_cast<size_t>(offset)) {
    const std::string what = count == 1 ? "Byte " + std::to_string(offset) + " is"
                                        : std::to_string(count) + " bytes from byte " +
                                              std::to_string(offset) + " on are";
    raise("OutOfBoundsException",
          what + " not in a block of " + std::to_string(bytes.size()) + " bytes.");
  }
  return bytes.data() + offset;
}

/// A number of the type at a byte offset, in the processor's byte order. What
/// is assigned to an integer keeps its low bits.
template <typename Number>
Member numberAt(const char* declaration) {
  using Shown = std::conditional_t<std::is_integral_v<Number>, int32_t, double>;
  return assignable(
      declaration,
      [](Object* self, Arguments arguments) -> Value {
        Number number{};
        memcpy(&number, bytesAt(self, arguments[0], sizeof number), sizeof number);
        return static_cast<Shown>(number);
      },
      [](Object* self, Arguments arguments, const Value& value) {
        const auto number = static_cast<Number>(std::get<Shown>(value));
        memcpy(bytesAt(self, arguments[0], sizeof number), &number, sizeof number);
      });
}

/// An unsigned 32-bit counter is a double, which holds all of them.
Member counterAt(const char* declaration) {
  return assignable(
      declaration,
      [](Object* self, Arguments arguments) -> Value {
        uint32_t number = 0;
        memcpy(&number, bytesAt(self, arguments[0], sizeof number), sizeof number);
        return static_cast<double>(number);
      },
      [](Object* self, Arguments arguments, const Value& value) {
        const double given = std::get<double>(value);
        if (!(given > -1 && given < 4294967296.0)) {
          raise("OutOfBoundsException", "UInt32Value takes 0 to 4294967295.");
        }
        const auto number = static_cast<uint32_t>(given);
        memcpy(bytesAt(self, arguments[0], sizeof number), &number, sizeof number);
      });
}

size_t sizeArgument(const Value& value) {
  const int32_t size = integer(value);
  if (size < 0) raise("OutOfBoundsException", "A string cannot have fewer than 0 bytes.");
  return static_cast<size_t>(size);
}

/// Raw bytes. A shorter string leaves the rest of the stretch as it was, of a
/// longer one only the start is stored.
Member textAt(const char* declaration) {
  return assignable(
      declaration,
      [](Object* self, Arguments arguments) -> Value {
        const size_t size = sizeArgument(arguments[1]);
        return std::string(reinterpret_cast<char*>(bytesAt(self, arguments[0], size)), size);
      },
      [](Object* self, Arguments arguments, const Value& value) {
        const size_t size = sizeArgument(arguments[1]);
        uint8_t* bytes = bytesAt(self, arguments[0], size);
        std::get<std::string>(value).copy(reinterpret_cast<char*>(bytes), size);
      });
}

Value openPeaksOf(Arguments arguments) {
  const int32_t count = integer(arguments[1]);
  if (count < 1) raise("OutOfBoundsException", "OpenPeaks takes a count above 0.");
  return objectValue(openPeaks(std::get<std::string>(arguments[0]), count));
}

const std::string& path(Arguments arguments) { return std::get<std::string>(arguments[0]); }

}  // namespace

void addMemoryBlock(Registry& registry) {
  Class& block = registry.addClass("MemoryBlock");
  block.constructors = {
      method("Constructor(size as integer) as MemoryBlock",
             [](Object*, Arguments arguments) { return makeMemoryBlock(arguments); })};
  block.sharedMembers = {
      method("Open(path as string) as MemoryBlock",
             [](Object*, Arguments arguments) { return objectValue(openBlock(path(arguments))); }),
      method(
          "OpenSamples(path as string) as MemoryBlock",
          [](Object*, Arguments arguments) { return objectValue(openSamples(path(arguments))); }),
      method("OpenPeaks(path as string, count as integer) as MemoryBlock",
             [](Object*, Arguments arguments) { return openPeaksOf(arguments); }),
  };
  block.members = {
      property(
          "Size as Integer",
          [](Object* self) { return static_cast<int32_t>(as<MemoryBlock>(self).bytes.size()); }),
      numberAt<uint8_t>("Byte(offset as integer) as integer"),
      numberAt<uint8_t>("UInt8Value(offset as integer) as integer"),
      numberAt<int8_t>("Int8Value(offset as integer) as integer"),
      numberAt<uint16_t>("UInt16Value(offset as integer) as integer"),
      numberAt<int16_t>("Int16Value(offset as integer) as integer"),
      numberAt<int32_t>("Long(offset as integer) as integer"),
      numberAt<int32_t>("Int32Value(offset as integer) as integer"),
      counterAt("UInt32Value(offset as integer) as double"),
      numberAt<double>("DoubleValue(offset as integer) as double"),
      textAt("StringValue(offset as integer, size as integer) as string"),
      method("Save(path as string)",
             [](Object* self, Arguments arguments) -> Value {
               saveBlock(as<MemoryBlock>(self), path(arguments));
               return Nil{};
             }),
  };
}

}  // namespace host
