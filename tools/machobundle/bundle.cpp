#include "tools/machobundle/bundle.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <stdexcept>
#include <string>

#include "platform/mach_o/content_uuid.h"
#include "platform/mach_o/format.h"
#include "tools/machobundle/imports.h"

namespace machobundle {
namespace {

using namespace std::string_view_literals;

constexpr uint32_t pageFloor(uint32_t address) { return address & ~(mach_o::kPageSize - 1); }
constexpr uint32_t pageCeiling(uint32_t address) {
  return pageFloor(address + mach_o::kPageSize - 1);
}

/// A file that grows at its end.
class Bytes {
 public:
  [[nodiscard]] uint32_t size() const { return static_cast<uint32_t>(bytes_.size()); }
  void resize(uint32_t size) { bytes_.resize(size); }

  void appendBytes(std::span<const uint8_t> piece) {
    bytes_.insert(bytes_.end(), piece.begin(), piece.end());
  }
  void appendText(std::string_view text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }
  template <typename Record>
  void appendRecord(const Record& record) {
    appendBytes({reinterpret_cast<const uint8_t*>(&record), sizeof record});
  }
  void write(uint32_t offset, std::span<const uint8_t> piece) {
    std::ranges::copy(piece, bytes_.begin() + static_cast<ptrdiff_t>(offset));
  }

  std::vector<uint8_t> take() && { return std::move(bytes_); }

 private:
  std::vector<uint8_t> bytes_;
};

/// The tables of the last segment.
struct LinkTables {
  std::vector<mach_o::Relocation> local, external;
  std::vector<mach_o::Symbol> symbols;
  std::string strings{'\0'};
};

/// A section, in the order of their numbers, which count from 1.
struct NumberedSection {
  std::string_view segment, name;
  Area area;
  uint32_t flags;
};

class Layout {
 public:
  explicit Layout(const ElfImage& image) : image_(image) {
    sections_.push_back({"__TEXT", "__text", image.code, mach_o::kInstructions});
    if (!image.constants.isEmpty()) {
      sections_.push_back({"__TEXT", "__const", image.constants, mach_o::kRegular});
    }
    sections_.push_back({"__DATA", "__data", image.data, mach_o::kRegular});
    if (!image.zeroFill.isEmpty()) {
      sections_.push_back({"__DATA", "__bss", image.zeroFill, mach_o::kZeroFill});
    }
    dataStart_ = pageFloor(image.data.begin);
    dataFileEnd_ = pageCeiling(image.data.end);
    dataEnd_ = std::max(dataFileEnd_, pageCeiling(image.zeroFill.end));
    if (dataStart_ < std::max(image.code.end, image.constants.end)) {
      throw std::runtime_error("has data in the last page of its code");
    }
    makeTables();
  }

  std::vector<uint8_t> write() {
    Bytes file;
    writeCommands(file);
    if (file.size() > std::min(mach_o::kPageSize, image_.code.begin)) {
      throw std::runtime_error("leaves no room for the header before its code");
    }
    file.resize(dataFileEnd_);
    for (const Piece& piece : image_.pieces) file.write(piece.address, piece.bytes);
    for (const FixUp& fixUp : image_.fixUps) {
      file.write(fixUp.address, {reinterpret_cast<const uint8_t*>(&fixUp.word), 4});
    }
    for (const auto& relocation : tables_.local) file.appendRecord(relocation);
    for (const auto& symbol : tables_.symbols) file.appendRecord(symbol);
    for (const auto& relocation : tables_.external) file.appendRecord(relocation);
    file.appendText(tables_.strings);
    std::vector<uint8_t> bytes = std::move(file).take();
    std::ranges::copy(mach_o::contentUuid(bytes),
                      bytes.begin() + static_cast<ptrdiff_t>(uuidOffset_));
    return bytes;
  }

 private:
  /// The number of the section that holds an address or ends with it.
  uint32_t sectionOf(uint32_t address) const {
    const auto find = [&](uint32_t size) {
      return std::ranges::find_if(sections_, [&](const NumberedSection& section) {
        return section.area.contains(address, size);
      });
    };
    auto found = find(1);
    if (found == sections_.end()) found = find(0);
    return static_cast<uint32_t>(found - sections_.begin()) + 1;
  }

  uint32_t addName(std::string_view name) {
    const auto offset = static_cast<uint32_t>(tables_.strings.size());
    tables_.strings.append(name).push_back('\0');
    return offset;
  }

  void makeTables() {
    tables_.symbols.push_back(
        {addName(mach_o::kEntryPoint), mach_o::kDefinedExternal, 1, 0, image_.entryPoint});
    for (const std::string_view import : image_.imports) {
      const uint32_t name = addName("_" + std::string(import));
      const auto library = static_cast<uint16_t>(libraryOf(import).value() << 8);
      tables_.symbols.push_back({name, mach_o::kUndefinedExternal, 0, library, 0});
    }
    tables_.strings.resize((tables_.strings.size() + 3) / 4 * 4);
    for (const FixUp& fixUp : image_.fixUps) {
      if (fixUp.import.empty()) {
        tables_.local.push_back({fixUp.address, sectionOf(fixUp.word) | mach_o::kWordRelocation});
        continue;
      }
      const auto import = std::ranges::lower_bound(image_.imports, fixUp.import);
      const auto symbol = static_cast<uint32_t>(import - image_.imports.begin()) + 1;
      tables_.external.push_back({fixUp.address, symbol | mach_o::kExternalRelocation});
    }
  }

