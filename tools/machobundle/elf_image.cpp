#include "tools/machobundle/elf_image.h"

#include <elf.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <map>
#include <string>

#include "platform/mach_o/checked_file.h"
#include "tools/machobundle/imports.h"

namespace machobundle {
namespace {

constexpr std::string_view kEntryName = "REALPluginMain";
using mach_o::CheckedFile;
using mach_o::hex;
using mach_o::kLargestImage;
using mach_o::printable;
using mach_o::refuse;

enum class Use { Code, Constants, Data, ZeroFill, OffsetTable, LinkerTable };

/// Every section that takes up memory, and what becomes of it. What only the
/// ELF loader reads is left out.
const std::map<std::string_view, Use> kSections{
    {".text", Use::Code},
    {".plt", Use::Code},
    {".rodata", Use::Constants},
    {".data.rel.ro", Use::Data},
    {".got", Use::Data},
    {".got.plt", Use::OffsetTable},
    {".data", Use::Data},
    {".bss", Use::ZeroFill},
    {".hash", Use::LinkerTable},
    {".dynsym", Use::LinkerTable},
    {".dynstr", Use::LinkerTable},
    {".rel.dyn", Use::LinkerTable},
    {".rel.plt", Use::LinkerTable},
    {".dynamic", Use::LinkerTable},
};

/// Sections and dynamic entries that deserve more than their name.
const std::map<std::string_view, std::string_view> kReasons{
    {".init", "runs code when it is loaded"},
    {".fini", "runs code when it is unloaded"},
    {".init_array", "has constructors, which run when it is loaded"},
    {".ctors", "has constructors, which run when it is loaded"},
    {".preinit_array", "has constructors, which run when it is loaded"},
    {".fini_array", "has destructors, which run when it is unloaded"},
    {".dtors", "has destructors, which run when it is unloaded"},
    {".tdata", "has thread-local variables"},
    {".tbss", "has thread-local variables"},
    {".eh_frame", "has tables for exceptions"},
    {".gcc_except_table", "has tables for exceptions"},
};

class Reader {
 public:
  explicit Reader(std::span<const uint8_t> file) : file_(file) {}

  ElfImage read() {
    readHeader();
    readSegments();
    readSections();
    readDynamicEntries();
    readSymbols();
    readRelocations();
    std::ranges::sort(image_.fixUps, {}, &FixUp::address);
    for (size_t i = 1; i < image_.fixUps.size(); ++i) {
      if (image_.fixUps[i].address - image_.fixUps[i - 1].address < 4) {
        refuse("has two relocations at " + hex(image_.fixUps[i].address));
      }
    }
    return std::move(image_);
  }

 private:
  template <typename Record>
  std::vector<Record> tableOf(const Elf32_Shdr& section) const {
    return file_.table<Record>(section.sh_offset, section.sh_size / sizeof(Record), "tables");
  }

  std::string_view text(const Elf32_Shdr& strings, uint32_t offset) const {
    const auto all = file_.bytes(strings.sh_offset, strings.sh_size, "names");
    const auto* begin = reinterpret_cast<const char*>(all.data());
    const size_t size = offset < all.size() ? strnlen(begin + offset, all.size() - offset) : 0;
    if (offset + size >= all.size()) refuse("has a name outside its table");
    return {begin + offset, size};
  }

  const Elf32_Shdr& section(uint32_t index) const {
    if (index >= sections_.size()) refuse("names a section that is not there");
    return sections_[index];
  }

  std::string_view nameOf(const Elf32_Shdr& of) const {
    return text(section(header_.e_shstrndx), of.sh_name);
  }

  const Elf32_Shdr& only(uint32_t type, const char* what) const {
    const auto has = [type](const Elf32_Shdr& each) { return each.sh_type == type; };
    if (std::ranges::count_if(sections_, has) != 1) refuse(std::string("has not one ") + what);
    return *std::ranges::find_if(sections_, has);
  }

