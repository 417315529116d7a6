// Every registered member with lying input, on pictures of every representation.
//
// What a member takes is read from its declaration: each number, object and text is one
// of those below, alone, in pairs and in combinations. Each member's calls run in a
// process of its own for each representation, and what they make is compared between the
// representations, call by call; which calls have no result is said besides. The last line
// of the output says how much was done.

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cfloat>
#include <climits>
#include <functional>
#include <iostream>
#include <optional>
#include <span>
#include <tuple>

#include "host/bench/members.h"
#include "host/core/exception.h"
#include "host/core/native_call.h"
#include "host/core/picture.h"
#include "host/core/string_record.h"
#include "host/loader/load_plugin.h"
#include "host/script/conversion.h"
#include "platform/standin/standin.h"
#include "platform/standin/x555.h"
#include "tests/support/fence.h"
#include "tests/support/sweep.h"

namespace host {
namespace {

// --- The members -------------------------------------------------------------

using Inputs = std::vector<Value>;

/// A member, and the types of all that a call takes.
struct Target {
  std::string name;
  const Member* member;
  const Class* owner;  ///< null for global methods
  bool assigns;
  std::vector<Type> inputs{};  ///< object, parameters, assigned value

  [[nodiscard]] bool is(std::string_view prefix) const {
    return member->declaration.name.starts_with(prefix);
  }
  [[nodiscard]] bool isOnInstance() const { return owner != nullptr && owner->isRegistered; }
  /// A method without parameters works on what the properties hold: they are the inputs.
  [[nodiscard]] bool usesProperties() const {
    return isOnInstance() && !member->isProperty && member->declaration.parameters.empty();
  }
  /// The object's own pixels are the result.
  [[nodiscard]] bool isInPlace() const { return is("Scroll") || (assigns && !isOnInstance()); }
  /// Whether an object of the class is asked for.
  [[nodiscard]] bool takes(std::string_view className, size_t input) const {
    return sameName(inputs[input].className, className);
  }
  [[nodiscard]] bool takesAny(std::string_view className) const {
    return std::ranges::any_of(
        inputs, [&](const Type& type) { return sameName(type.className, className); });
  }
  friend void PrintTo(const Target& target, std::ostream* stream) { *stream << target.name; }
};

std::vector<const Member*> propertiesOf(const Class& owner) {
  std::vector<const Member*> properties;
  for (const Member& member : owner.members) {
    if (member.isProperty) properties.push_back(&member);
  }
  return properties;
}

std::vector<Type> inputsOf(const Target& target) {
  std::vector<Type> inputs;
  if (target.owner != nullptr && !target.isOnInstance())
    inputs.push_back(typeNamed(target.owner->name));
  for (const Parameter& parameter : target.member->declaration.parameters)
    inputs.push_back(parameter.type);
  if (target.assigns) inputs.push_back(target.member->assignedType);
  if (target.owner != nullptr && target.usesProperties()) {
    for (const Member* property : propertiesOf(*target.owner))
      inputs.push_back(property->assignedType);
  }
  return inputs;
}

void addTargets(std::vector<Target>& targets, const Class* owner,
                const std::vector<Member>& members) {
  for (const Member& member : members) {
    if (!member.isRegistered) continue;
    std::string name = owner != nullptr && owner->isRegistered ? owner->name + "_" : "";
    name += member.declaration.name;
    for (const Parameter& parameter : member.declaration.parameters) name += "_" + parameter.name;
    if (!member.isProperty) targets.push_back({name, &member, owner, false});
    if (member.assign) targets.push_back({name + "_assigned", &member, owner, true});
  }
}

/// Listed once, since they refer to each other.
const std::vector<Target>& allTargets() {
  static const auto* targets = [] {
    addBuiltInClasses(runtime().registry);
    loadPlugin(pluginPath());
    auto* all = new std::vector<Target>;
    for (const Class& owner : runtime().registry.classes()) addTargets(*all, &owner, owner.members);
    addTargets(*all, nullptr, runtime().registry.globals());
    for (Target& target : *all) target.inputs = inputsOf(target);
    return all;
  }();
  return *targets;
}

// --- What they are called with -----------------------------------------------

/// Colours that 16 bits hold; pads that all representations with pads hold. Many pixels
/// are dark or grey.
std::vector<uint32_t> someWords(PictureSize size, size_t seed) {
  std::minstd_rand random(static_cast<uint32_t>(seed) + 1);
  std::vector<uint32_t> words(static_cast<size_t>(size.width) * static_cast<size_t>(size.height));
  for (uint32_t& word : words) {
    const uint32_t five = random();
    const uint32_t kinds[] = {five, five, five & 0x0C63, five % 32 * 0x0421};
    word = standin::rgbOf555(kinds[five >> 20 & 3]) | (five & 0x7F000000);
  }
  return words;
}

std::vector<uint8_t> someBytes(size_t count) {
  std::vector<uint8_t> bytes(count);
  for (size_t k = 0; k < count; ++k) bytes[k] = static_cast<uint8_t>(k * k * 7 + count);
  return bytes;
}

/// The objects that all calls of a process on pictures of one size share.
struct Objects {
  Objects(const Representation& representation, PictureSize size) {
    const auto [width, height] = size;
    // Few of the long ones, which take their time.
    const bool isLong = std::max(width, height) > 1000;
    const PictureSize larger = isLong ? PictureSize{3, 3} : PictureSize{width + 1, height + 2};
    const PictureSize smaller = {std::max(larger.width - 3, 1), std::max(larger.height - 3, 1)};
    for (const PictureSize own :
         {size, size, size, larger, {larger.width, smaller.height}, smaller}) {
      const auto words = someWords(own, pictures.size());
      pictures.push_back(pictureWithRowEnds(representation, own, words));
      initial.push_back(pictures.back()->pixels());
      all.push_back(objectValue(pictures.back()));
    }
    for (const size_t length : {1024U, 1030U, 1025U, 1023U, 257U, 256U, 255U, 3U, 2U, 1U, 0U}) {
      blocks.push_back(memoryBlock(someBytes(length)));
      all.push_back(objectValue(blocks.back()));
    }
    all.push_back(objectValue(makeObject<Graphics>(pictures[0])));
    for (const char* name : {"PictureLut3DQRZ", "PictureSepiaQRZ"})
      all.push_back(objectValue(newInstance(name)));
    all.push_back(objectValue(makeObject<ExceptionObject>("NilObjectException")));
    all.emplace_back(Nil{});
  }
  Objects(const Objects&) = delete;
  Objects& operator=(const Objects&) = delete;
  ~Objects() { setMasks(false); }

