// Every registered member, on pictures of every representation, with every call
// that it makes failing in turn.
//
// Each disturbed call runs in a process of its own that has never called the member
// before, with every block of memory fenced, and is followed there by an undisturbed
// call. What happens in either is compared with what happens without any fault, and
// with the failures that the member's description allows. The last line of the output
// says how much was done.

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <functional>
#include <iostream>

#include "host/bench/cases.h"
#include "host/bench/members.h"
#include "host/core/exception.h"
#include "host/core/pict_recording.h"
#include "host/loader/load_plugin.h"
#include "tests/support/faults.h"
#include "tests/support/fence.h"
#include "tests/support/sweep.h"

namespace host {
namespace {

// --- The calls ---------------------------------------------------------------

constexpr PictureSize kSize{37, 11};

struct Case {
  std::string name;
  std::string member;
  Content content;
  std::function<BenchCall(const Subject&)> make;
  [[nodiscard]] bool is(std::string_view prefix) const { return name.starts_with(prefix); }
};

Ref<Object> instanceWith(std::string_view className, const Subject& subject) {
  auto instance = newInstance(className);
  for (const char* property : {"SourcePicture", "DestinationPicture"}) {
    memberOf(className, property).assign(instance.get(), {}, objectValue(subject.picture));
  }
  return instance;
}

BenchCall onMasked(const Subject& subject, std::vector<Value> arguments) {
  subject.picture->mask = subject.other;
  return {subject.picture, std::move(arguments), {}, {}, {}};
}

BenchCall onPict(const Subject& subject) {
  const auto bytes = pictDataOf(*subject.picture);
  Handle data = nullptr;
  PtrToHand(bytes.data(), &data, static_cast<long>(bytes.size()));
  return {makeObject<Picture>(pictStore(data)), {}, {}, {}, {}};
}

/// The benchmark's sound takes long to make.
BenchCall waveform(int32_t outlineWidth) {
  std::vector<uint8_t> samples(200);
  for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<uint8_t>(i * i * 7);
  return {nullptr,
          {objectValue(memoryBlock(samples)), 0, 4, kSize.width, kSize.height, outlineWidth,
           Color{0x88B5C4}, Color{0x274C5A}, Color{0x203F4E}},
          {},
          {},
          {}};
}

BenchCall fromText(const std::string& text) { return {nullptr, {text}, {}, {}, {}}; }

std::string pictText(const Subject& subject) {
  const auto bytes = pictDataOf(*subject.picture);
  return {bytes.begin(), bytes.end()};
}

/// Found at the end, after so many tries in vain that the places are looked up by hash.
BenchCall inStripes(const Subject& subject) {
  std::vector<uint32_t> words(static_cast<size_t>(kSize.width * kSize.height));
  for (size_t i = 0; i < words.size(); i += 2) words[i] = 0xFFFFFF;
  words.back() = 0xFFFF00;
  subject.picture->setPixels(words);
  return {
      subject.picture, {objectValue(partOf(*subject.picture, 19, 6, {18, 5})), 7, 7}, {}, {}, {}};
}

std::string binaryText(const Subject& subject) {
  std::string text("PPIC\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\40\0\0\0\50", 24);
  text.resize(40);
  text[11] = static_cast<char>(subject.size.width);
  text[15] = static_cast<char>(subject.size.height);
  for (const uint32_t pixel : subject.picture->pixels()) {
    for (const int32_t shift : {16, 8, 0}) text += static_cast<char>(pixel >> shift);
  }
  text[6] = static_cast<char>(text.size() >> 8);
  text[7] = static_cast<char>(text.size());
  return text;
}

/// Besides the benchmark's calls; some take the place of one that makes other calls
/// beforehand.
std::vector<Case> ownCases() {
  using S = const Subject&;
  const auto counters = [] { return objectValue(memoryBlock(std::vector<uint8_t>(1024, 9))); };
  const Content any = Content::Photo;
  // clang-format off
  std::vector<Case> cases = {
      {"BinaryStringtoPictureQRZ", "", any, [](S s) { return fromText(binaryText(s)); }},
      {"BuildPictureWithPicHandleDataQRZ", "", any, [](S s) { return fromText(pictText(s)); }},
      {"PicHandleQRZ, PICT data", "", any, onPict},
      {"PicHandleDataQRZ, PICT data", "", any, onPict},
      {"HasMaskQRZ, mask", "", any, [](S s) { return onMasked(s, {}); }},
      {"ScrollQRZ, mask, wrap", "", any, [](S s) { return onMasked(s, {5, 3, true, true}); }},
      {"ScrollQRZ, mask, no wrap", "", any, [](S s) { return onMasked(s, {5, 3, false, true}); }},
      {"ReplaceRedChannelQRZ, nil", "", any, [](S s) { return BenchCall{s.picture, {Nil{}}, {}, {}, {}}; }},
      {"RenderSamplesQRZ, bars", "", any, [](S) { return waveform(0); }},
      {"RenderSamplesQRZ, thin outline", "", any, [](S) { return waveform(1); }},
      {"RenderSamplesQRZ, wide outline", "", any, [](S) { return waveform(5); }},
      {"CountColorsQRZ, blocks", "", any, [=](S s) { return BenchCall{s.picture, {counters(), counters(), counters(), 0}, {}, {}, {}}; }},
      {"FindPicture, stripes", "", any, inStripes},
      {"PictureLut3DQRZ.Table", "", any, [](S s) { return BenchCall{instanceWith("PictureLut3DQRZ", s), {1, 2, 3, 0}, {}, {}, {}}; }},
      {"PictureLut3DQRZ.Table, assigned", "", any, [](S s) { return BenchCall{instanceWith("PictureLut3DQRZ", s), {17, 17, 17, 2}, 0.5, {}, {}}; }},
  };
  // clang-format on
  for (const std::string_view names :
       {"PictureLut3DQRZ: Close SourcePicture DestinationPicture MaxX MinX MaxY MinY ",
        "PictureSepiaQRZ: Close SourcePicture DestinationPicture MaxX MinX MaxY MinY SepiaRed "
        "SepiaGreen SepiaBlue FactorRed FactorBlue FactorGreen "}) {
    const std::string className(names.substr(0, names.find(':')));
    for (size_t at = names.find(' ') + 1; at < names.size(); at = names.find(' ', at) + 1) {
      const std::string name(names.substr(at, names.find(' ', at) - at));
      cases.push_back({className + "." + name, "", any, [className](S s) {
                         return BenchCall{instanceWith(className, s), {}, {}, {}, {}};
                       }});
    }
  }
  for (Case& entry : cases) entry.member = entry.name.substr(0, entry.name.find(", "));
  return cases;
}

const std::vector<Case>& allCases() {
  static const auto* cases = [] {
    auto* all = new std::vector<Case>(ownCases());
    for (const BenchCase& entry : benchCases()) {
      const auto isIt = [&entry](const Case& own) { return own.name == entry.name(); };
      if (std::ranges::any_of(*all, isIt)) continue;
      all->push_back({entry.name(), std::string(entry.member), entry.contents[0], entry.make});
    }
    return all;
  }();
  return *cases;
}

/// Listed once, since listing them takes as long as many calls.
std::vector<NamedMember> members;

const Member& memberNamed(std::string_view name) {
  for (const NamedMember& named : members) {
    if (named.name == name) return *named.member;
  }
  throw std::logic_error("not registered: " + std::string(name));
}

// --- Their subjects ----------------------------------------------------------

Subject newSubject(Content content, const Representation& representation) {
  std::mt19937 random(3);
  const auto words = [&] {
    std::vector<uint32_t> all(static_cast<size_t>(kSize.width * kSize.height), 0xFFFFFF);
    for (uint32_t& word : all) {
      if (content == Content::Black) word = 0;
      if (content == Content::Photo) word = random() % 3 != 0 ? random() : random() % 256 * 0x10101;
    }
    return all;
  };
  return {content, kSize, pictureWithRowEnds(representation, kSize, words()),
          pictureWithRowEnds(representation, kSize, words())};
}

/// A call with its subject, all pictures in the representation.
struct Prepared {
  Prepared(const Case& entry, const Representation& representation)
      : subject(newSubject(entry.content, representation)),
        call(entry.make(subject)),
        member(memberNamed(entry.member)),
        isInPlace(call.assigned || entry.is("Scroll")) {
    if (subject.picture) pictures = {subject.picture, subject.other};
    const auto keep = [&](Value value) -> Value {
      const auto given = pictureOf(value);
      if (!given || std::ranges::count(pictures, given) > 0) return value;
      const bool isPict = given->store().type() == qrz::kPictData;
      pictures.push_back(isPict
                             ? given
                             : pictureWithRowEnds(representation, {given->width(), given->height()},
                                                  given->pixels()));
      return objectValue(pictures.back());
    };
    for (Value& argument : call.arguments) argument = keep(std::move(argument));
    if (call.assigned) call.assigned = keep(*call.assigned);
    const Value self = keep(objectValue(call.self));
    call.self = Ref<Object>::share(objectOf(self));
  }

