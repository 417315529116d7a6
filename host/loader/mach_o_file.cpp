#include "host/loader/mach_o_file.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <utility>

#include "platform/mach_o/checked_file.h"
#include "platform/mach_o/content_uuid.h"
#include "platform/mach_o/format.h"

namespace host {
namespace {

using mach_o::CheckedFile;
using mach_o::hex;
using mach_o::kLargestImage;
using mach_o::refuse;

/// Longer than any function's; without it, many symbols of one long name would
/// take up far more memory than the file.
constexpr size_t kLongestName = 255;

std::string textOf(const mach_o::Name& name) {
  return mach_o::printable({name.data(), strnlen(name.data(), name.size())});
}

class Reader {
 public:
  explicit Reader(std::span<const uint8_t> file) : file_(file) {}

  MachOFile read() {
    readHeader();
    readCommands();
    checkSegments();
    readSymbols();
    readRelocations();
    return std::move(result_);
  }

 private:
  using Segment = MachOFile::Segment;

  void readHeader() {
    const auto magic = file_.record<uint32_t>(0, "header");
    if (magic != mach_o::kMagic) refuse("is a Mach-O file, but not one for i386 alone");
    header_ = file_.record<mach_o::Header>(0, "header");
    if (header_.cpuType != mach_o::kCpuTypeI386 || header_.cpuSubtype != mach_o::kCpuSubtypeAll) {
      refuse("is for another processor than i386: type " + hex(header_.cpuType) + ", subtype " +
             hex(header_.cpuSubtype));
    }
    if (header_.fileType != mach_o::kFileTypeBundle) {
      refuse("is no bundle, but a Mach-O file of type " + hex(header_.fileType));
    }
    if (header_.flags != mach_o::kHeaderFlags) {
      refuse("has the unknown header flags " + hex(header_.flags));
    }
  }

  void readCommands() {
    uint32_t offset = sizeof(mach_o::Header);
    const uint32_t end =
        offset +
        static_cast<uint32_t>(file_.bytes(offset, header_.commandsSize, "load commands").size());
    for (uint32_t i = 0; i < header_.commandCount; ++i) {
      if (end - offset < sizeof(mach_o::Command)) refuse("has more load commands than room");
      const auto command = file_.record<mach_o::Command>(offset, "load commands");
      if (command.size < sizeof command || command.size % 4 != 0 || command.size > end - offset) {
        refuse("has a load command of the impossible size " + hex(command.size));
      }
      readCommand(command, offset);
      offset += command.size;
    }
    if (offset != end) refuse("has load commands of another size than its header says");
  }

  void readCommand(mach_o::Command command, uint32_t offset) {
    switch (command.type) {
      case mach_o::CommandType::Segment:
        return readSegment(offset);
      case mach_o::CommandType::SymbolTable:
        return readOnce(symbolTable_, offset, "LC_SYMTAB");
      case mach_o::CommandType::DynamicSymbolTable:
        return readOnce(dynamicSymbolTable_, offset, "LC_DYSYMTAB");
      case mach_o::CommandType::LoadLibrary:
        // The process has what the library would bring.
        ++libraryCount_;
        return;
      case mach_o::CommandType::Uuid:
        if (result_.uuidOffset || command.size != sizeof(mach_o::UuidCommand)) {
          refuse("has a second or damaged LC_UUID");
        }
        result_.uuidOffset = offset + offsetof(mach_o::UuidCommand, uuid);
        return;
    }
    refuse("has the unknown load command " + hex(static_cast<uint32_t>(command.type)));
  }

  template <typename Command>
  void readOnce(std::optional<Command>& slot, uint32_t offset, const char* name) const {
    const auto command = file_.record<Command>(offset, "load commands");
    if (slot || command.command.size != sizeof command) {
      refuse(std::string("has a second or damaged ") + name);
    }
    slot = command;
  }

  void readSegment(uint32_t offset) {
    const auto command = file_.record<mach_o::SegmentCommand>(offset, "load commands");
    const std::string name = textOf(command.name);
    const uint64_t size = sizeof command + uint64_t{command.sectionCount} * sizeof(mach_o::Section);
    if (command.command.size != size) refuse("has a damaged segment " + name);
    if (command.address % mach_o::kPageSize != 0 || command.size % mach_o::kPageSize != 0 ||
        command.size == 0 || command.fileSize > command.size) {
      refuse("has a segment that is not laid out in pages: " + name);
    }
    if (command.size > kLargestImage || command.address > kLargestImage - command.size) {
      refuse("has a segment above " + hex(kLargestImage) + ": " + name);
    }
    if (command.flags != 0) refuse("has unknown flags of the segment " + name);
    const uint32_t protection = command.initialProtection;
    constexpr uint32_t kWriteAndExecute = mach_o::kWrite | mach_o::kExecute;
    if (protection > 7 || (protection & ~command.maximumProtection) != 0) {
      refuse("has an unknown protection of the segment " + name);
    }
    if ((protection & kWriteAndExecute) == kWriteAndExecute) {
      refuse("has code that can be changed in the segment " + name);
    }
    result_.segments.push_back({name, command.address, command.size,
                                file_.bytes(command.fileOffset, command.fileSize, "segments"),
                                protection});
    for (uint32_t i = 0; i < command.sectionCount; ++i) {
      readSection(offset + static_cast<uint32_t>(sizeof command + i * sizeof(mach_o::Section)),
                  command);
    }
  }

