// The host's loader of bundles: what it refuses, what it makes of the words of an
// image, and that a bundle gives what the ELF image gives, wherever it is.

#include <elf.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

#include "host/core/runtime.h"
#include "host/files/file_bytes.h"
#include "host/loader/load_plugin.h"
#include "host/loader/mach_o_image.h"
#include "host/manual/manual.h"
#include "host/manual/page.h"
#include "platform/mach_o/content_uuid.h"
#include "platform/mach_o/format.h"
#include "tests/support/bundle.h"
#include "tests/support/command.h"

namespace host {
namespace {

using mach_o::CommandType;
using mach_o::DynamicSymbolTableCommand;
using mach_o::Header;
using mach_o::Relocation;
using mach_o::Section;
using mach_o::SegmentCommand;
using mach_o::Symbol;
using mach_o::SymbolTableCommand;

/// Where the n-th load command of a type stands.
size_t commandAt(const Bytes& bundle, CommandType type, int32_t n = 0) {
  size_t offset = sizeof(Header);
  for (;;) {
    const auto command = recordAt<mach_o::Command>(bundle, offset);
    if (command.type == type && n-- == 0) return offset;
    offset += command.size;
  }
}

/// A change of a record in a bundle.
template <typename Record>
std::function<void(Bytes&)> changing(const std::function<size_t(const Bytes&)>& offset,
                                     const std::function<void(Record&)>& work) {
  return [=](Bytes& bundle) { change<Record>(bundle, offset(bundle), work); };
}

auto header(const std::function<void(Header&)>& work) {
  return changing<Header>([](const Bytes&) { return size_t{0}; }, work);
}
auto segment(int32_t n, const std::function<void(SegmentCommand&)>& work) {
  return changing<SegmentCommand>(
      [n](const Bytes& bundle) { return commandAt(bundle, CommandType::Segment, n); }, work);
}
/// The first section of the data.
auto section(const std::function<void(Section&)>& work) {
  return changing<Section>(
      [](const Bytes& bundle) {
        return commandAt(bundle, CommandType::Segment, 1) + sizeof(SegmentCommand);
      },
      work);
}
auto symbolTable(const std::function<void(SymbolTableCommand&)>& work) {
  return changing<SymbolTableCommand>(
      [](const Bytes& bundle) { return commandAt(bundle, CommandType::SymbolTable); }, work);
}
auto dynamicTable(const std::function<void(DynamicSymbolTableCommand&)>& work) {
  return changing<DynamicSymbolTableCommand>(
      [](const Bytes& bundle) { return commandAt(bundle, CommandType::DynamicSymbolTable); }, work);
}
auto symbol(uint32_t n, const std::function<void(Symbol&)>& work) {
  return changing<Symbol>(
      [n](const Bytes& bundle) {
        const size_t at = commandAt(bundle, CommandType::SymbolTable);
        return recordAt<SymbolTableCommand>(bundle, at).symbolOffset + n * sizeof(Symbol);
      },
      work);
}
DynamicSymbolTableCommand tablesOf(const Bytes& bundle) {
  return recordAt<DynamicSymbolTableCommand>(bundle,
                                             commandAt(bundle, CommandType::DynamicSymbolTable));
}
auto localRelocation(const std::function<void(Relocation&)>& work) {
  return changing<Relocation>(
      [](const Bytes& bundle) { return tablesOf(bundle).localRelocationOffset; }, work);
}
auto externalRelocation(const std::function<void(Relocation&)>& work) {
  return changing<Relocation>(
      [](const Bytes& bundle) { return tablesOf(bundle).externalRelocationOffset; }, work);
}

/// The only page of the small bundle's data.
constexpr uint32_t kSmallData = 0x2000;

TEST(BundleLoading, RefusesWithTheReasonWhatItDoesNotKnow) {
  const struct {
    const char* reason;
    std::function<void(Bytes&)> damage;
  } refusals[] = {
      {"not one for i386 alone", header([](Header& it) { it.magic = 0xFEEDFACF; })},
      {"another processor than i386: type 0x12", header([](Header& it) { it.cpuType = 18; })},
      {"a Mach-O file of type 0x6", header([](Header& it) { it.fileType = 6; })},
      {"unknown header flags 0x2085", header([](Header& it) { it.flags |= 0x2000; })},
      {"more load commands than room", header([](Header& it) { ++it.commandCount; })},
      {"another size than its header says", header([](Header& it) { --it.commandCount; })},
      {"before its load commands", header([](Header& it) { it.commandsSize = 0xFFFFFFF0; })},
      {"load command of the impossible size",
       segment(0, [](SegmentCommand& it) { it.command.size = 0; })},
      {"unknown load command 0x80000022",
       segment(0, [](SegmentCommand& it) { it.command.type = CommandType{0x80000022}; })},
      {"damaged segment __TEXT", segment(0, [](SegmentCommand& it) { ++it.sectionCount; })},
      {"not laid out in pages: __DATA", segment(1, [](SegmentCommand& it) { it.address += 16; })},
      {"a segment above 0x10000000: __DATA",
       segment(1, [](SegmentCommand& it) { it.size = 0xFFFFF000; })},
      {"do not follow each other: __DATA and __LINKEDIT",
       segment(2, [](SegmentCommand& it) { it.address += mach_o::kPageSize; })},
      {"unknown flags of the segment __DATA", segment(1, [](SegmentCommand& it) { it.flags = 1; })},
      {"unknown protection of the segment __TEXT",
       segment(0, [](SegmentCommand& it) { it.maximumProtection = mach_o::kRead; })},
      {"second or damaged LC_UUID",
       symbolTable([](SymbolTableCommand& it) { it.command.type = CommandType::Uuid; })},
      {"code that can be changed in the segment __DATA",
       segment(1, [](SegmentCommand& it) { it.initialProtection = 7; })},
      {"not laid out in pages: __LINKEDIT",
       segment(2, [](SegmentCommand& it) { it.fileSize = it.size + 1; })},
      {"before its segments", segment(2, [](SegmentCommand& it) { it.fileOffset = 0x7FFFFFFF; })},
      {"has constructors, which run when it is loaded (__DATA,__data)",
       section([](Section& it) { it.flags = 9; })},
      {"a section outside its segment", section([](Section& it) { it.size = 0xFFFFFFFF; })},
      {"a section without its bytes", section([](Section& it) { it.fileOffset += 4; })},
      {"relocations of its own", section([](Section& it) { it.relocationCount = 1; })},
      {"before its symbols", symbolTable([](SymbolTableCommand& it) { it.symbolCount = ~0U; })},
      {"a name outside its table", symbolTable([](SymbolTableCommand& it) { it.stringSize = 1; })},
      {"outside the range of its kind: _REAL", dynamicTable([](auto& it) { it.definedCount = 0; })},
      {"does not export REALPluginMain",
       [](Bytes& bundle) {
         symbolTable([](SymbolTableCommand& it) {
           it.symbolOffset += sizeof(Symbol);
           --it.symbolCount;
         })(bundle);
         dynamicTable([](auto& it) { it.firstUndefined = 0; })(bundle);
       }},
      {"entry point outside its code", symbol(0, [](Symbol& it) { it.value = 0x7FFFFFFF; })},
      {"entry point outside its code", symbol(0, [](Symbol& it) { it.value = kSmallData; })},
      {"a symbol of the unknown type 0x2: _", symbol(1, [](Symbol& it) { it.type = 2; })},
      {"a name with strange characters",
       [](Bytes& bundle) { bundle[offsetOf(bundle, "_GetHandleSize") + 1] = '\n'; }},
      {"in an unknown way: 0xFE00", symbol(1, [](Symbol& it) { it.value = 8; })},
      {"or indirect symbols", dynamicTable([](auto& it) { it.indirectCount = 1; })},
      {"before its local relocations",
       dynamicTable([](auto& it) { it.localRelocationCount = 0x40000000; })},
      {"relocation of an unknown kind", localRelocation([](auto& it) { it.target |= 1 << 24; })},
      {"relocation outside its data at 0x1000",
       localRelocation([](auto& it) { it.address = 0x1000; })},
      {"relocation outside its data at 0x2FFD",
       externalRelocation([](auto& it) { it.address = kSmallData + mach_o::kPageSize - 3; })},
      {"section that is not there", localRelocation([](auto& it) { it.target &= 7U << 25; })},
      {"relocation of 0x10000, which is no address of its own",
       [](Bytes& bundle) {
         const auto place = recordAt<Relocation>(bundle, tablesOf(bundle).localRelocationOffset);
         change<uint32_t>(bundle, place.address, [](uint32_t& word) { word = 0x10000; });
       }},
      {"two relocations at 0x", localRelocation([](auto& it) { it.address += 4; })},
      {"two relocations at 0x", externalRelocation([](auto& it) { it.address += 2; })},
      {"a symbol that it does not import",
       externalRelocation([](auto& it) { it.target &= 0xFF000000; })},
  };
  const Bytes bundle = bundleOf(smallImage());
  for (const auto& [reason, damage] : refusals) {
    Bytes damaged = bundle;
    damage(damaged);
    const std::string fault = faultOf([&] { readMachOFile(damaged); });
    EXPECT_NE(fault.find(reason), std::string::npos) << reason << ": " << fault;
  }
}

void* anyImport(const std::string& /*name*/) { return reinterpret_cast<void*>(0x1234); }

TEST(BundleLoading, SurvivesEveryTruncationAndEveryFalseByte) {
  const Bytes bundle = bundleOf(smallImage());
  for (size_t size = 0; size < bundle.size(); ++size) {
    const Bytes start(bundle.begin(), bundle.begin() + static_cast<ptrdiff_t>(size));
    EXPECT_NE(faultOf([&] { readMachOFile(start); }), "") << size;
  }
  const size_t uuid = commandAt(bundle, CommandType::Uuid) + sizeof(mach_o::Command);
  for (size_t i = 0; i < bundle.size(); ++i) {
    Bytes damaged = bundle;
    damaged[i] ^= static_cast<uint8_t>(1 + i % 255);
    const std::string fault = faultOf([&] {
      const MachOFile file = readMachOFile(damaged);
      const MachOImage image(file, anyImport);
      checkContents(file, damaged);
    });
    // An identifier of another kind says nothing about the contents.
    const bool isKind = i == uuid + 6 || i == uuid + 8;
    EXPECT_TRUE(isKind || !fault.empty()) << i;
  }
}

/// Expects that the image is the file's bytes but for the words of the relocations,
/// which hold what they should at this address.
void expectRelocated(const MachOFile& file, const MachOImage& image) {
  const auto base = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(image.bytes().data()));
  Bytes expected(image.bytes().size());
  for (const auto& segment : file.segments) {
    std::ranges::copy(segment.bytes, expected.begin() + static_cast<ptrdiff_t>(segment.address));
  }
  for (const uint32_t place : file.localFixUps) {
    change<uint32_t>(expected, place, [base](uint32_t& word) { word += base; });
  }
  for (const auto& [place, import] : file.importFixUps) {
    void* address = importFromProcess(file.imports[import]);
    change<uint32_t>(expected, place, [address](uint32_t& word) {
      word += static_cast<uint32_t>(reinterpret_cast<uintptr_t>(address));
    });
  }
  EXPECT_TRUE(std::ranges::equal(image.bytes(), expected));
}

Bytes shippedBundle() {
#ifdef QRZ_HAS_BUNDLE
  return readFile(QRZ_BUILD_FOLDER "/PictureQRZ.bundle/Contents/MacOS/PictureQRZ");
#else
  return bundleOf(smallImage());
#endif
}

/// Two addresses that nothing else takes, the sanitizers' memory included.
void* const kLowAddress = reinterpret_cast<void*>(0x48000000);
void* const kHighAddress = reinterpret_cast<void*>(0x71235000);

class BundleAddressTest : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Images, BundleAddressTest,
                         testing::Values("shipped", "small", "linkage_table"));