  Subject subject;
  BenchCall call;
  const Member& member;
  bool isInPlace;                      ///< the object's own pixels are the result
  std::vector<Ref<Picture>> pictures;  ///< all that it is called with
};

// --- What a call has for a result --------------------------------------------

/// With all that a call can change: ByRef arguments, the object's own pixels, and what an
/// instance made.
Outcome outcomeWith(const Value& result, const Prepared& prepared,
                    const std::vector<Value>& arguments) {
  Outcome outcome = outcomeOf(result);
  const auto& parameters = prepared.member.declaration.parameters;
  for (size_t i = 0; i < parameters.size(); ++i) {
    if (parameters[i].byRef) outcome.add(outcomeOf(arguments[i]));
  }
  Object* self = prepared.call.self.get();
  if (prepared.isInPlace) outcome.add(outcomeOf(objectValue(prepared.call.self)));
  if (prepared.call.release) {
    outcome.add(outcomeOf(memberOf(self->className(), "DestinationPicture").call(self, {})));
  }
  return outcome;
}

/// Calls, or reads and writes a property.
Value callMember(const Prepared& prepared, std::vector<Value>& arguments) {
  const BenchCall& call = prepared.call;
  if (call.assigned) {
    prepared.member.assign(call.self.get(), arguments, *call.assigned);
    return Nil{};
  }
  Value result = prepared.member.call(call.self.get(), arguments);
  if (prepared.member.isProperty) prepared.member.assign(call.self.get(), {}, result);
  return result;
}

/// Calls with faults. All that the call leaves behind is its outcome.
Outcome outcomeOfCall(const Prepared& prepared, const Faults& faults) {
  const BenchCall& call = prepared.call;
  Value result;
  std::vector<Value> arguments = call.arguments;
  {
    const FailingCalls failing(faults);
    try {
      result = callMember(prepared, arguments);
    } catch (const RaisedException& exception) {
      const auto& object = dynamic_cast<const ExceptionObject&>(*exception.instance);
      return Outcome("raised " + object.className(), object.message);
    }
  }
  const Outcome outcome = outcomeWith(result, prepared, arguments);
  expectRowEnds();
  if (call.release) call.release();
  return outcome;
}

// --- Which outcomes are allowed ----------------------------------------------

/// What the descriptions call a failure, with everything else as it was.
Outcome failureOf(const Case& entry, const Representation& representation) {
  Prepared untouched(entry, representation);
  if (entry.is("CountColorsQRZ")) untouched.call.arguments[3] = -1;
  Value failure = Nil{};
  if (untouched.member.declaration.result && !untouched.call.assigned) {
    const Type::Kind kind = untouched.member.declaration.result->kind;
    if (kind == Type::Kind::String) failure = std::string();
    if (kind == Type::Kind::Integer) failure = 0;
    if (kind == Type::Kind::Boolean) failure = false;
  }
  return outcomeWith(failure, untouched, untouched.call.arguments);
}

/// A picture that the plug-in reads through a copy is blank where the host cannot
/// draw: the outcomes with any of the pictures being white.
void addBlanked(const Case& entry, const Representation& representation,
                std::vector<Outcome>& outcomes) {
  const size_t count = Prepared(entry, representation).pictures.size();
  for (uint32_t blanked = 1; blanked < 1U << count; ++blanked) {
    const Prepared prepared(entry, representation);
    for (size_t i = 0; i < count; ++i) {
      Picture& picture = *prepared.pictures[i];
      if ((blanked >> i & 1) != 0) picture.fill(0, 0, picture.width(), picture.height(), 0xFFFFFF);
    }
    outcomes.push_back(outcomeOfCall(prepared, {}));
  }
}

/// A picture is moved in one direction, or in none.
void addPartlyScrolled(const Case& entry, const Representation& representation,
                       std::vector<Outcome>& outcomes) {
  const bool hasRows = !entry.is("ScrollHorizontal");
  const bool hasBoth = entry.is("ScrollQRZ");
  for (const bool rowsStay : {false, true}) {
    for (const bool columnsStay : {false, true}) {
      Prepared prepared(entry, representation);
      if (rowsStay) prepared.call.arguments[hasBoth ? 1 : 0] = 0;
      if (columnsStay) prepared.call.arguments[0] = 0;
      outcomes.push_back(outcomeOfCall(prepared, {}));
      if (!rowsStay || !hasRows) continue;
      outcomes.push_back(outcomeWith(false, prepared, {}));
    }
  }
}

/// The first one is that of a call without faults.
std::vector<Outcome> outcomesFor(const Case& entry, const Representation& representation) {
  std::vector<Outcome> outcomes = {outcomeOfCall(Prepared(entry, representation), {})};
  if (entry.is("Scroll")) {
    addPartlyScrolled(entry, representation, outcomes);
    return outcomes;
  }
  outcomes.push_back(failureOf(entry, representation));
  addBlanked(entry, representation, outcomes);
  if (entry.is("ReplaceRedChannelQRZ, nil")) {  // without a message
    outcomes.emplace_back("raised NilObjectException");
  }
  if (entry.is("RenderSamplesQRZ")) {  // of a block that seems to be empty
    Prepared silent(entry, representation);
    silent.call.arguments[0] = objectValue(memoryBlock({0}));
    outcomes.push_back(outcomeOfCall(silent, {}));
  }
  if (entry.is("RenderSamplesQRZ, wide")) {  // without a drawing surface
    Prepared bars(entry, representation);
    bars.call.arguments[5] = 0;
    outcomes.push_back(outcomeOfCall(bars, {}));
  }
  return outcomes;
}

/// Faults that a member gets over.
bool mustSucceed(const Case& entry, std::string_view fault) {
  return fault == "REALLoadObjectMethod" ||  // there is an older service
         (entry.is("FindPicture") && fault == "calloc");
}

// --- The sweep ---------------------------------------------------------------

/// What the processes share: what the calls of this case may give, and the figures.
struct Shared {
  Outcome outcomes[40];
  size_t outcomeCount;
  uint64_t lookedUp;  ///< by a call without faults
  bool isReached;     ///< a call was made that was to fail
  int32_t cases, faults, lacks;
  uint64_t failed;
};
Shared& shared = *static_cast<Shared*>(
    mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));

bool isSuccess(const Outcome& outcome) { return outcome == shared.outcomes[0]; }

bool isAllowed(const Case& entry, const Outcome& outcome, const Faults& faults) {
  if (isSuccess(outcome)) return true;
  const std::string_view fault = faults.first != 0 ? firstFailed() : faults.lacking;
  if (!faults.forGood && mustSucceed(entry, fault)) return false;
  // Pens that cannot be set draw another line, and who records is not told that nothing
  // was drawn.
  const bool isOther = (entry.is("RenderSamplesQRZ, wide") && fault == "REALSetPropValueInt") ||
                       (entry.is("PicHandleDataQRZ") && fault == "drawPicturePrimitive");
  if (isOther && std::string_view(outcome.head) == shared.outcomes[0].head) return true;
  return std::count(shared.outcomes, shared.outcomes + shared.outcomeCount, outcome) > 0;
}

class FaultTest : public testing::TestWithParam<std::tuple<size_t, Representation>> {
 protected:
  [[nodiscard]] static const Case& entry() { return allCases()[std::get<0>(GetParam())]; }
  [[nodiscard]] static const Representation& representation() { return std::get<1>(GetParam()); }

