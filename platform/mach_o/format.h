// The records of an i386 Mach-O bundle, as they stand in the file: 32-bit words
// in the processor's own byte order. Only what a bundle of classic relocations
// needs.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace mach_o {

inline constexpr uint32_t kMagic = 0xFEEDFACE;
inline constexpr uint32_t kCpuTypeI386 = 7;
inline constexpr uint32_t kCpuSubtypeAll = 3;
inline constexpr uint32_t kFileTypeBundle = 8;
/// No undefined references, input for the dynamic linker, two-level names.
inline constexpr uint32_t kHeaderFlags = 0x85;
inline constexpr uint32_t kPageSize = 0x1000;

struct Header {
  uint32_t magic, cpuType, cpuSubtype, fileType, commandCount, commandsSize, flags;
};

enum class CommandType : uint32_t {
  Segment = 0x1,
  SymbolTable = 0x2,
  DynamicSymbolTable = 0xB,
  LoadLibrary = 0xC,
  Uuid = 0x1B,
};

/// What every load command starts with; `size` counts its bytes, these included.
struct Command {
  CommandType type;
  uint32_t size;
};

/// A name of up to 16 bytes, filled up with zeros.
using Name = std::array<char, 16>;

constexpr Name nameOf(std::string_view text) {
  Name name{};
  for (size_t i = 0; i < text.size() && i < name.size(); ++i) name[i] = text[i];
  return name;
}

/// Bits of a segment's protections.
inline constexpr uint32_t kRead = 1;
inline constexpr uint32_t kWrite = 2;
inline constexpr uint32_t kExecute = 4;

/// Followed by its sections.
struct SegmentCommand {
  Command command;
  Name name;
  uint32_t address, size, fileOffset, fileSize;
  uint32_t maximumProtection, initialProtection;
  uint32_t sectionCount, flags;
};

/// The low byte of a section's flags is its type.
inline constexpr uint32_t kSectionTypeMask = 0xFF;
inline constexpr uint32_t kRegular = 0;
inline constexpr uint32_t kZeroFill = 1;
inline constexpr uint32_t kConstructors = 9;
/// Holds instructions, and nothing else.
inline constexpr uint32_t kInstructions = 0x80000400;

struct Section {
  Name name, segment;
  uint32_t address, size, fileOffset;
  uint32_t alignment;  ///< as a power of two
  uint32_t relocationOffset, relocationCount;
  uint32_t flags, reserved1, reserved2;
};

struct SymbolTableCommand {
  Command command;
  uint32_t symbolOffset, symbolCount, stringOffset, stringSize;
};

struct DynamicSymbolTableCommand {
  Command command;
  uint32_t firstLocal, localCount, firstDefined, definedCount, firstUndefined, undefinedCount;
  uint32_t contentsOffset, contentsCount, moduleOffset, moduleCount;
  uint32_t referenceOffset, referenceCount, indirectOffset, indirectCount;
  uint32_t externalRelocationOffset, externalRelocationCount;
  uint32_t localRelocationOffset, localRelocationCount;
};

/// Followed by the library's path, which stands at `pathOffset` in the command.
struct LibraryCommand {
  Command command;
  uint32_t pathOffset, timestamp, currentVersion, compatibilityVersion;
};

struct UuidCommand {
  Command command;
  std::array<uint8_t, 16> uuid;
};

/// Types of symbols.
inline constexpr uint8_t kUndefinedExternal = 0x01;
inline constexpr uint8_t kDefinedExternal = 0x0F;
/// In place of a library's number, which counts from 1: the first image of the
/// process that has the symbol.
inline constexpr uint8_t kFlatLookup = 0xFE;

struct Symbol {
  uint32_t name;  ///< offset in the string table
  uint8_t type;
  uint8_t section;       ///< counts from 1; 0 if undefined
  uint16_t description;  ///< of an undefined one: its library's number × 256
  uint32_t value;
};

/// One word to be fixed up when the image is loaded.
struct Relocation {
  uint32_t address;  ///< relative to the first segment
  uint32_t target;   ///< low 24 bits: the section (local) or the symbol (external)
};

inline constexpr uint32_t kTargetMask = 0x00FFFFFF;
/// A whole word, not relative to the instruction, of the plain kind.
inline constexpr uint32_t kWordRelocation = 2U << 25;
inline constexpr uint32_t kExternalRelocation = kWordRelocation | 1U << 27;

inline constexpr std::string_view kEntryPoint = "_REALPluginMain";

static_assert(sizeof(Header) == 28 && sizeof(SegmentCommand) == 56 && sizeof(Section) == 68);
static_assert(sizeof(SymbolTableCommand) == 24 && sizeof(DynamicSymbolTableCommand) == 80);
static_assert(sizeof(LibraryCommand) == 24 && sizeof(UuidCommand) == 24);
static_assert(sizeof(Symbol) == 12 && sizeof(Relocation) == 8);

}  // namespace mach_o