TEST_P(BundleAddressTest, AtTwoAddressesOnlyRelocatedWordsDiffer) {
  const std::string name = GetParam();
  const Bytes bundle = name == "shipped" ? shippedBundle() : bundleOf(smallImage(name));
  const MachOFile file = readMachOFile(bundle);
  ASSERT_FALSE(file.localFixUps.empty());
  ASSERT_FALSE(file.importFixUps.empty());
  const MachOImage low(file, importFromProcess, kLowAddress);
  const MachOImage high(file, importFromProcess, kHighAddress);
  ASSERT_EQ(low.bytes().data(), kLowAddress);
  ASSERT_EQ(high.bytes().data(), kHighAddress);
  expectRelocated(file, low);
  expectRelocated(file, high);
  std::vector<uint32_t> differing;
  for (uint32_t place = 0; place < low.bytes().size(); place += 4) {
    if (memcmp(&low.bytes()[place], &high.bytes()[place], 4) != 0) differing.push_back(place);
  }
  EXPECT_EQ(differing, file.localFixUps);
}

TEST(BundleLoading, ProtectsWhatItLoads) {
  const Bytes bundle = shippedBundle();
  const MachOFile file = readMachOFile(bundle);
  const MachOImage image(file, importFromProcess, kLowAddress);
  std::ifstream maps("/proc/self/maps");
  std::vector<std::string> protections;
  for (std::string line; std::getline(maps, line);) {
    const uint64_t address = std::stoull(line, nullptr, 16);
    if (address - reinterpret_cast<uintptr_t>(kLowAddress) < image.bytes().size()) {
      protections.push_back(line.substr(line.find(' ') + 1, 3));
    }
  }
  EXPECT_EQ(protections, (std::vector<std::string>{"r-x", "rw-", "r--"}));
}