  void readHeader() {
    header_ = file_.record<Elf32_Ehdr>(0, "header");
    if (memcmp(header_.e_ident, ELFMAG, SELFMAG) != 0 || header_.e_ident[EI_CLASS] != ELFCLASS32 ||
        header_.e_ident[EI_DATA] != ELFDATA2LSB || header_.e_machine != EM_386 ||
        header_.e_type != ET_DYN || header_.e_phentsize != sizeof(Elf32_Phdr) ||
        header_.e_shentsize != sizeof(Elf32_Shdr)) {
      refuse("is no shared ELF image for i386");
    }
    sections_ = file_.table<Elf32_Shdr>(header_.e_shoff, header_.e_shnum, "section headers");
  }

  void readSegments() {
    int32_t loaded = 0;
    segments_ = file_.table<Elf32_Phdr>(header_.e_phoff, header_.e_phnum, "program headers");
    for (const Elf32_Phdr& segment : segments_) {
      const bool isRunnable = (segment.p_flags & PF_X) != 0;
      switch (segment.p_type) {
        case PT_LOAD:
          if (++loaded > 2) refuse("has more segments than one of code and one of data");
          if (isRunnable && (segment.p_flags & PF_W) != 0) refuse("has code that can be changed");
          break;
        case PT_GNU_STACK:
          if (isRunnable) refuse("asks for a stack that can be executed");
          break;
        case PT_DYNAMIC:
          break;
        case PT_TLS:
          refuse("has thread-local variables (PT_TLS)");
        case PT_GNU_RELRO:
          refuse("has data that is protected after loading (PT_GNU_RELRO)");
        default:
          refuse("has a segment of the unknown type " + hex(segment.p_type));
      }
    }
  }

  /// The bytes of the section are those that a segment brings to its address.
  bool isLoaded(const Elf32_Shdr& section) const {
    const bool isWritable = (section.sh_flags & SHF_WRITE) != 0;
    const bool isRunnable = (section.sh_flags & SHF_EXECINSTR) != 0;
    const uint32_t fileSize = section.sh_type == SHT_NOBITS ? 0 : section.sh_size;
    return std::ranges::any_of(segments_, [&](const Elf32_Phdr& segment) {
      const uint32_t from = section.sh_addr - segment.p_vaddr;
      return segment.p_type == PT_LOAD && section.sh_addr >= segment.p_vaddr &&
             from <= segment.p_memsz && section.sh_size <= segment.p_memsz - from &&
             (fileSize == 0 || (section.sh_offset - segment.p_offset == from &&
                                from <= segment.p_filesz && fileSize <= segment.p_filesz - from)) &&
             isWritable == ((segment.p_flags & PF_W) != 0) &&
             (!isRunnable || (segment.p_flags & PF_X) != 0);
    });
  }

  void readSections() {
    for (const Elf32_Shdr& section : sections_) {
      if ((section.sh_flags & SHF_ALLOC) == 0 || section.sh_size == 0) continue;
      const std::string_view name = nameOf(section);
      if (const auto reason = kReasons.find(name); reason != kReasons.end()) {
        refuse(std::string(reason->second) + " (" + printable(name) + ")");
      }
      const auto known = kSections.find(name);
      if (known == kSections.end()) refuse("has an unknown section " + printable(name));
      if (!isLoaded(section)) refuse("has a section that no segment loads: " + printable(name));
      addSection(section, known->second);
    }
    if (image_.code.isEmpty()) refuse("has no code");
    if (image_.data.isEmpty()) refuse("has no data");
    const std::array<Area, 4> areas{image_.code, image_.constants, image_.data, image_.zeroFill};
    for (size_t i = 1; i < areas.size(); ++i) {
      if (!areas[i].isEmpty() && areas[i].begin < areas[i - 1].end) {
        refuse("has its sections in another order than code, constants, data, zeros");
      }
    }
  }