  void readSection(uint32_t offset, const mach_o::SegmentCommand& segment) {
    const auto section = file_.record<mach_o::Section>(offset, "load commands");
    const std::string name = textOf(section.segment) + "," + textOf(section.name);
    const uint32_t from = section.address - segment.address;
    if (section.address < segment.address || from > segment.size ||
        section.size > segment.size - from) {
      refuse("has a section outside its segment: " + name);
    }
    if ((section.flags & mach_o::kSectionTypeMask) == mach_o::kConstructors) {
      refuse("has constructors, which run when it is loaded (" + name + ")");
    }
    const bool isZeroFill = section.flags == mach_o::kZeroFill;
    if (!isZeroFill && section.flags != mach_o::kRegular &&
        section.flags != mach_o::kInstructions) {
      refuse("has a section of the unknown kind " + hex(section.flags) + ": " + name);
    }
    if (!isZeroFill && (from > segment.fileSize || section.size > segment.fileSize - from ||
                        section.fileOffset != segment.fileOffset + from)) {
      refuse("has a section without its bytes: " + name);
    }
    if (section.relocationCount != 0) refuse("has relocations of its own in the section " + name);
    ++sectionCount_;
  }

  void checkSegments() {
    auto& segments = result_.segments;
    std::ranges::sort(segments, {}, &Segment::address);
    if (segments.empty() || segments.front().address != 0) refuse("has no segment at address 0");
    for (size_t i = 1; i < segments.size(); ++i) {
      if (segments[i].address != segments[i - 1].end()) {
        refuse("has segments that do not follow each other: " + segments[i - 1].name + " and " +
               segments[i].name);
      }
    }
    if (!symbolTable_ || !dynamicSymbolTable_) refuse("has no symbol tables");
  }

  void readSymbols() {
    const auto& [command, offset, count, stringOffset, stringSize] = *symbolTable_;
    const auto strings = file_.bytes(stringOffset, stringSize, "names");
    const mach_o::DynamicSymbolTableCommand& ranges = *dynamicSymbolTable_;
    bool hasEntryPoint = false;
    for (const mach_o::Symbol& symbol : file_.table<mach_o::Symbol>(offset, count, "symbols")) {
      const std::string name = nameAt(strings, symbol.name);
      const size_t number = importOfSymbol_.size();
      importOfSymbol_.emplace_back();
      if (symbol.type == mach_o::kUndefinedExternal) {
        checkRange(number, ranges.firstUndefined, ranges.undefinedCount, name);
        importOfSymbol_.back() = result_.imports.size();
        result_.imports.push_back(importName(symbol, name));
      } else if (symbol.type == mach_o::kDefinedExternal && name == mach_o::kEntryPoint &&
                 !hasEntryPoint) {
        checkRange(number, ranges.firstDefined, ranges.definedCount, name);
        checkEntryPoint(symbol.value);
        hasEntryPoint = true;
      } else {
        refuse("has a symbol of the unknown type " + hex(symbol.type) + ": " + name);
      }
    }
    if (!hasEntryPoint) refuse("is no plug-in: it does not export REALPluginMain");
  }

  /// The system's loader looks for each kind of symbols in a range of its own.
  static void checkRange(size_t number, uint32_t first, uint32_t count, const std::string& name) {
    if (number < first || number - first >= count) {
      refuse("has a symbol outside the range of its kind: " + name);
    }
  }

  static std::string nameAt(std::span<const uint8_t> strings, uint32_t offset) {
    if (offset >= strings.size()) refuse("has a name outside its table");
    const auto rest = strings.subspan(offset);
    const auto start = rest.first(std::min(rest.size(), kLongestName + 1));
    const auto end = std::ranges::find(start, 0);
    if (end == start.end()) refuse("has a name without an end, or one that is too long");
    std::string name(start.begin(), end);
    for (const char letter : name) {
      if (letter <= ' ' || letter > '~') refuse("has a name with strange characters");
    }
    return name;
  }

  std::string importName(const mach_o::Symbol& symbol, const std::string& name) const {
    const uint32_t library = symbol.description >> 8;
    if ((symbol.description & 0xFF) > 1 || symbol.value != 0 ||
        (library != mach_o::kFlatLookup && (library == 0 || library > libraryCount_))) {
      refuse("wants " + name + " in an unknown way: " + hex(symbol.description));
    }
    if (!name.starts_with('_') || name.size() == 1) {
      refuse("imports " + name + ", which is no C function");
    }
    return name.substr(1);
  }

  void checkEntryPoint(uint32_t address) {
    const Segment* segment = segmentOfByte(address, 1);
    if (segment == nullptr || (segment->protection & mach_o::kExecute) == 0) {
      refuse("has its entry point outside its code");
    }
    result_.entryPoint = address;
  }