  uint32_t localOffset() const { return dataFileEnd_; }
  uint32_t symbolOffset() const {
    return localOffset() + static_cast<uint32_t>(tables_.local.size() * sizeof tables_.local[0]);
  }
  uint32_t externalOffset() const {
    return symbolOffset() +
           static_cast<uint32_t>(tables_.symbols.size() * sizeof tables_.symbols[0]);
  }
  uint32_t stringOffset() const {
    return externalOffset() +
           static_cast<uint32_t>(tables_.external.size() * sizeof tables_.external[0]);
  }
  uint32_t fileEnd() const {
    return stringOffset() + static_cast<uint32_t>(tables_.strings.size());
  }

  void writeCommands(Bytes& file) {
    file.resize(sizeof(mach_o::Header));
    uint32_t count = 0;
    const auto counted = [&count, &file](const auto& command) {
      ++count;
      file.appendRecord(command);
    };
    counted(segment("__TEXT", 0, dataStart_, dataStart_, mach_o::kRead | mach_o::kExecute));
    appendSections(file, "__TEXT");
    counted(segment("__DATA", dataStart_, dataEnd_ - dataStart_, dataFileEnd_ - dataStart_,
                    mach_o::kRead | mach_o::kWrite));
    appendSections(file, "__DATA");
    auto link = segment("__LINKEDIT", dataEnd_, pageCeiling(fileEnd() - dataFileEnd_),
                        fileEnd() - dataFileEnd_, mach_o::kRead);
    link.fileOffset = dataFileEnd_;
    counted(link);
    counted(mach_o::SymbolTableCommand{
        {mach_o::CommandType::SymbolTable, sizeof(mach_o::SymbolTableCommand)},
        symbolOffset(),
        static_cast<uint32_t>(tables_.symbols.size()),
        stringOffset(),
        static_cast<uint32_t>(tables_.strings.size())});
    counted(dynamicSymbolTable());
    uuidOffset_ = file.size() + static_cast<uint32_t>(sizeof(mach_o::Command));
    counted(mach_o::UuidCommand{{mach_o::CommandType::Uuid, sizeof(mach_o::UuidCommand)}, {}});
    for (const std::string_view path : kLibraries) {
      ++count;
      appendLibrary(file, path);
    }
    const mach_o::Header header{mach_o::kMagic,
                                mach_o::kCpuTypeI386,
                                mach_o::kCpuSubtypeAll,
                                mach_o::kFileTypeBundle,
                                count,
                                file.size() - static_cast<uint32_t>(sizeof(mach_o::Header)),
                                mach_o::kHeaderFlags};
    file.write(0, {reinterpret_cast<const uint8_t*>(&header), sizeof header});
  }

  /// A segment whose bytes stand in the file where they stand in memory.
  mach_o::SegmentCommand segment(std::string_view name, uint32_t address, uint32_t size,
                                 uint32_t fileSize, uint32_t protection) const {
    const auto sections =
        static_cast<uint32_t>(std::ranges::count(sections_, name, &NumberedSection::segment));
    return {
        {mach_o::CommandType::Segment, static_cast<uint32_t>(sizeof(mach_o::SegmentCommand) +
                                                             sections * sizeof(mach_o::Section))},
        mach_o::nameOf(name),
        address,
        size,
        address,
        fileSize,
        mach_o::kRead | mach_o::kWrite | mach_o::kExecute,
        protection,
        sections,
        0};
  }

  void appendSections(Bytes& file, std::string_view segment) const {
    for (const auto& [ofSegment, name, area, flags] : sections_) {
      if (ofSegment != segment) continue;
      mach_o::Section section{};
      section.name = mach_o::nameOf(name);
      section.segment = mach_o::nameOf(segment);
      section.address = area.begin;
      section.size = area.end - area.begin;
      section.fileOffset = flags == mach_o::kZeroFill ? 0 : area.begin;
      section.alignment = static_cast<uint32_t>(std::countr_zero(area.alignment));
      section.flags = flags;
      file.appendRecord(section);
    }
  }

  mach_o::DynamicSymbolTableCommand dynamicSymbolTable() const {
    mach_o::DynamicSymbolTableCommand command{};
    command.command = {mach_o::CommandType::DynamicSymbolTable, sizeof command};
    command.definedCount = 1;
    command.firstUndefined = 1;
    command.undefinedCount = static_cast<uint32_t>(tables_.symbols.size()) - 1;
    command.externalRelocationOffset = externalOffset();
    command.externalRelocationCount = static_cast<uint32_t>(tables_.external.size());
    command.localRelocationOffset = localOffset();
    command.localRelocationCount = static_cast<uint32_t>(tables_.local.size());
    return command;
  }

  /// Any version of the library will do.
  static void appendLibrary(Bytes& file, std::string_view path) {
    const auto size = static_cast<uint32_t>(sizeof(mach_o::LibraryCommand) + path.size() + 4) & ~3U;
    const uint32_t end = file.size() + size;
    file.appendRecord(mach_o::LibraryCommand{
        {mach_o::CommandType::LoadLibrary, size}, sizeof(mach_o::LibraryCommand), 0, 0, 0});
    file.appendText(path);
    file.resize(end);
  }

  const ElfImage& image_;
  std::vector<NumberedSection> sections_;
  uint32_t dataStart_, dataFileEnd_, dataEnd_;
  uint32_t uuidOffset_ = 0;
  LinkTables tables_;
};

}  // namespace

std::vector<uint8_t> makeBundle(const ElfImage& image) { return Layout(image).write(); }

}  // namespace machobundle