  void addSection(const Elf32_Shdr& section, Use use) {
    if (use == Use::LinkerTable) return;
    const bool hasBytes = section.sh_type == SHT_PROGBITS;
    if (hasBytes == (use == Use::ZeroFill) || (!hasBytes && section.sh_type != SHT_NOBITS)) {
      refuse("has a section of another type than usual: " + printable(nameOf(section)));
    }
    if (section.sh_size > kLargestImage || section.sh_addr > kLargestImage - section.sh_size) {
      refuse("is linked for an address above " + hex(kLargestImage));
    }
    const uint32_t alignment = std::max<uint32_t>(section.sh_addralign, 1);
    if (!std::has_single_bit(alignment) || alignment > mach_o::kPageSize) {
      refuse("has a section of an unknown alignment: " + printable(nameOf(section)));
    }
    Area& area = areaFor(use);
    if (area.isEmpty()) area.begin = area.end = section.sh_addr;
    if (section.sh_addr < area.end) refuse("has sections out of order");
    area.end = section.sh_addr + section.sh_size;
    area.alignment = std::max(area.alignment, alignment);
    if (!hasBytes) return;
    Piece piece{section.sh_addr, file_.bytes(section.sh_offset, section.sh_size, "sections")};
    if (use == Use::OffsetTable) {
      // Three words are the ELF loader's own.
      const uint32_t reserved = std::min<uint32_t>(12, section.sh_size);
      piece = {piece.address + reserved, piece.bytes.subspan(reserved)};
    }
    image_.pieces.push_back(piece);
  }

  Area& areaFor(Use use) {
    switch (use) {
      case Use::Code:
        return image_.code;
      case Use::Constants:
        return image_.constants;
      case Use::ZeroFill:
        return image_.zeroFill;
      default:
        return image_.data;
    }
  }

  void readDynamicEntries() {
    const Elf32_Shdr& dynamic = only(SHT_DYNAMIC, "dynamic section");
    const Elf32_Shdr& strings = section(dynamic.sh_link);
    for (const auto& [tag, value] : tableOf<Elf32_Dyn>(dynamic)) {
      const uint32_t number = value.d_val;
      switch (tag) {
        case DT_NULL:
          return;
        case DT_REL:
        case DT_JMPREL:
          relocationAddresses_.push_back(number);
          break;
        case DT_RELSZ:
        case DT_PLTRELSZ:
          relocationSizes_.push_back(number);
          break;
        case DT_FLAGS:
          if ((number & ~uint32_t{DF_SYMBOLIC | DF_BIND_NOW}) != 0) {
            refuse("has unknown flags (DT_FLAGS " + hex(number) + ")");
          }
          break;
        case DT_FLAGS_1:
          if (number != DF_1_NOW) refuse("has unknown flags (DT_FLAGS_1 " + hex(number) + ")");
          break;
        case DT_SYMBOLIC:
        case DT_HASH:
        case DT_STRTAB:
        case DT_SYMTAB:
        case DT_STRSZ:
        case DT_SYMENT:
        case DT_RELENT:
        case DT_RELCOUNT:
        case DT_PLTGOT:
        case DT_PLTREL:
          break;
        case DT_NEEDED:
          refuse("needs a library: " + printable(text(strings, number)));
        case DT_INIT:
        case DT_INIT_ARRAY:
          refuse("runs code when it is loaded (DT_INIT)");
        case DT_FINI:
        case DT_FINI_ARRAY:
          refuse("runs code when it is unloaded (DT_FINI)");
        case DT_TEXTREL:
          refuse("has relocations in its code (DT_TEXTREL)");
        default:
          refuse("has an unknown dynamic entry " + hex(static_cast<uint32_t>(tag)));
      }
    }
  }

  void readSymbols() {
    const Elf32_Shdr& dynamicSymbols = only(SHT_DYNSYM, "table of dynamic symbols");
    const Elf32_Shdr& strings = section(dynamicSymbols.sh_link);
    symbols_ = tableOf<Elf32_Sym>(dynamicSymbols);
    for (size_t i = 1; i < symbols_.size(); ++i) {
      const Elf32_Sym& symbol = symbols_[i];
      const std::string_view name = text(strings, symbol.st_name);
      names_.push_back(name);
      if (ELF32_ST_BIND(symbol.st_info) != STB_GLOBAL) {
        refuse("has a symbol that is not global: " + printable(name));
      }
      if (symbol.st_shndx == SHN_UNDEF) {
        if (!libraryOf(name)) {
          refuse("imports " + printable(name) + ", which is on no list of imports");
        }
        image_.imports.push_back(name);
      } else if (name == kEntryName && ELF32_ST_TYPE(symbol.st_info) == STT_FUNC &&
                 image_.code.contains(symbol.st_value)) {
        image_.entryPoint = symbol.st_value;
      } else {
        refuse("exports " + printable(name));
      }
    }
    if (image_.entryPoint == 0) refuse("does not export " + std::string(kEntryName));
    std::ranges::sort(image_.imports);
  }