  /// The segment whose file-backed bytes hold those at an address.
  const Segment* segmentOfByte(uint32_t address, uint32_t size) const {
    const auto found = std::ranges::find_if(result_.segments, [&](const Segment& segment) {
      return address >= segment.address && address - segment.address <= segment.bytes.size() &&
             size <= segment.bytes.size() - (address - segment.address);
    });
    return found == result_.segments.end() ? nullptr : &*found;
  }

  void readRelocations() {
    const mach_o::DynamicSymbolTableCommand& tables = *dynamicSymbolTable_;
    if (tables.contentsCount != 0 || tables.moduleCount != 0 || tables.referenceCount != 0 ||
        tables.indirectCount != 0) {
      refuse("has tables of contents, modules, references or indirect symbols");
    }
    for (const auto& relocation : file_.table<mach_o::Relocation>(
             tables.localRelocationOffset, tables.localRelocationCount, "local relocations")) {
      readLocal(relocation);
    }
    for (const auto& relocation :
         file_.table<mach_o::Relocation>(tables.externalRelocationOffset,
                                         tables.externalRelocationCount, "external relocations")) {
      readExternal(relocation);
    }
    std::ranges::sort(places_);
    for (size_t i = 1; i < places_.size(); ++i) {
      if (places_[i] - places_[i - 1] < 4) {
        refuse("has two relocations at " + hex(places_[i]));
      }
    }
  }

  /// The address of the word that a relocation is about.
  uint32_t placeOf(const mach_o::Relocation& relocation, uint32_t kind) {
    const uint32_t address = relocation.address;
    if ((address & 0x80000000) != 0 || (relocation.target & ~mach_o::kTargetMask) != kind) {
      refuse("has a relocation of an unknown kind: " + hex(address) + ", " +
             hex(relocation.target));
    }
    const Segment* segment = segmentOfByte(address, 4);
    if (segment == nullptr || (segment->protection & mach_o::kWrite) == 0) {
      refuse("has a relocation outside its data at " + hex(address));
    }
    places_.push_back(address);
    return address;
  }

  void readLocal(const mach_o::Relocation& relocation) {
    const uint32_t place = placeOf(relocation, mach_o::kWordRelocation);
    const uint32_t section = relocation.target & mach_o::kTargetMask;
    if (section == 0 || section > sectionCount_) {
      refuse("has a relocation to a section that is not there at " + hex(place));
    }
    const Segment& segment = *segmentOfByte(place, 4);
    uint32_t word = 0;
    memcpy(&word, segment.bytes.data() + (place - segment.address), sizeof word);
    if (word > result_.segments.back().end()) {
      refuse("has a relocation of " + hex(word) + ", which is no address of its own, at " +
             hex(place));
    }
    result_.localFixUps.push_back(place);
  }

  void readExternal(const mach_o::Relocation& relocation) {
    const uint32_t place = placeOf(relocation, mach_o::kExternalRelocation);
    const uint32_t symbol = relocation.target & mach_o::kTargetMask;
    if (symbol >= importOfSymbol_.size() || !importOfSymbol_[symbol]) {
      refuse("has a relocation to a symbol that it does not import at " + hex(place));
    }
    result_.importFixUps.push_back({place, *importOfSymbol_[symbol]});
  }

  CheckedFile file_;
  mach_o::Header header_{};
  uint32_t sectionCount_ = 0, libraryCount_ = 0;
  std::optional<mach_o::SymbolTableCommand> symbolTable_;
  std::optional<mach_o::DynamicSymbolTableCommand> dynamicSymbolTable_;
  std::vector<std::optional<size_t>> importOfSymbol_;
  std::vector<uint32_t> places_;  ///< of all relocations
  MachOFile result_;
};

}  // namespace

bool isMachO(std::span<const uint8_t> file) {
  // The file's own byte order, the other one, and the 64-bit and universal ones.
  constexpr std::array<uint32_t, 6> kMagics{mach_o::kMagic, 0xCEFAEDFE, 0xFEEDFACF,
                                            0xCFFAEDFE,     0xCAFEBABE, 0xBEBAFECA};
  uint32_t magic = 0;
  if (file.size() < sizeof magic) return false;
  memcpy(&magic, file.data(), sizeof magic);
  return std::ranges::find(kMagics, magic) != kMagics.end();
}

MachOFile readMachOFile(std::span<const uint8_t> file) { return Reader(file).read(); }

void checkContents(const MachOFile& file, std::span<const uint8_t> bytes) {
  if (!file.uuidOffset) return;
  std::vector<uint8_t> contents(bytes.begin(), bytes.end());
  mach_o::Identifier uuid;
  memcpy(uuid.data(), contents.data() + *file.uuidOffset, uuid.size());
  if (!mach_o::isContentUuid(uuid)) return;
  memset(contents.data() + *file.uuidOffset, 0, uuid.size());
  if (mach_o::contentUuid(contents) != uuid) {
    refuse("is damaged: its contents do not fit its identifier; build or copy it again");
  }
}

}  // namespace host