  /// One of the picture's size, one that is its own mask, and none.
  void setMasks(bool areThere) const {
    pictures[0]->mask = areThere ? pictures[1] : nullptr;
    pictures[2]->mask = areThere ? pictures[2] : nullptr;
  }
  /// What calls may change.
  void restore() const {
    for (size_t i = 0; i < pictures.size(); ++i) pictures[i]->setPixels(initial[i]);
    for (const auto& block : blocks)
      std::ranges::copy(someBytes(block->bytes.size()), block->bytes.begin());
  }
  /// A member may change a picture and its mask, or count in blocks.
  void expectUnchanged(const Picture* changed, bool mayCount) const {
    for (size_t i = 0; i < pictures.size(); ++i) {
      const Picture* picture = pictures[i].get();
      if (picture == changed || (changed != nullptr && picture == changed->mask.get())) continue;
      EXPECT_TRUE(samePixels(*picture, initial[i])) << "a source was changed";
    }
    for (const auto& block : blocks) {
      EXPECT_TRUE(mayCount || block->bytes == someBytes(block->bytes.size()))
          << "a block was changed";
    }
  }

  std::vector<Ref<Picture>> pictures;
  std::vector<std::vector<uint32_t>> initial;  ///< their words
  std::vector<Ref<MemoryBlock>> blocks;
  std::vector<Value> all;
};

/// What stands for an object, though there is none.
constexpr int32_t kNoObject = 4;

Inputs integers(PictureSize size) {
  const auto [w, h] = size;
  return {2,     INT_MIN, -1, 0,  1,  w - 1, w,   w + 1, INT_MAX, 3,     h - 1,       h,
          h + 1, 15,      16, 17, 18, 255,   256, 257,   32767,   32768, INT_MIN + 1, INT_MAX - 1};
}

Inputs doubles() {
  Inputs numbers = {0.5,          256.0,         1e300,        2147483647.0,
                    2147483648.0, -2147483648.0, 2147483646.5, 4294967296.0,
                    -DBL_MIN,     -DBL_TRUE_MIN, 1e-300};
  numbers.insert(numbers.end(), hostileNumbers.begin(), hostileNumbers.end());
  return numbers;
}

std::string textOf(const char* member, const Ref<Picture>& picture) {
  const auto& globals = runtime().registry.globals();
  const auto found = std::ranges::find_if(
      globals, [&](const Member& global) { return global.declaration.name == member; });
  Inputs source = {objectValue(picture)};
  return std::get<std::string>(found != globals.end()
                                   ? found->call(nullptr, source)
                                   : memberOf("Picture", member).call(picture.get(), {}));
}

/// What the plug-in itself makes, shortened, and with each of its first words replaced by
/// each number.
Inputs texts(const Objects& objects, PictureSize size) {
  Inputs all = {std::string(), std::string(100, '\xFF')};
  for (const char* member : {"PicturetoBinaryStringQRZ", "PicHandleDataQRZ"}) {
    const std::string text = textOf(member, objects.pictures[0]);
    for (size_t length = 1; length <= 60; ++length) {
      all.emplace_back(text.substr(0, length));
      std::string fitting = text.substr(0, length);
      if (length >= 8) fitting.replace(4, 4, {0, 0, 0, static_cast<char>(length)});
      all.emplace_back(fitting);
    }
    for (size_t at = 0; at < 40; at += 4) {
      for (const Value& number : integers(size)) {
        const uint32_t word = __builtin_bswap32(static_cast<uint32_t>(std::get<int32_t>(number)));
        all.emplace_back(std::string(text).replace(at, 4, reinterpret_cast<const char*>(&word), 4));
      }
    }
  }
  return all;
}

/// All objects, `nth` of the class first. A drawing surface is none of those in place of a
/// picture: the host tells its size, but cannot draw it.
Inputs objectsFor(const Type& type, size_t nth, const Objects& objects) {
  Inputs values;
  for (const Value& value : objects.all) {
    const Object* object = objectOf(value);
    const bool isOfClass = object != nullptr && sameName(object->className(), type.className);
    const bool isUsual = isOfClass && nth-- == 0;
    if (sameName(type.className, "Picture") && objectAs<Graphics>(value) != nullptr) continue;
    values.insert(isUsual ? values.begin() : values.end(), value);
  }
  return values;
}

/// All that an input is in turn; the first is what it usually is. `nth`: of the inputs of
/// that type. Booleans and handles cross as whole words, if they may be any.
Inputs choicesFor(const Type& type, size_t nth, const Objects& objects, PictureSize size,
                  bool asWords) {
  const uint32_t there = objects.initial[0].back() & 0xFFFFFF;
  switch (type.kind) {
    case Type::Kind::Integer:
      return integers(size);
    case Type::Kind::Double:
      return doubles();
    case Type::Kind::Boolean:
      return asWords ? Inputs{1, 0, 2, 0x80, 0xFF, 0x100, INT_MIN} : Inputs{true, false};
    case Type::Kind::Color:
      return {Color{there},      Color{0},          Color{0xFFFFFF},
              Color{0xFF000000}, Color{UINT32_MAX}, Color{there | 0x80000000},
              Color{0x00FF00},   Color{0x01000000}};
    case Type::Kind::String:
      return texts(objects, size);
    default:
      break;
  }
  Inputs values = objectsFor(type, nth, objects);
  if (asWords) values.emplace_back(kNoObject);
  return values;
}

std::vector<Inputs> choicesFor(const Target& target, const Objects& objects, PictureSize size) {
  std::vector<Inputs> choices;
  for (auto type = target.inputs.begin(); type != target.inputs.end(); ++type) {
    const auto nth = std::count_if(target.inputs.begin(), type, [&](const Type& other) {
      return other.kind == type->kind && sameName(other.className, type->className);
    });
    const bool asWords = !target.isOnInstance() && !target.assigns;
    choices.push_back(choicesFor(*type, static_cast<size_t>(nth), objects, size, asWords));
  }
  return choices;
}

// --- The calls ---------------------------------------------------------------

/// How many calls are made on pictures of a size.
struct Setting {
  PictureSize size;
  size_t most;
};

/// All combinations if they are no more; otherwise every input alone with all others as
/// usual, every pair if they are no more, and some at random.
class Combinations {
 public:
  Combinations(std::vector<Inputs> choices, size_t most)
      : choices_(std::move(choices)), picked_(choices_.size()) {
    size_t all = 1;
    size_t alone = 0;
    size_t pairs = 0;
    for (const Inputs& values : choices_) {
      all = std::min(all * values.size(), most + 1);
      pairs += alone * values.size();
      alone += values.size();
    }
    if (all <= most) {
      combine(SIZE_MAX, 0);
    } else {
      if (alone <= most) combine(pairs <= most ? 2 : 1, 0);
      addRandom(std::min<size_t>(most, 1000));
    }
  }
  [[nodiscard]] size_t size() const { return picks_.size(); }
  [[nodiscard]] Inputs operator[](size_t i) const {
    Inputs values;
    for (size_t k = 0; k < choices_.size(); ++k) values.push_back(choices_[k][picks_[i][k]]);
    return values;
  }