  /// The sections with relocations are those that the dynamic entries name.
  void readRelocations() {
    std::vector<uint32_t> addresses;
    std::vector<uint32_t> sizes;
    for (const Elf32_Shdr& section : sections_) {
      if (section.sh_type != SHT_REL || (section.sh_flags & SHF_ALLOC) == 0) continue;
      addresses.push_back(section.sh_addr);
      sizes.push_back(section.sh_size);
    }
    if (!std::ranges::is_permutation(addresses, relocationAddresses_) ||
        !std::ranges::is_permutation(sizes, relocationSizes_) || addresses.size() > 2) {
      refuse("has relocations elsewhere than in its sections");
    }
    for (const Elf32_Shdr& section : sections_) {
      if (section.sh_type != SHT_REL || (section.sh_flags & SHF_ALLOC) == 0) continue;
      for (const auto& each : tableOf<Elf32_Rel>(section)) image_.fixUps.push_back(fixUp(each));
    }
  }

  FixUp fixUp(const Elf32_Rel& relocation) const {
    const uint32_t address = relocation.r_offset;
    const std::string where = " at " + hex(address);
    const uint32_t addend = wordAt(address);
    const uint32_t type = ELF32_R_TYPE(relocation.r_info);
    uint32_t word = addend;
    switch (type) {
      case R_386_RELATIVE:
        break;
      case R_386_GLOB_DAT:
      case R_386_JMP_SLOT:
        word = 0;
        [[fallthrough]];
      case R_386_32: {
        const uint32_t index = ELF32_R_SYM(relocation.r_info);
        if (index == 0 || index >= symbols_.size()) refuse("has a relocation of no symbol" + where);
        if (symbols_[index].st_shndx == SHN_UNDEF) return {address, word, names_[index - 1]};
        word += symbols_[index].st_value;
        break;
      }
      default:
        refuse("has a relocation of the unknown type " + std::to_string(type) + where);
    }
    if (!isInside(word)) refuse("has a relocation to " + hex(word) + ", which is nowhere," + where);
    return {address, word, {}};
  }

  /// The word at an address in the file-backed data.
  uint32_t wordAt(uint32_t address) const {
    for (const Piece& piece : image_.pieces) {
      const uint32_t from = address - piece.address;
      if (image_.data.contains(address, 4) && address >= piece.address &&
          from <= piece.bytes.size() && piece.bytes.size() - from >= 4) {
        uint32_t word = 0;
        memcpy(&word, piece.bytes.data() + from, sizeof word);
        return word;
      }
    }
    refuse("has a relocation outside its data at " + hex(address));
  }

  /// The address of something, or the end of it.
  bool isInside(uint32_t address) const {
    return std::ranges::any_of(
        std::array{image_.code, image_.constants, image_.data, image_.zeroFill},
        [address](const Area& area) { return area.contains(address, 0) && !area.isEmpty(); });
  }

  CheckedFile file_;
  Elf32_Ehdr header_{};
  std::vector<Elf32_Shdr> sections_;
  std::vector<Elf32_Phdr> segments_;
  std::vector<Elf32_Sym> symbols_;
  std::vector<std::string_view> names_;                          ///< of the symbols from 1 on
  std::vector<uint32_t> relocationAddresses_, relocationSizes_;  ///< by the dynamic entries
  ElfImage image_;
};

}  // namespace

ElfImage readElfImage(std::span<const uint8_t> file) { return Reader(file).read(); }

}  // namespace machobundle