class BundleCommandTest : public FolderTest {
 protected:
  void store(const std::string& name, const Bytes& bytes) const { writeFile(path(name), bytes); }
  void expectRefused(const std::string& plugin, const std::string& reason) const {
    const Outcome outcome = qrz("--plugin " + path(plugin) + " members");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "qrz: " + path(plugin) + ": " + reason + "\n");
  }
};

TEST_F(BundleCommandTest, OneLineSaysWhatIsWrongWithAPlugin) {
  Bytes bundle = bundleOf(smallImage());
  store("cut", {bundle.begin(), bundle.end() - 1});
  expectRefused("cut", "is truncated: the file ends before its segments");
  rename(path("cut").c_str(), path("moved").c_str());
  Bytes damaged = bundle;
  damaged[0x1800] ^= 1;
  store("damaged", damaged);
  expectRefused("damaged",
                "is damaged: its contents do not fit its identifier; build or copy it again");
  std::ranges::copy(std::string("_GetHandleHize"),
                    bundle.begin() + static_cast<ptrdiff_t>(offsetOf(bundle, "_GetHandleSize")));
  bundle[commandAt(bundle, CommandType::Uuid) + sizeof(mach_o::Command) + 6] = 0x40;
  store("import", bundle);
  expectRefused("import", "imports what this process does not have: GetHandleHize");
  runCommand("mkdir -p " + path("folder"));
  expectRefused("folder", "is a folder, but no bundle with a plug-in in Contents/MacOS");
  runCommand("mkdir -p " + path("folder/Contents") + " && ln -s /proc/self/mem " +
             path("folder/Contents/Info.plist"));
  expectRefused("folder", "cannot be read: Input/output error; check the name and the permissions");
  Bytes image = smallImage();
  image.resize(256);  // behind the headers
  store("part", image);
  expectRefused("part", "is truncated; build or copy it again");
  image[EI_CLASS] = ELFCLASS64;
  store("wide", image);
  expectRefused("wide", "is no plug-in: an ELF image, but not of 32 bits");
  write("text", "no plug-in");
  expectRefused("text", "is no plug-in: neither an ELF image nor a Mach-O bundle");
}