 private:
  /// Adds those in which so many inputs, of the k-th on, are unusual.
  void combine(size_t unusual, size_t k) {
    if (k == choices_.size()) return picks_.push_back(picked_);
    combine(unusual, k + 1);
    for (picked_[k] = 1; unusual > 0 && picked_[k] < choices_[k].size(); ++picked_[k])
      combine(unusual - 1, k + 1);
    picked_[k] = 0;
  }
  void addRandom(size_t count) {
    std::mt19937 random(8);
    for (; count > 0; --count) {
      auto& pick = picks_.emplace_back();
      for (const Inputs& values : choices_)
        pick.push_back(static_cast<uint16_t>(random() % 3 == 0 ? 0 : random() % values.size()));
    }
  }

  std::vector<Inputs> choices_;
  std::vector<uint16_t> picked_;
  std::vector<std::vector<uint16_t>> picks_;
};

/// Nobody waits for pictures of many pixels: what is asked for by the parameters of a member
/// that takes no picture. Sizes below 1 are those of the member's own choice.
bool isAffordable(const Target& target, const Inputs& inputs) {
  int64_t pixels = 1;
  for (size_t i = 0; target.owner == nullptr && i < inputs.size(); ++i) {
    const std::string& name = target.member->declaration.parameters[i].name;
    if (!sameName(name, "Width") && !sameName(name, "Height")) continue;
    const auto number = std::get<int32_t>(inputs[i]);
    pixels *= number < 1 ? 500 : number;
  }
  // The largest are refused at once.
  return pixels <= 1 << 13 || pixels > INT_MAX;
}

/// Calls a function of the plug-in; words that are no values of their types go as integers.
Value callWithWords(const Target& target, std::span<Value> inputs) {
  Declaration declaration = target.member->declaration;
  Self self;
  if (target.owner != nullptr) {
    const auto* word = std::get_if<int32_t>(inputs.data());
    self = word != nullptr ? reinterpret_cast<Object*>(*word) : objectOf(inputs[0]);
    inputs = inputs.subspan(1);
  }
  for (size_t i = 0; i < inputs.size(); ++i) {
    if (std::holds_alternative<int32_t>(inputs[i])) declaration.parameters[i].type = {};
  }
  const auto address = reinterpret_cast<uintptr_t>(target.member->function);
  return callFunction(reinterpret_cast<qrz::HostFunction>(address), declaration, self, inputs);
}

/// What is read back; or the method's result, and the picture that it made.
Inputs callOnInstance(const Target& target, std::span<Value> inputs) {
  const Member& member = *target.member;
  const auto instance = newInstance(target.owner->name);
  if (target.assigns) {
    const auto indices = inputs.first(inputs.size() - 1);
    member.assign(instance.get(), indices, inputs.back());
    return {member.call(instance.get(), indices)};
  }
  if (!target.usesProperties()) return {member.call(instance.get(), inputs)};
  size_t i = 0;
  for (const Member* property : propertiesOf(*target.owner))
    property->assign(instance.get(), {}, inputs[i++]);
  const Value result = member.call(instance.get(), {});
  return {result, memberOf(target.owner->name, "DestinationPicture").call(instance.get(), {})};
}

/// The result, and what else the call makes: ByRef arguments, the picture of an instance.
Inputs call(const Target& target, std::span<Value> inputs) {
  if (target.isOnInstance()) return callOnInstance(target, inputs);
  if (target.assigns) {
    target.member->assign(objectOf(inputs[0]), inputs.subspan(1, inputs.size() - 2), inputs.back());
    return {Nil{}};
  }
  Inputs results = {callWithWords(target, inputs)};
  const auto& parameters = target.member->declaration.parameters;
  for (size_t i = 0; i < parameters.size(); ++i) {
    if (parameters[i].byRef) results.push_back(inputs[i + (target.owner != nullptr ? 1 : 0)]);
  }
  return results;
}

/// Of what there was before, which one it is; of what takes long to draw, the size.
Outcome outcomeIn(const Objects& objects, const Value& value) {
  constexpr int64_t kDrawable = 1 << 22;
  const auto found = std::ranges::find(objects.all, value);
  if (objectOf(value) != nullptr && found != objects.all.end()) {
    return Outcome("object " + std::to_string(found - objects.all.begin()));
  }
  const auto* picture = objectAs<Picture>(value);
  if (picture == nullptr || int64_t{picture->width()} * picture->height() <= kDrawable) {
    return outcomeOf(value);
  }
  return Outcome(host::textOf({picture->width(), picture->height()}));
}

std::string textOf(PictureSize size, const Inputs& inputs) {
  std::string text = host::textOf(size);
  for (const Value& input : inputs) text += ", " + testing::PrintToString(host::textOf(input));
  return text;
}

// --- What is checked ---------------------------------------------------------

/// Whether there are pictures where pictures are expected, and blocks of so many bytes where
/// blocks are; what Run finds in DestinationPicture does not matter to it.
bool hasItsObjects(const Target& target, const Inputs& inputs, size_t least) {
  for (size_t i = 0; i < inputs.size(); ++i) {
    const auto* block = objectAs<MemoryBlock>(inputs[i]);
    const bool isPicture = objectAs<Picture>(inputs[i]) != nullptr;
    const bool isDestination = target.usesProperties() && i == 1;
    if (target.takes("Picture", i) && !isPicture && !isDestination) return false;
    if (!target.takes("MemoryBlock", i)) continue;
    const bool isMade = target.is("CountColorsQRZ") && std::holds_alternative<Nil>(inputs[i]);
    if (!isMade && (block == nullptr || block->bytes.size() < least)) return false;
  }
  return true;
}

/// Which calls have a result. What records a picture does not care what it is.
void expectFits(const Target& target, const Inputs& inputs, const Inputs& results) {
  if (target.is("Run")) {
    EXPECT_EQ(results[0], Value{hasItsObjects(target, inputs, 0)});
  }
  if (target.is("TransformColorsQRZ")) {
    EXPECT_EQ(objectOf(results[0]) != nullptr, hasItsObjects(target, inputs, 256));
  }
  if (target.is("CountColorsQRZ")) {
    EXPECT_EQ(std::get<int32_t>(results[4]) >= 0, hasItsObjects(target, inputs, 1024));
  }
  const auto& declared = target.member->declaration.result;
  if (target.isOnInstance() || !declared || !sameName(declared->className, "Picture")) return;
  const auto* picture = objectAs<Picture>(results[0]);
  EXPECT_TRUE(picture != nullptr || objectOf(results[0]) == nullptr) << "no picture";
  if (picture == nullptr || target.is("PicHandleQRZ")) return;
  EXPECT_TRUE(hasItsObjects(target, inputs, 1)) << "a picture of none";
  const auto* source = inputs.empty() ? nullptr : objectAs<Picture>(inputs[0]);
  EXPECT_TRUE(source == nullptr ||
              (picture->width() == source->width() && picture->height() == source->height()));
}

/// A misuse of a handle that was none for the service is what is to come of it.
void expectMisuses(const Target& target, const Inputs& given) {
  const bool isOfHandles = target.is("BuildPictureWithGWorldHandleQRZ");
  bool isForeign = isOfHandles;
  for (size_t i = 0; i < given.size(); ++i) {
    const Object* object = objectOf(given[i]);
    isForeign |=
        object != nullptr ? !target.takes(object->className(), i) : given[i] == Value{kNoObject};
  }
  for (const std::string& misuse : runtime().takeMisuses()) {
    EXPECT_TRUE(isForeign && (misuse.ends_with(" was called with a handle of another kind") ||
                              (isOfHandles && misuse.ends_with(" got a handle of no GWorld"))))
        << misuse;
  }
}

/// What nobody may leave behind.
auto balanceOf(const Objects& objects) {
  int32_t references = 0;
  int32_t locks = 0;
  for (const Value& value : objects.all) {
    if (const Object* object = objectOf(value)) references += object->references();
    if (const auto* picture = objectAs<Picture>(value)) locks += picture->locks();
  }
  const auto counts = std::bit_cast<std::array<int32_t, 7>>(standin::counts());
  return std::tuple{Object::living().size(), livingStrings(), references, locks, counts};
}

// --- The processes -----------------------------------------------------------

/// What they share.
struct Shared {
  static constexpr size_t kMostCalls = 6000;
  size_t outcomes[std::size(allRepresentations)][kMostCalls];  ///< hashes; 0: not compared
  size_t calls;    ///< of a member on one representation, so far
  size_t skipped;  ///< of them
  uint64_t allCalls;
};
Shared& shared = *static_cast<Shared*>(
    mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));

constexpr Setting kSmall{{7, 5}, 4000};
constexpr Setting kOtherSizes[] = {{{1, 1}, 100},    {{1, 9}, 100},    {{9, 1}, 100},
                                   {{2, 65}, 100},   {{65, 2}, 100},   {{32767, 1}, 12},
                                   {{40000, 2}, 12}, {{1, 40000}, 12}, {{2, 32767}, 12}};

class HostileTest : public testing::TestWithParam<Target> {
 protected:
  /// On pictures of each size; it takes time.
  static constexpr size_t kFencedCalls = 50;

