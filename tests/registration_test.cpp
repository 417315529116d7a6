// The entry point, the binding of services and what is registered.

#include <algorithm>

#include "plugin/binding/records.h"
#include "tests/support/plugin_test.h"

namespace host {
namespace {

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

TEST_F(RegistrationTest, EntryCallsInOrder) {
  const std::vector<std::string> expected = {"resolve RegisterPluginVersion",
                                             "RegisterPluginVersion",
                                             "resolve REALGetRBVersion",
                                             "REALGetRBVersion",
                                             "resolve REALenterMovies",
                                             "REALenterMovies",
                                             "resolve PluginRegisterClass",
                                             "PluginRegisterClass",
                                             "resolve PluginRegisterClassExtension",
                                             "PluginRegisterClassExtension",
                                             "PluginRegisterClassExtension"};
  EXPECT_EQ(eventsOfLoading(), expected);
}

struct VersionCase {
  const char* name;
  double version;
  uint32_t memberFlags;
};

class FlagsTest : public RegistrationTest, public testing::WithParamInterface<VersionCase> {};
INSTANTIATE_TEST_SUITE_P(All, FlagsTest,
                         testing::Values(VersionCase{"Zero", 0.0, 0x40000},
                                         VersionCase{"JustBefore", 2010.028, 0x40000},
                                         VersionCase{"First", 2010.029, 0x40004},
                                         VersionCase{"New", 2019, 0x40004}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(FlagsTest, AreTranslatedForNewHosts) {
  runtime().settings.version = GetParam().version;
  loadPlugin(pluginPath());
  const Class& lut = *runtime().registry.findClass("PictureLut3DQRZ");
  EXPECT_EQ(lut.flags, 4U);
  EXPECT_EQ(lut.dataSize, 140000);
  int members = 0;
  for (const Class& entry : runtime().registry.classes()) {
    for (const Member& member : entry.members) {
      if (!member.isRegistered) continue;
      const std::string& name = member.declaration.name;
      const bool isOld = name == "MakeHBITMAPQRZ" || entry.name == "Graphics";
      EXPECT_EQ(member.flags, isOld ? 0 : GetParam().memberFlags) << name;
      ++members;
    }
  }
  EXPECT_EQ(members, 9 + 2 + 5);
}

TEST_F(RegistrationTest, HostWithoutAVersionGetsTheOldFlags) {
  runtime().replacedServices["REALGetRBVersion"] = nullptr;
  loadPlugin(pluginPath());
  EXPECT_EQ(member("Picture", "InvertQRZ as picture").flags, 0x40000U);
}

TEST_F(RegistrationTest, DeclarationsInTheOrderOfTheCatalogue) {
  loadPlugin(pluginPath());
  const auto declarations = [](const char* className) {
    std::vector<std::string> texts;
    for (const Member& entry : runtime().registry.findClass(className)->members) {
      if (entry.isRegistered) texts.push_back(entry.declaration.text);
    }
    return texts;
  };
  EXPECT_EQ(declarations("PictureLut3DQRZ"),
            (std::vector<std::string>{
                "SourcePicture as Picture", "DestinationPicture as Picture", "MaxX as Integer",
                "MinX as Integer", "MaxY as Integer", "MinY as Integer", "Close", "Run as boolean",
                "Table(r as integer, g as integer, b as integer, x as integer) as double"}));
  const std::string rectangle =
      "(left as integer,top as integer,width as integer,height as integer) as picture";
  EXPECT_EQ(declarations("Picture"),
            (std::vector<std::string>{"MakeHBITMAPQRZ as integer", "InvertQRZ" + rectangle,
                                      "InvertQRZ as picture", "InvertGrayQRZ" + rectangle,
                                      "InvertGrayQRZ as picture"}));
}

/// Fails every look-up.
bool knowsNothing(const char* event) { return !std::string_view(event).starts_with("resolve "); }

TEST_F(RegistrationTest, HostThatKnowsNothing) {
  runtime().setCallHook(knowsNothing);
  loadPlugin(pluginPath());
  EXPECT_FALSE(runtime().registry.findClass("PictureLut3DQRZ"));
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

TEST_F(RegistrationTest, StubMembersDoNothing) {
  loadPlugin(pluginPath());
  const auto picture = Picture::create(Storage::GWorld, 2, 2);
  const auto graphics = makeObject<Graphics>(picture);
  const auto calls = callsDuring([&] {
    EXPECT_EQ(call("Picture", "MakeHBITMAPQRZ as integer", picture.get()), Value{0});
    call("Graphics", "PaintDesktopQRZ", graphics.get());
  });
  EXPECT_TRUE(calls.empty());
}

}  // namespace
}  // namespace host
