// The entry point, the binding of services and what is registered.

#include <dlfcn.h>
#include <gmock/gmock.h>

#include <algorithm>

#include "host/loader/load_plugin.h"
#include "host/manual/description.h"
#include "plugin/binding/records.h"
#include "tests/support/plugin_test.h"

namespace host {
namespace {

// --- What is registered ------------------------------------------------------

constexpr uint32_t kMarked = 0x40000;

struct ExpectedMethod {
  const char* declaration;
  uint32_t flags;
  bool isAssignable = false;
};

// clang-format off
const std::vector<ExpectedMethod> graphicsMethods = {
    {"StretchDIBitsQRZ(XDest as integer, YDest as integer, DestWidth as integer, DestHeight as integer, XSource as integer, YSource as integer, SourceWidth as integer, SourceHeight as integer, Bits as memoryblock, ImageWidth as integer, ImageHeight as integer, ImageBitCount as integer) as boolean", 0},
    {"PaintDesktopQRZ", 0},
};

const std::vector<ExpectedMethod> globalMethods = {
    {"BuildPictureWithPicHandleDataQRZ(data as string) as picture", 0},
    {"BuildPictureWithGWorldHandleQRZ(handle as integer, ByPassOwernerShip as boolean) as picture", 0},
    {"BinaryStringtoPictureQRZ(data as String) as Picture", kMarked},
    {"PicturetoBinaryStringQRZ(p as picture) as string", kMarked},
    {"CombinePicturesQRZ(red as picture, blue as picture, green as picture) as picture", kMarked},
    {"MergePictureQRZ(source1 as picture, source2 as picture) as picture", kMarked},
    {"TintPictureQRZ(source as picture, GreyBase as color, SepiaBase as color) as picture", kMarked},
    {"RenderSamplesQRZ(Samples as memoryblock, SampleCount as integer, Smooth as integer, Width as integer, Height as integer, outlinewidth as integer, BackColor as color=&c88B5C4, ForeColor as color=&c274C5A, OutLineColor as color=&c203F4E) as Picture", kMarked},
};

const std::vector<ExpectedMethod> pictureMethods = {
    {"ScrollVerticalQRZ(delta as integer, wrap as boolean, scrollmask as boolean) as boolean", 0},
    {"ScrollHorizontalQRZ(delta as integer, wrap as boolean, scrollmask as boolean) as boolean", 0},
    {"ScrollQRZ(deltaX as integer, deltaY as integer, wrap as boolean, scrollmask as boolean) as boolean", 0},
    {"HasMaskQRZ as boolean", kMarked},
    {"ChangeBrightnessAbsoluteQRZ(r as double, g as double, b as double) as picture", kMarked},
    {"ChangeBrightnessLinearQRZ(r as double, g as double, b as double) as picture", kMarked},
    {"ChangeBrightnessAbsoluteQRZ(x as double) as picture", kMarked},
    {"ChangeBrightnessLinearQRZ(x as double) as picture", kMarked},
    {"ChangeCustomQRZ(a as double, b as double) as picture", kMarked},
    {"ChangeContrastQRZ(x as double) as picture", kMarked},
    {"ChangeContrastQRZ(xr as double, xg as double, xb as double) as picture", kMarked},
    {"MakeHBITMAPQRZ as integer", 0},
    {"InvertQRZ(left as integer,top as integer,width as integer,height as integer) as picture", kMarked},
    {"InvertQRZ as picture", kMarked},
    {"InvertGrayQRZ(left as integer,top as integer,width as integer,height as integer) as picture", kMarked},
    {"InvertGrayQRZ as picture", kMarked},
    {"ExtractColorRectangleMaskQRZ(left as integer,top as integer,width as integer,height as integer) as picture", kMarked},
    {"ExtractColorRectangleMaskQRZ as picture", kMarked},
    {"EmbeddedMaskQRZ(swap as boolean) as picture", kMarked, true},
    {"PicHandleQRZ as picture", 0},
    {"PicHandleDataQRZ as string", 0},
    {"CountColorQRZ(col as color) as integer", kMarked},
    {"CountColorsQRZ(byref red as memoryblock, byref blue as memoryblock, byref green as memoryblock, byref count as integer)", 0},
    {"TransformColorsQRZ(red as memoryblock, blue as memoryblock, green as memoryblock) as picture", 0},
    {"ReplaceColorQRZ(SearchColor as color, ReplaceWithColor as color) as picture", 0},
    {"ExtractColorQRZ(SearchColor as color, ReplaceWithColor as color, BackGroundColor as color) as picture", 0},
    {"ChangeSaturationQRZ(Amount as integer) as picture", kMarked},
    {"ReplaceRedChannelQRZ(RedChannel as picture) as picture", kMarked},
    {"ReplaceGreenChannelQRZ(GreenChannel as picture) as picture", kMarked},
    {"ReplaceBlueChannelQRZ(BlueChannel as picture) as picture", kMarked},
    {"FindPicture(pic as picture, byref x as integer, byref y as integer) as boolean", kMarked},
    {"isWhiteQRZ as boolean", kMarked},
    {"isBlackQRZ as boolean", kMarked},
    {"isWhiteQRZ(left as integer,top as integer,width as integer,height as integer) as boolean", kMarked},
    {"isBlackQRZ(left as integer,top as integer,width as integer,height as integer) as boolean", kMarked},
};

const std::vector<ExpectedMethod> lutMethods = {
    {"Close", kMarked},
    {"Run as boolean", kMarked},
    {"Table(r as integer, g as integer, b as integer, x as integer) as double", kMarked, true},
};
const std::vector<ExpectedMethod> sepiaMethods = {{"Close", 0}, {"Run as boolean", 0}};

/// The fields that the host reaches itself, and what has functions.
const std::vector<std::string> lutProperties = {
    "SourcePicture as Picture at 0", "DestinationPicture as Picture at 4", "MaxX as Integer at 16",
    "MinX as Integer at 8", "MaxY as Integer at 20", "MinY as Integer at 12",
};
const std::vector<std::string> sepiaProperties = {
    "SourcePicture as Picture at 0", "DestinationPicture as Picture at 4", "MaxX as Integer at 16",
    "MinX as Integer at 8", "MaxY as Integer at 20", "MinY as Integer at 12",
    "SepiaRed as Integer at 24", "SepiaGreen as Integer at 28", "SepiaBlue as Integer at 32",
    "FactorRed as Double", "FactorBlue as Double", "FactorGreen as Double",
};
// clang-format on

std::vector<std::string> events;

bool recordEvent(const char* event) {
  events.emplace_back(event);
  return true;
}

/// Loads the plug-in later than the other tests do, when the host is prepared.
class RegistrationTest : public PluginTest {
 protected:
  void SetUp() override { addBuiltInClasses(runtime().registry); }