  static const Target& target() { return GetParam(); }

  /// Representations whose outcomes are the same.
  static bool isCompared(size_t representation) {
    const std::string name = allRepresentations[representation].name;
    if (target().is("Scroll"))
      return name == "GWorld" || name == "Context" || name == "CopyOfGWorld24";
    return representation < 3 || !target().is("EmbeddedMaskQRZ");
  }

  /// Calls, checks, and tells the outcome.
  static Outcome checkedCall(const Objects& objects, const Inputs& given, bool isFenced) {
    const auto* self = given.empty() ? nullptr : objectAs<Picture>(given[0]);
    const Picture* changed = target().isInPlace() ? self : nullptr;
    const bool mayCount = target().is("CountColorsQRZ");
    Outcome outcome("");
    const SamePort samePort;
    const auto before = balanceOf(objects);
    try {
      Inputs inputs = given;
      if (isFenced) fenceMemory();
      const auto results = call(target(), inputs);
      stopFencing();
      for (const Value& result : results) outcome.add(outcomeIn(objects, result));
      expectFits(target(), given, results);
      expectRowEnds();
    } catch (const RaisedException& exception) {
      stopFencing();
      outcome.add(Outcome("raised " + exception.instance->className()));
    }
    if (changed != nullptr)
      outcome.add(Outcome("in place",
                          bytesOf(target().is("Scroll") ? colorsOf(*changed) : changed->pixels())));
    expectMisuses(target(), given);
    EXPECT_EQ(balanceOf(objects), before) << testing::PrintToString(runtime().findLeaks());
    objects.expectUnchanged(changed, mayCount);
    if (changed != nullptr || mayCount) objects.restore();
    return outcome;
  }