#ifdef QRZ_HAS_BUNDLE

TEST_F(BundleCommandTest, TheFolderMayBearAnyName) {
  runCommand("cp -r " QRZ_BUILD_FOLDER "/PictureQRZ.bundle " + path("Other.bundle"));
  const std::string wanted = qrz("members").output;
  EXPECT_EQ(qrz("--plugin " + path("Other.bundle/") + " members").output, wanted);
  runCommand("mkdir -p " + path("deep/er") + " && ln -s deep/er " + path("link") + " && mv " +
             path("Other.bundle") + " " + path("deep"));
  EXPECT_EQ(qrz("--plugin " + path("link/../Other.bundle") + " members").output, wanted);
  runCommand("mv " + path("deep/Other.bundle") + " " + path("Other.bundle"));
  EXPECT_EQ(qrz("--plugin " + path("Other.bundle/Contents/MacOS/PictureQRZ") + " members").output,
            wanted);
  runCommand("cd " + path("Other.bundle/Contents") +
             " && rm Info.plist && mv MacOS/PictureQRZ MacOS/Other");
  EXPECT_EQ(qrz("--plugin " + path("Other.bundle") + " members").output, wanted);
}

/// The manual, made in a process of its own in which `load` loads the plug-in.
Bytes manualWith(const std::string& file, const std::function<void()>& load) {
  const pid_t child = fork();
  if (child == 0) {
    addBuiltInClasses(runtime().registry);
    load();
    const Manual manual = makeManual();
    const std::string page = manualPage(manual.groups);
    Bytes bytes(page.begin(), page.end());
    for (const ManualPicture& picture : manual.pictures) {
      bytes.insert(bytes.end(), picture.bytes.begin(), picture.bytes.end());
    }
    writeFile(file, bytes);
    _exit(runtime().findLeaks().empty() ? 0 : 1);
  }
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0) << file;
  return readFile(file);
}

TEST_F(BundleCommandTest, TheManualIsTheSameWithEitherArtefactAtAnyAddress) {
  const Bytes wanted =
      manualWith(path("elf"), [] { loadPlugin(QRZ_BUILD_FOLDER "/PictureQRZ.so"); });
  EXPECT_GT(wanted.size(), 1000000U);
  for (void* address : {kLowAddress, kHighAddress}) {
    const Bytes page = manualWith(path("bundle"), [address] {
      const Bytes bundle = shippedBundle();
      static const MachOImage image(readMachOFile(bundle), importFromProcess, address);
      reinterpret_cast<void (*)(void* (*)(const char*))>(image.entryPoint())(resolveService);
    });
    EXPECT_TRUE(page == wanted) << address;
  }
}

#endif

}  // namespace
}  // namespace host