  static std::vector<std::string> eventsOfLoading() {
    runtime().setCallHook(recordEvent);
    loadPlugin(pluginPath());
    runtime().setCallHook(nullptr);
    return std::exchange(events, {});
  }
};

struct Version {
  const char* name;
  double version;
  bool isNew;
};

std::vector<qrz::ClassRecord*> classRecords;
std::vector<qrz::ClassRecord*> extensionRecords;
std::vector<qrz::MethodRecord*> globalRecords;

/// A host that keeps the records and looks at them later.
class CatalogueTest : public RegistrationTest, public testing::WithParamInterface<Version> {
 protected:
  void SetUp() override {
    RegistrationTest::SetUp();
    runtime().settings.version = GetParam().version;
    auto& services = runtime().replacedServices;
    services["PluginRegisterClass"] =
        reinterpret_cast<void*>(+[](qrz::ClassRecord* record) { classRecords.push_back(record); });
    services["PluginRegisterClassExtension"] = reinterpret_cast<void*>(
        +[](qrz::ClassRecord* record) { extensionRecords.push_back(record); });
    services["PluginRegisterMethod"] = reinterpret_cast<void*>(
        +[](qrz::MethodRecord* record) { globalRecords.push_back(record); });
    loadPlugin(pluginPath());
  }