  /// Makes all calls on pictures of one size, or names one of them.
  static void makeCalls(size_t representation, const Setting& setting,
                        std::optional<size_t> named) {
    fenceMemory();
    const Objects objects(allRepresentations[representation], setting.size);
    stopFencing();
    objects.setMasks(target().is("Scroll") || target().is("HasMaskQRZ"));
    const Combinations all(choicesFor(target(), objects, setting.size), setting.most);
    ASSERT_LE(shared.calls + all.size(), Shared::kMostCalls);
    for (size_t i = 0; i < all.size(); ++i, ++shared.calls) {
      if (named && shared.calls != *named) continue;
      const Inputs inputs = all[i];
      if (named) FAIL() << textOf(setting.size, inputs);
      size_t& shown = shared.outcomes[representation][shared.calls] = 0;
      if (!isAffordable(target(), inputs)) {
        ++shared.skipped;
        continue;
      }
      const Outcome outcome = checkedCall(objects, inputs, i < kFencedCalls);
      if (isCompared(representation))
        shown = (std::hash<std::string_view>()(outcome.head) ^ outcome.body) | 1;
      if (HasFailure()) FAIL() << "which gives " << outcome.head;
    }
  }

  /// Each memory block has every size in turn.
  static void makeBlockCalls(size_t representation) {
    const Objects objects(allRepresentations[representation], kSmall.size);
    Inputs inputs;
    for (const Inputs& choices : choicesFor(target(), objects, kSmall.size))
      inputs.push_back(choices[0]);
    for (size_t size = 0; size <= 1100 && !HasFailure(); ++size, ++shared.allCalls) {
      fenceMemory();
      const auto block = memoryBlock(someBytes(size));
      stopFencing();
      for (size_t i = 0; i < inputs.size(); ++i) {
        if (target().takes("MemoryBlock", i)) inputs[i] = objectValue(block);
      }
      checkedCall(objects, inputs, false);
      EXPECT_FALSE(HasFailure()) << "with blocks of " << size << " bytes";
    }
  }

