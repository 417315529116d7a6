// machobundle: what it refuses, and that the same image gives the same bytes.

#include <elf.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "host/files/file_bytes.h"
#include "tests/support/bundle.h"
#include "tests/support/command.h"

namespace host {
namespace {

Elf32_Shdr sectionOf(const Bytes& image, uint32_t type) {
  const auto header = recordAt<Elf32_Ehdr>(image, 0);
  for (size_t i = 0; i < header.e_shnum; ++i) {
    const auto section = recordAt<Elf32_Shdr>(image, header.e_shoff + i * sizeof(Elf32_Shdr));
    if (section.sh_type == type) return section;
  }
  throw std::logic_error("the image has no such section");
}

using Damage = std::function<void(Bytes&)>;

/// Changes the segments of a type.
Damage segment(uint32_t type, const std::function<void(Elf32_Phdr&)>& work) {
  return [=](Bytes& image) {
    const auto header = recordAt<Elf32_Ehdr>(image, 0);
    for (size_t i = 0; i < header.e_phnum; ++i) {
      change<Elf32_Phdr>(image, header.e_phoff + i * sizeof(Elf32_Phdr), [&](Elf32_Phdr& it) {
        if (it.p_type == type) work(it);
      });
    }
  };
}

/// Changes the first relocation.
Damage relocation(const std::function<void(Elf32_Rel&)>& work) {
  return [=](Bytes& image) { change<Elf32_Rel>(image, sectionOf(image, SHT_REL).sh_offset, work); };
}

Damage dynamicEntry(int32_t tag, const std::function<void(Elf32_Dyn&)>& work) {
  return [=](Bytes& image) {
    size_t at = sectionOf(image, SHT_DYNAMIC).sh_offset;
    while (recordAt<Elf32_Dyn>(image, at).d_tag != tag) at += sizeof(Elf32_Dyn);
    change<Elf32_Dyn>(image, at, work);
  };
}

/// Puts another entry in the place of one that means nothing here.
Damage addedEntry(int32_t tag, uint32_t value = 0) {
  return dynamicEntry(DT_SYMBOLIC, [=](Elf32_Dyn& it) {
    it.d_tag = tag;
    it.d_un.d_val = value;
  });
}

/// The number of the symbol REALPluginMain.
uint32_t entrySymbol(const Bytes& image) {
  const auto table = sectionOf(image, SHT_DYNSYM);
  for (uint32_t i = 1;; ++i) {
    const auto symbol = recordAt<Elf32_Sym>(image, table.sh_offset + i * sizeof(Elf32_Sym));
    if (symbol.st_shndx != SHN_UNDEF) return i;
  }
}

size_t entrySymbolAt(const Bytes& image) {
  return sectionOf(image, SHT_DYNSYM).sh_offset + entrySymbol(image) * sizeof(Elf32_Sym);
}

/// Where a word of the data is in the image's file.
size_t dataAt(const Bytes& image, uint32_t address) {
  const auto dynamic = sectionOf(image, SHT_DYNAMIC);
  return address - dynamic.sh_addr + dynamic.sh_offset;
}

Damage renamed(const std::string& from, const std::string& to) {
  return [=](Bytes& image) {
    std::ranges::copy(to, image.begin() + static_cast<ptrdiff_t>(offsetOf(image, from)));
  };
}

TEST(BundleTranslation, RefusesByNameWhatItDoesNotKnow) {
  const struct {
    const char* reason;  ///< a part of what is said
    Damage damage;
  } refusals[] = {
      {"relocation of the unknown type 2 at 0x",
       relocation([](auto& it) { it.r_info = R_386_PC32; })},
      {"relocation outside its data at 0x",
       [](Bytes& image) {
         const uint32_t code = recordAt<Elf32_Sym>(image, entrySymbolAt(image)).st_value;
         relocation([code](auto& it) { it.r_offset = code; })(image);
       }},
      {"has two relocations at 0x", relocation([](auto& it) { it.r_offset += 4; })},
      {"has a relocation of no symbol",
       relocation([](auto& it) { it.r_info = 0xFFFFF << 8 | R_386_32; })},
      {"has a relocation to 0xFFF00000, which is nowhere,",
       [](Bytes& image) {
         // The first one is of the first word of the data.
         const auto first = recordAt<Elf32_Rel>(image, sectionOf(image, SHT_REL).sh_offset);
         change<uint32_t>(image, dataAt(image, first.r_offset),
                          [](uint32_t& word) { word = 0xFFF00000; });
       }},
      {"has relocations elsewhere than in its sections", addedEntry(DT_PLTRELSZ, 8)},
      {"has relocations elsewhere than in its sections",
       dynamicEntry(DT_REL, [](auto& it) { it.d_un.d_ptr += 8; })},
      {"has relocations in its code (DT_TEXTREL)", addedEntry(DT_TEXTREL)},
      {"runs code when it is loaded (DT_INIT)", addedEntry(DT_INIT_ARRAY)},
      {"runs code when it is unloaded (DT_FINI)", addedEntry(DT_FINI)},
      {"needs a library: ", addedEntry(DT_NEEDED, 1)},
      {"unknown dynamic entry 0x24", addedEntry(36)},  // DT_RELR
      {"unknown flags (DT_FLAGS 0x10)", addedEntry(DT_FLAGS, DF_STATIC_TLS)},
      {"(PT_GNU_RELRO)", segment(PT_GNU_STACK, [](auto& it) { it.p_type = PT_GNU_RELRO; })},
      {"(PT_TLS)", segment(PT_GNU_STACK, [](auto& it) { it.p_type = PT_TLS; })},
      {"stack that can be executed", segment(PT_GNU_STACK, [](auto& it) { it.p_flags |= PF_X; })},
      {"more segments than one of code and one of data",
       segment(PT_GNU_STACK, [](auto& it) { it.p_type = PT_LOAD; })},
      {"code that can be changed",
       segment(PT_LOAD, [](auto& it) { it.p_flags = PF_R | PF_W | PF_X; })},
      {"section that no segment loads: ",
       segment(PT_LOAD, [](auto& it) { it.p_offset += 0x1000; })},
      {"exports REALPluginMaim", renamed("REALPluginMain", "REALPluginMaim")},
      {"imports calloc_, which is on no list",
       renamed("GetHandleSize", std::string("calloc_\0", 8))},
      {"unknown section .dato", renamed(".data", ".dato")},
      {"section that no segment loads: ",
       [](Bytes& image) { change<Elf32_Ehdr>(image, 0, [](Elf32_Ehdr& it) { it.e_phnum = 0; }); }},
      {"no shared ELF image for i386", [](Bytes& image) { image[EI_CLASS] = ELFCLASS64; }},
  };
  for (const auto& [reason, damage] : refusals) {
    Bytes image = smallImage();
    damage(image);
    EXPECT_NE(faultOf([&] { bundleOf(image); }).find(reason), std::string::npos)
        << reason << ": " << faultOf([&] { bundleOf(image); });
  }
  const Bytes whole = smallImage();
  for (size_t size = 0; size < whole.size(); ++size) {
    EXPECT_NE(faultOf([&] {
                bundleOf({whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size)});
              }),
              "")
        << size;
  }
}

TEST(BundleTranslation, AddressOfTheImagesOwnSymbol) {
  Bytes image = smallImage();
  const auto entry = recordAt<Elf32_Sym>(image, entrySymbolAt(image));
  uint32_t place = 0;
  relocation([&](Elf32_Rel& it) {
    place = it.r_offset;
    it.r_info = ELF32_R_INFO(entrySymbol(image), R_386_32);
  })(image);
  change<uint32_t>(image, dataAt(image, place), [](uint32_t& word) { word = 8; });
  EXPECT_EQ(recordAt<uint32_t>(bundleOf(image), place), entry.st_value + 8);
}

TEST(BundleTranslation, WhatOnlyTheElfLoaderUsesDoesNotShow) {
  const Bytes wanted = bundleOf(smallImage());
  Bytes image = smallImage();
  const auto relocations = sectionOf(image, SHT_REL);
  uint32_t last = 0;
  for (uint32_t at = 0; at < relocations.sh_size; at += sizeof(Elf32_Rel)) {
    const auto each = recordAt<Elf32_Rel>(image, relocations.sh_offset + at);
    if (ELF32_R_TYPE(each.r_info) != R_386_GLOB_DAT) continue;
    change<uint32_t>(image, dataAt(image, each.r_offset), [](uint32_t& word) { word = 0x1234; });
    last = std::max(last, each.r_offset);
  }
  // The loader's own words follow; the first is the address of the dynamic section.
  const size_t reserved = dataAt(image, last + 4);
  ASSERT_EQ(recordAt<uint32_t>(image, reserved), sectionOf(image, SHT_DYNAMIC).sh_addr);
  std::fill_n(image.begin() + static_cast<ptrdiff_t>(reserved), 12, uint8_t{0x77});
  EXPECT_EQ(bundleOf(image), wanted);
}

class MachobundleTest : public FolderTest {
 protected:
  [[nodiscard]] Outcome translate(const std::string& image) const {
    return runCommand(QRZ_BUILD_FOLDER "/machobundle " + image + " " + path("out"));
  }
  static std::string small(const std::string& name) {
    return QRZ_BUILD_FOLDER "/small_plugins/" + name + ".so";
  }
};

TEST_F(MachobundleTest, SaysInOneLineWhatIsWrongAndLeavesNothing) {
  const std::pair<std::string, std::string> refusals[] = {
      {small("constructor"), "has constructors, which run when it is loaded (.init_array)"},
      {small("thread_local"), "has thread-local variables (PT_TLS)"},
      {small("strange_import"), "imports exit, which is on no list of imports"},
      {path("none"),
       "cannot be read: No such file or directory; check the name and the permissions"},
      {"/dev/zero", "is no ordinary file; name another one"},
      {path("pipe"), "is no ordinary file; name another one"},
      {path("empty"), "is truncated: the file ends before its header"},
  };
  runCommand("cd " + folder + " && mkfifo pipe && touch empty");
  for (const auto& [image, reason] : refusals) {
    const Outcome outcome = translate(image);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "machobundle: " + image + ": " + reason + "\n");
  }
  EXPECT_EQ(runCommand("ls -A " + folder).output, "empty\npipe\n");
  EXPECT_EQ(runCommand(QRZ_BUILD_FOLDER "/machobundle").status, 2);
}

TEST_F(MachobundleTest, TheSameImageGivesTheSameBytes) {
  ASSERT_EQ(translate(small("small")).output, "");
  EXPECT_EQ(readFile(path("out")), bundleOf(smallImage()));
  EXPECT_EQ(runCommand("test -x " + path("out")).status, 0);
}

}  // namespace
}  // namespace host