  static uint32_t translated(uint32_t flags) {
    return flags == kMarked && GetParam().isNew ? 0x40004 : flags;
  }
  static void expectMethod(const qrz::MethodRecord& record, const ExpectedMethod& expected) {
    EXPECT_STREQ(record.declaration, expected.declaration);
    EXPECT_EQ(record.flags, translated(expected.flags)) << expected.declaration;
    EXPECT_NE(record.function, nullptr) << expected.declaration;
    EXPECT_EQ(record.setter != nullptr, expected.isAssignable) << expected.declaration;
  }
  static void expectMethods(const qrz::ClassRecord& record,
                            const std::vector<ExpectedMethod>& expected) {
    ASSERT_EQ(record.methodCount, static_cast<int32_t>(expected.size()));
    for (size_t i = 0; i < expected.size(); ++i) {
      expectMethod(record.methods[i], expected[i]);
      for (size_t k = 0; k < i; ++k) {
        EXPECT_NE(record.methods[i].function, record.methods[k].function)
            << expected[i].declaration << " is " << expected[k].declaration;
      }
    }
  }
  static void expectProperties(const qrz::ClassRecord& record, uint32_t flags,
                               const std::vector<std::string>& expected) {
    std::vector<std::string> properties;
    for (int32_t i = 0; i < record.propertyCount; ++i) {
      const auto& [reserved, name, type, itsFlags, getter, setter, param, unused] =
          record.properties[i];
      const bool isField = getter == QRZ_HOST_FIELD_ACCESS;
      properties.push_back(name + std::string(" as ") + type +
                           (isField ? " at " + std::to_string(param) : ""));
      EXPECT_EQ(itsFlags, translated(flags)) << name;
      EXPECT_EQ(setter == QRZ_HOST_FIELD_ACCESS, isField) << name;
      EXPECT_TRUE(isField || param == 0) << name;
      EXPECT_TRUE(getter != nullptr && setter != nullptr && reserved == nullptr) << name;
      EXPECT_EQ(unused[0] | unused[1] | unused[2], 0U) << name;
    }
    EXPECT_EQ(properties, expected);
  }
  static void expectClass(const qrz::ClassRecord& record, const char* name, int32_t dataSize,
                          uint32_t flags) {
    EXPECT_EQ(record.version, 9);
    EXPECT_STREQ(record.name, name);
    EXPECT_EQ(record.superclass, nullptr);
    EXPECT_EQ(record.dataSize, dataSize);
    EXPECT_EQ(record.systemUse, 0) << "written by the host alone";
    EXPECT_EQ(record.flags, flags);
    const bool isClass = dataSize > 0;
    EXPECT_EQ(record.constructor != nullptr, isClass);
    EXPECT_EQ(record.destructor != nullptr, isClass);
    EXPECT_EQ(record.properties != nullptr, isClass);
    EXPECT_EQ(record.secondProperties, nullptr);
    EXPECT_EQ(record.secondMethods, nullptr);
    EXPECT_EQ(record.secondPropertyCount + record.secondMethodCount, 0);
    for (const uint32_t word : record.unused1) EXPECT_EQ(word, 0U);
    for (const uint32_t word : record.unused2) EXPECT_EQ(word, 0U);
  }
};
INSTANTIATE_TEST_SUITE_P(All, CatalogueTest,
                         testing::Values(Version{"Zero", 0.0, false},
                                         Version{"JustBefore", 2010.028, false},
                                         Version{"First", 2010.029, true},
                                         Version{"New", 2019, true}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(CatalogueTest, Classes) {
  ASSERT_EQ(classRecords.size(), 2U);
  const qrz::ClassRecord& sepia = *classRecords[0];
  expectClass(sepia, "PictureSepiaQRZ", 64, 0);
  expectProperties(sepia, 0, sepiaProperties);
  expectMethods(sepia, sepiaMethods);
  EXPECT_EQ(sepia.methods[0].function, sepia.destructor);
  const qrz::ClassRecord& lut = *classRecords[1];
  expectClass(lut, "PictureLut3DQRZ", 140000, 4);
  expectProperties(lut, kMarked, lutProperties);
  expectMethods(lut, lutMethods);
  EXPECT_EQ(lut.methods[0].function, lut.destructor);
}

TEST_P(CatalogueTest, Extensions) {
  ASSERT_EQ(extensionRecords.size(), 2U);
  expectClass(*extensionRecords[0], "graphics", 0, 4);
  expectMethods(*extensionRecords[0], graphicsMethods);
  expectClass(*extensionRecords[1], "Picture", 0, 4);
  expectMethods(*extensionRecords[1], pictureMethods);
}

TEST_P(CatalogueTest, GlobalMethods) {
  ASSERT_EQ(globalRecords.size(), globalMethods.size());
  for (size_t i = 0; i < globalMethods.size(); ++i) {
    expectMethod(*globalRecords[i], globalMethods[i]);
    if (i > 0) {
      EXPECT_EQ(globalRecords[i], globalRecords[i - 1] + 1) << "records in one array";
    }
  }
}

/// The dynamic linker knows of the ELF images that it loaded, and not of a bundle.
TEST_P(CatalogueTest, RecordsAreThoseOfTheArtefactUnderTest) {
  Dl_info info{};
  const bool isShared = dladdr(globalRecords[0], &info) != 0;
  const bool isBundle = pluginPath().ends_with(".bundle");
  ASSERT_NE(isShared, isBundle);
  if (isShared) {
    EXPECT_EQ(info.dli_fname, pluginPath());
  }
}

TEST_F(RegistrationTest, EntryCallsInOrder) {
  std::vector<std::string> expected = {
      "resolve RegisterPluginVersion", "RegisterPluginVersion",
      "resolve REALGetRBVersion",      "REALGetRBVersion",
      "resolve REALenterMovies",       "REALenterMovies",
      "resolve PluginRegisterClass",   "PluginRegisterClass",
      "PluginRegisterClass",           "resolve PluginRegisterClassExtension",
      "PluginRegisterClassExtension",  "PluginRegisterClassExtension",
      "resolve PluginRegisterMethod"};
  expected.insert(expected.end(), 8, "PluginRegisterMethod");
  EXPECT_EQ(eventsOfLoading(), expected);
}

TEST_F(RegistrationTest, HostWithoutAVersionGetsTheOldFlags) {
  runtime().replacedServices["REALGetRBVersion"] = nullptr;
  loadPlugin(pluginPath());
  EXPECT_EQ(member("Picture", "InvertQRZ as picture").flags, 0x40000U);
}

TEST_F(RegistrationTest, HostThatKnowsNothing) {
  runtime().setCallHook(
      [](const char* event) { return !std::string_view(event).starts_with("resolve "); });
  loadPlugin(pluginPath());
  EXPECT_FALSE(runtime().registry.findClass("PictureLut3DQRZ"));
  EXPECT_TRUE(runtime().registry.globals().empty());
}

TEST_F(RegistrationTest, ServiceIsLookedUpUntilItIsFoundAndNeverAgain) {
  constexpr const char* kInvert = "InvertQRZ as picture";
  loadPlugin(pluginPath());
  const auto lookUps = [] {
    return std::ranges::count(std::exchange(events, {}), "resolve newPicture");
  };
  const auto source = Picture::create(Storage::GWorld, 3, 3);
  runtime().setCallHook(recordEvent);
  runtime().replacedServices["newPicture"] = nullptr;
  EXPECT_FALSE(filter(kInvert, source));
  EXPECT_FALSE(filter(kInvert, source));
  EXPECT_EQ(lookUps(), 2) << "a look-up that failed is tried again";
  runtime().replacedServices.clear();
  EXPECT_TRUE(filter(kInvert, source));
  EXPECT_EQ(lookUps(), 1);
  runtime().replacedServices["newPicture"] = nullptr;
  EXPECT_TRUE(filter(kInvert, source));
  EXPECT_EQ(lookUps(), 0) << "a look-up that succeeded is never repeated";
}

// --- What is said of it ------------------------------------------------------

using DescriptionTest = PluginTest;

TEST_F(DescriptionTest, EveryMemberHasOne) {
  Registry& registry = runtime().registry;
  EXPECT_THAT(descriptionFaults(registry), testing::IsEmpty());
  Member added;
  added.isRegistered = true;
  added.declaration = parseDeclaration("NewQRZ as picture");
  registry.globals().push_back(added);
  EXPECT_THAT(descriptionFaults(registry),
              testing::ElementsAre("NewQRZ as picture: has no description"));
  registry.globals().pop_back();
  registry.globals().pop_back();
  EXPECT_EQ(descriptionFaults(registry).size(), 1U);
}

}  // namespace
}  // namespace host