  /// False if anything was wrong.
  static bool run(size_t representation, std::optional<size_t> named = {}) {
    const Representation& chosen = allRepresentations[representation];
    return runApart(chosen.name, chosen, 100, [&] {
      shared.calls = shared.skipped = 0;
      makeCalls(representation, kSmall, named);
      for (const Setting& setting : kOtherSizes) {
        if (target().takesAny("Picture") && !HasFailure())
          makeCalls(representation, setting, named);
      }
      if (target().takesAny("MemoryBlock") && !named && !HasFailure())
        makeBlockCalls(representation);
      for (const std::string& leak : runtime().findLeaks()) ADD_FAILURE() << leak;
    });
  }

  /// The first call whose outcome differs from that on another representation.
  static void expectSameOutcomes() {
    for (size_t call = 0; call < shared.calls; ++call) {
      size_t expected = 0;
      for (size_t i = 0; i < std::size(allRepresentations); ++i) {
        const size_t outcome = shared.outcomes[i][call];
        if (expected == 0) expected = outcome;
        if (outcome == 0 || outcome == expected) continue;
        ADD_FAILURE() << allRepresentations[i].name << " differs in call " << call;
        run(i, call);
        return;
      }
    }
  }
};

TEST_P(HostileTest, IsHarmless) {
  for (size_t i = 0; i < std::size(allRepresentations); ++i) {
    if (!run(i)) {
      run(i, shared.calls);
      return;
    }
    shared.allCalls += shared.calls - shared.skipped;
  }
  expectSameOutcomes();
}

INSTANTIATE_TEST_SUITE_P(All, HostileTest, testing::ValuesIn(allTargets()),
                         [](const auto& test) { return test.param.name; });

class Environment : public testing::Environment {
 public:
  /// Says how much was done.
  void TearDown() override {
    std::cout << "hostile calls: " << registeredMembers().size() << " members, " << shared.allCalls
              << " calls on " << std::size(allRepresentations) << " representations and "
              << std::size(kOtherSizes) + 1 << " sizes" << std::endl;
  }
};
const auto* const environment = testing::AddGlobalTestEnvironment(new Environment);

}  // namespace
}  // namespace host