  /// Runs it in a process of its own; false if anything was wrong there.
  static bool runApart(const std::string& what, const std::function<void()>& work) {
    constexpr uint32_t kSeconds = 20;
    return host::runApart(what, representation(), kSeconds, work);
  }

  /// One call, and whether it leaves everything as it was.
  static Outcome checkedCall(const Faults& faults, bool mayLeak) {
    const Prepared prepared(entry(), representation());
    std::vector<std::unique_ptr<Unchanged>> unchanged;
    // Closing gives back what was taken before.
    mayLeak |= prepared.member.declaration.name == "Close";
    for (const auto& picture : prepared.pictures) {
      const bool isSelf = picture.get() == prepared.call.self.get();
      const bool isMask = picture == prepared.subject.picture->mask;
      if (mayLeak || (prepared.isInPlace && (isSelf || isMask))) continue;
      unchanged.push_back(std::make_unique<Unchanged>(picture));
    }
    const auto blocks = bytesOfBlocks();
    const SamePort samePort;
    const auto before = runtime().findLeaks();
    Outcome outcome = outcomeOfCall(prepared, faults);
    EXPECT_TRUE(mayLeak || runtime().findLeaks() == before)
        << testing::PrintToString(runtime().findLeaks()) << " after "
        << testing::PrintToString(before);
    EXPECT_TRUE(entry().is("CountColorsQRZ") || bytesOfBlocks() == blocks) << "a block was changed";
    return outcome;
  }

  /// Learns what the calls may give.
  static void learn() {
    const auto outcomes = outcomesFor(entry(), representation());
    ASSERT_LE(outcomes.size(), std::size(shared.outcomes));
    std::ranges::copy(outcomes, shared.outcomes);
    shared.outcomeCount = outcomes.size();
    shared.lookedUp = lookedUp();
  }

  /// Twice: as the first call of the process, and after a call that worked.
  static void disturb(const Faults& faults) {
    fenceMemory();
    const bool isFailing = faults.first != 0;
    // What was taken cannot be given back.
    const std::string_view givingBack[] = {"REALUnlockObject", "REALUnlockString",
                                           "unlockPictureDescription"};
    const bool mayLeak = std::ranges::count(givingBack, faults.lacking) > 0;
    for (const char* state : {"cold", "warm"}) {
      const Outcome outcome = checkedCall(faults, mayLeak);
      if (isFailing && firstFailed().empty()) break;
      shared.isReached = true;
      shared.failed |= failed();
      ++(isFailing ? shared.faults : shared.lacks);
      EXPECT_TRUE(isAllowed(entry(), outcome, faults))
          << state << ", failed first: " << firstFailed() << ": " << outcome.head << " instead of "
          << shared.outcomes[0].head;
      EXPECT_TRUE(isSuccess(checkedCall({}, mayLeak))) << state << ": it works the next time";
      if (!isFailing) break;  // by now the services have been found
    }
  }
};

TEST_P(FaultTest, IsHarmless) {
  ++shared.cases;
  ASSERT_TRUE(runApart("without faults", learn));
  for (const bool forGood : {false, true}) {
    shared.isReached = true;
    for (int32_t first = 1; shared.isReached; ++first) {
      shared.isReached = false;
      const std::string what = "call " + std::to_string(first) + (forGood ? " and later ones" : "");
      ASSERT_TRUE(runApart(what, [&] { disturb({first, forGood, {}, false}); }));
    }
  }
  const auto& calls = fallibleCalls();
  for (size_t i = 0; i < calls.size(); ++i) {
    if (!calls[i].isService || (shared.lookedUp >> i & 1) == 0) continue;
    ASSERT_TRUE(runApart("without " + calls[i].name, [&] {
      disturb({0, false, calls[i].name, false});
    }));
  }
  ASSERT_TRUE(runApart("without services", [] { disturb({0, false, {}, true}); }));
}

INSTANTIATE_TEST_SUITE_P(All, FaultTest,
                         testing::Combine(testing::Range(size_t{0}, allCases().size()),
                                          testing::ValuesIn(allRepresentations)),
                         [](const auto& test) {
                           std::string name = allCases()[std::get<0>(test.param)].name;
                           std::erase_if(name, [](char c) { return c == ')' || c == ' '; });
                           std::ranges::replace_if(
                               name, [](char c) { return isalnum(c) == 0; }, '_');
                           return name + "_" + std::get<1>(test.param).name;
                         });

TEST(Faults, EachMemberIsCalled) {
  for (const NamedMember& named : members) {
    const auto isOf = [&](const Case& entry) { return entry.member == named.name; };
    EXPECT_TRUE(std::ranges::any_of(allCases(), isOf)) << named.name;
    if (!named.member->assign || named.member->isProperty) continue;
    EXPECT_EQ(
        std::ranges::count_if(
            allCases(), [&](const Case& entry) { return entry.name == named.name + ", assigned"; }),
        1);
  }
}

TEST(Faults, PicturesWithoutMemoryLeaveNothing) {
  for (const Storage storage : {Storage::GWorld, Storage::Context, Storage::Bitmap}) {
    for (int32_t number = 1; number < 20; ++number) {  // it takes fewer
      failAllocation(number);
      Picture::create(storage, 3, 3);
      failAllocation(0);
      EXPECT_EQ(runtime().findLeaks(), std::vector<std::string>{}) << "allocation " << number;
    }
  }
}

class Environment : public testing::Environment {
 public:
  void SetUp() override {
    addBuiltInClasses(runtime().registry);
    loadPlugin(pluginPath());
    watchAllocations();
    members = registeredMembers();
  }
  /// Says how much was done.
  void TearDown() override {
    std::cout << "fault sweep: " << members.size() << " members in " << shared.cases << " calls ("
              << allCases().size() << " x " << std::size(allRepresentations)
              << " representations), " << shared.faults << " calls with faults, " << shared.lacks
              << " without services" << std::endl;
    const auto& calls = fallibleCalls();
    const bool isWhole =
        shared.cases == static_cast<int32_t>(allCases().size() * std::size(allRepresentations));
    for (size_t i = 0; isWhole && i < calls.size(); ++i) {
      const bool hasFailed = (shared.failed >> i & 1) != 0;
      EXPECT_EQ(hasFailed, calls[i].canFail) << calls[i].name;
    }
  }
};
const auto* const environment = testing::AddGlobalTestEnvironment(new Environment);

}  // namespace
}  // namespace host
