// Every registered member with lying input, on pictures of every representation.
//
// What a member takes is read from its declaration: each number, object and text is one
// of those below, alone, in pairs and in combinations. Each group of calls runs in a
// process of its own for each representation, and what the calls make is compared
// between the representations, call by call, and with plain statements of some members.
// The last line of the output says how much was done.

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cstring>
#include <functional>
#include <iostream>
#include <numeric>
#include <optional>
#include <set>
#include <span>
#include <sstream>

#include "host/bench/members.h"
#include "host/core/exception.h"
#include "host/core/native_call.h"
#include "host/core/picture.h"
#include "host/core/string_record.h"
#include "host/loader/load_plugin.h"
#include "platform/standin/standin.h"
#include "platform/standin/x555.h"
#include "tests/support/fence.h"
#include "tests/support/rectangle.h"
#include "tests/support/sweep.h"
#include "tests/support/tones.h"

namespace host {
namespace {

// --- The members -------------------------------------------------------------

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
  /// A method without parameters works on what the properties hold: they are the inputs,
  /// and two numbers for the table, if there is one.
  [[nodiscard]] bool usesProperties() const {
    return isOnInstance() && !member->isProperty && member->declaration.parameters.empty();
  }
  /// The object's own pixels are the result.
  [[nodiscard]] bool isInPlace() const { return is("Scroll") || (assigns && !isOnInstance()); }
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
  if (target.usesProperties()) {
    for (const Member* property : propertiesOf(*target.owner))
      inputs.push_back(property->assignedType);
    inputs.insert(inputs.end(), 2, typeNamed("double"));
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

std::vector<Target> allTargets() {
  std::vector<Target> targets;
  for (const Class& owner : runtime().registry.classes())
    addTargets(targets, &owner, owner.members);
  addTargets(targets, nullptr, runtime().registry.globals());
  for (Target& target : targets) target.inputs = inputsOf(target);
  return targets;
}

// --- What they are called with -----------------------------------------------

/// Colours that 16 bits hold; pads that all representations with pads hold. Many pixels
/// are dark or grey, the corners of all but the smallest pictures black and white.
std::vector<uint32_t> someWords(PictureSize size, size_t seed) {
  std::minstd_rand random(static_cast<uint32_t>(seed) + 1);
  std::vector<uint32_t> words;
  words.reserve(static_cast<size_t>(size.width) * static_cast<size_t>(size.height));
  for (int32_t y = 0; y < size.height; ++y) {
    for (int32_t x = 0; x < size.width; ++x) {
      const uint32_t five = random();
      const uint32_t kinds[] = {five, five, five & 0x0C63, five % 32 * 0x0421};
      uint32_t chosen = kinds[five >> 20 & 3];
      if (x < size.width / 2 && y < size.height / 2) chosen = 0;
      if (x > size.width / 2 && y > size.height / 2) chosen = 0x7FFF;
      words.push_back(standin::rgbOf555(chosen) | (five & 0x7F000000));
    }
  }
  return words;
}

uint8_t initialByte(size_t block, size_t at) { return static_cast<uint8_t>(at * at * 7 + block); }

/// The objects that all calls of a process on pictures of one size share.
struct Objects {
  Objects(const Representation& representation, PictureSize size) {
    const auto [width, height] = size;
    // Few of the long ones, which take their time.
    const bool isLong = std::max(width, height) > 1000;
    const PictureSize larger = isLong ? PictureSize{3, 3} : PictureSize{width + 1, height + 2};
    const PictureSize lower = {larger.width, std::max(larger.height - 3, 1)};
    const PictureSize smaller = {std::max(larger.width - 3, 1), lower.height};
    for (const PictureSize own : {size, size, size, larger, lower, smaller}) {
      const auto words = someWords(own, pictures.size());
      pictures.push_back(pictureWithRowEnds(representation, own, words));
      initial.push_back(pictures.back()->pixels());
      all.push_back(objectValue(pictures.back()));
    }
    for (const size_t length : {1024U, 1024U, 1030U, 255U}) {
      std::vector<uint8_t> bytes(length);
      for (size_t k = 0; k < length; ++k) bytes[k] = initialByte(blocks.size(), k);
      blocks.push_back(memoryBlock(bytes));
      all.push_back(objectValue(blocks.back()));
    }
    all.push_back(objectValue(makeObject<Graphics>(pictures[0])));
    all.push_back(objectValue(newInstance("PictureLut3DQRZ")));
    all.push_back(objectValue(newInstance("PictureSepiaQRZ")));
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
    for (size_t i = 0; i < blocks.size(); ++i) {
      for (size_t k = 0; k < blocks[i]->bytes.size(); ++k) blocks[i]->bytes[k] = initialByte(i, k);
    }
  }
  /// A member may change a picture and its mask, or count in blocks.
  void expectUnchanged(const Picture* changed, bool mayCount) const {
    for (size_t i = 0; i < pictures.size(); ++i) {
      const Picture* picture = pictures[i].get();
      if (picture == changed || (changed != nullptr && picture == changed->mask.get())) continue;
      EXPECT_TRUE(samePixels(*picture, initial[i])) << "a source was changed";
    }
    for (size_t i = 0; i < blocks.size() && !mayCount; ++i) {
      bool isSame = true;
      for (size_t k = 0; k < blocks[i]->bytes.size(); ++k) {
        isSame &= blocks[i]->bytes[k] == initialByte(i, k);
      }
      EXPECT_TRUE(isSame) << "block " << i << " was changed";
    }
  }

  std::vector<Ref<Picture>> pictures;
  std::vector<std::vector<uint32_t>> initial;  ///< their words
  std::vector<Ref<MemoryBlock>> blocks;
  std::vector<Value> all;
};

/// What stands for an object, though there is none.
constexpr int32_t kNoObject = 4;

/// The first ones are all combined where a member takes three or four.
constexpr size_t kEdges = 8;

std::vector<Value> integers(PictureSize size) {
  const auto [w, h] = size;
  return {INT_MIN, -1, 0,  1,  w - 1, w,   w + 1, INT_MAX, 2,     3,     h - 1,       h,
          h + 1,   15, 16, 17, 18,    255, 256,   257,     32767, 32768, INT_MIN + 1, INT_MAX - 1};
}

std::vector<Value> doubles() {
  std::vector<Value> numbers(hostileNumbers.begin(), hostileNumbers.end());
  for (const double more : {0.5, 256.0, 1e300, 2147483647.0, 2147483648.0, -2147483648.0,
                            2147483646.5, 4294967296.0, -DBL_MIN, -DBL_TRUE_MIN, 1e-300}) {
    numbers.emplace_back(more);
  }
  return numbers;
}

/// All that an input is in turn, and what it usually is.
struct Choices {
  std::vector<Value> values;
  size_t usual = 0;
};

/// `nth`: of the inputs of that type. Booleans and handles cross as whole words, if they
/// may be any.
Choices choicesFor(const Type& type, size_t nth, const Objects& objects, PictureSize size,
                   bool asWords) {
  switch (type.kind) {
    case Type::Kind::Integer:
      return {integers(size), kEdges};
    case Type::Kind::Double: {
      const auto numbers = doubles();
      return {numbers, hostileNumbers.size()};
    }
    case Type::Kind::Boolean:
      if (asWords) return {{0, 1, 2, 0x80, 0xFF, 0x100, INT_MIN}, 1};
      return {{false, true}, 1};
    case Type::Kind::Color: {
      const uint32_t there = objects.initial[0].back() & 0xFFFFFF;
      return {{Color{there}, Color{0}, Color{0xFFFFFF}, Color{0xFF000000}, Color{UINT32_MAX},
               Color{there | 0x80000000}, Color{0x00FF00}, Color{0x01000000}}};
    }
    case Type::Kind::String:
      return {{std::string(), std::string("PPIC"), std::string(100, '\xFF')}};
    default:
      break;
  }
  Choices choices{objects.all};
  if (asWords) choices.values.emplace_back(kNoObject);
  for (size_t i = 0; i < objects.all.size(); ++i) {
    const Object* object = objectOf(objects.all[i]);
    if (object == nullptr || !sameName(object->className(), type.className)) continue;
    choices.usual = i + nth;
    break;
  }
  return choices;
}

// --- The calls ---------------------------------------------------------------

/// How many calls are made on pictures of a size.
struct Setting {
  PictureSize size;
  std::optional<PictureSize> claimed;  ///< what the host says about the first picture
  size_t most;
  [[nodiscard]] bool isSmall() const { return size.width < 100 && size.height < 100; }
};

enum class Kind { Combined, Blocks, Texts };

struct Group {
  const Target* target;
  std::string name;
  Kind kind;
  std::vector<Setting> settings;
  friend void PrintTo(const Group& group, std::ostream* stream) { *stream << group.name; }
};

using Inputs = std::vector<Value>;

/// The host knows the size of a drawing surface, but cannot draw it: where pictures are
/// copied, it counts as a white one.
bool isSurfaceForPicture(const Target& target, const Inputs& inputs) {
  for (size_t i = 0; i < inputs.size(); ++i) {
    const Object* object = objectOf(inputs[i]);
    const bool isSurface = dynamic_cast<const Graphics*>(object) != nullptr;
    if (isSurface && sameName(target.inputs[i].className, "Picture")) return true;
  }
  return false;
}

/// Every input alone with all others as usual, the edges of three or four integers,
/// every pair, and some at random; all combinations if they are no more.
class Combinations {
 public:
  Combinations(std::vector<Choices> inputs, size_t most) : inputs_(std::move(inputs)) {
    size_t product = 1;
    for (const Choices& input : inputs_)
      product = std::min(product * input.values.size(), most + 1);
    std::vector<size_t> every(inputs_.size());
    std::iota(every.begin(), every.end(), 0);
    if (product <= most) {
      combine(every, SIZE_MAX);
    } else {
      combine({}, SIZE_MAX);
      addSome(most);
      addRandom(std::min<size_t>(most, 1500));
    }
  }
  [[nodiscard]] size_t size() const { return picks_.size(); }
  [[nodiscard]] Inputs operator[](size_t i) const {
    Inputs values;
    for (size_t k = 0; k < inputs_.size(); ++k) values.push_back(inputs_[k].values[picks_[i][k]]);
    return values;
  }

 private:
  using Pick = std::vector<uint8_t>;

  /// Adds all combinations of these inputs, each of the first values only.
  void combine(const std::vector<size_t>& which, size_t first) {
    Pick pick;
    for (const Choices& input : inputs_) pick.push_back(static_cast<uint8_t>(input.usual));
    const auto descend = [&](const auto& self, size_t depth) -> void {
      if (depth == which.size()) return picks_.push_back(pick);
      const size_t count = std::min(inputs_[which[depth]].values.size(), first);
      for (size_t value = 0; value < count; ++value) {
        pick[which[depth]] = static_cast<uint8_t>(value);
        self(self, depth + 1);
      }
    };
    descend(descend, 0);
  }
  void addSome(size_t most) {
    size_t alone = 0;
    size_t pairs = 0;
    std::vector<size_t> numbers;
    for (size_t i = 0; i < inputs_.size(); ++i) {
      pairs += alone * inputs_[i].values.size();
      alone += inputs_[i].values.size();
      if (std::holds_alternative<int32_t>(inputs_[i].values[0]) && inputs_[i].usual == kEdges) {
        numbers.push_back(i);
      }
    }
    if (alone > most) return;
    for (size_t i = 0; i < inputs_.size(); ++i) combine({i}, SIZE_MAX);
    if (pairs > most) return;
    if (numbers.size() == 3 || numbers.size() == 4) combine(numbers, kEdges);
    for (size_t i = 0; i < inputs_.size(); ++i) {
      for (size_t k = 0; k < i; ++k) combine({i, k}, SIZE_MAX);
    }
  }
  void addRandom(size_t count) {
    std::mt19937 random(8);
    for (; count > 0; --count) {
      Pick pick;
      for (const Choices& input : inputs_) {
        const bool isUsual = random() % 3 == 0;
        pick.push_back(
            static_cast<uint8_t>(isUsual ? input.usual : random() % input.values.size()));
      }
      picks_.push_back(std::move(pick));
    }
  }

  std::vector<Choices> inputs_;
  std::vector<Pick> picks_;
};

constexpr size_t kLargestBlock = 1100;
constexpr size_t kLongestText = 60;

/// Blocks of every size as each of the blocks that a member takes, and then as all at once.
Inputs withBlock(const Target& target, Inputs usual, size_t i) {
  const size_t which = i / (kLargestBlock + 1);
  const size_t bytes = i % (kLargestBlock + 1);
  const Value block = objectValue(memoryBlock(std::vector<uint8_t>(bytes, 0x5A)));
  const size_t blocks = std::ranges::count_if(
      target.inputs, [](const Type& type) { return sameName(type.className, "MemoryBlock"); });
  size_t nth = 0;
  for (size_t k = 0; k < usual.size(); ++k) {
    const Type& type = target.inputs[k];
    if (sameName(type.className, "MemoryBlock") && (which == nth++ || which == blocks))
      usual[k] = block;
    // As many samples as there are, or one more.
    if (type.kind != Type::Kind::Integer) continue;
    if (bytes % 16 == 0) usual[k] = 0;
    if (bytes < 40) usual[k] = static_cast<int32_t>(bytes / 2 + 1);
  }
  return usual;
}

const Member& globalNamed(std::string_view name) {
  auto& globals = runtime().registry.globals();
  return *std::ranges::find_if(
      globals, [&](const Member& member) { return member.declaration.name == name; });
}

std::string bigEndian(uint32_t word) {
  std::string bytes;
  for (const int32_t shift : {24, 16, 8, 0}) bytes += static_cast<char>(word >> shift);
  return bytes;
}

/// Of every length at random; what the plug-in itself makes, shortened, and with each of its
/// first words replaced by each number.
std::vector<Value> texts(const Objects& objects, PictureSize size) {
  std::vector<Value> all;
  std::mt19937 random(60);
  std::vector<Value> source = {objects.all[0]};
  const std::string made[] = {
      std::get<std::string>(globalNamed("PicturetoBinaryStringQRZ").call(nullptr, source)),
      std::get<std::string>(
          memberOf("Picture", "PicHandleDataQRZ").call(objects.pictures[0].get(), {}))};
  for (size_t length = 0; length <= kLongestText; ++length) {
    for (int i = 0; i < 3; ++i) {
      std::string text(length, '\0');
      for (char& byte : text) byte = static_cast<char>(random());
      all.emplace_back(text);
    }
    for (const std::string& text : made) all.emplace_back(text.substr(0, length));
    std::string fitting = made[0].substr(0, length);
    if (length >= 8) fitting.replace(4, 4, bigEndian(static_cast<uint32_t>(length)));
    all.emplace_back(fitting);
  }
  for (const std::string& text : made) {
    for (size_t at = 0; at < 40; at += 4) {
      for (const Value& number : integers(size)) {
        all.emplace_back(std::string(text).replace(
            at, 4, bigEndian(static_cast<uint32_t>(std::get<int32_t>(number)))));
      }
    }
  }
  return all;
}

/// The calls of a group on pictures of one size.
class Plan {
 public:
  Plan(const Group& group, const Setting& setting, const Objects& objects)
      : group_(group),
        combinations_(choices(group, setting, objects),
                      group.kind == Kind::Combined ? setting.most : 0) {
    const auto blocks = std::ranges::count_if(group.target->inputs, [](const Type& type) {
      return sameName(type.className, "MemoryBlock");
    });
    if (group.kind == Kind::Combined) size_ = combinations_.size();
    if (group.kind == Kind::Blocks) size_ = (kLargestBlock + 1) * static_cast<size_t>(blocks + 1);
    if (group.kind == Kind::Texts) texts_ = texts(objects, setting.size);
    if (group.kind == Kind::Texts) size_ = texts_.size();
  }
  [[nodiscard]] size_t size() const { return size_; }
  [[nodiscard]] Inputs operator[](size_t i) const {
    if (group_.kind == Kind::Blocks) return withBlock(*group_.target, combinations_[0], i);
    if (group_.kind == Kind::Texts) return {texts_[i]};
    return combinations_[i];
  }

 private:
  static std::vector<Choices> choices(const Group& group, const Setting& setting,
                                      const Objects& objects) {
    const Target& target = *group.target;
    const bool asWords = !target.isOnInstance() && !target.assigns;
    std::vector<Choices> inputs;
    for (size_t i = 0; i < target.inputs.size(); ++i) {
      const Type& type = target.inputs[i];
      const auto nth = std::count_if(
          target.inputs.begin(), target.inputs.begin() + static_cast<ptrdiff_t>(i),
          [&](const Type& other) {
            return other.kind == type.kind && sameName(other.className, type.className);
          });
      inputs.push_back(choicesFor(type, static_cast<size_t>(nth), objects, setting.size, asWords));
    }
    return inputs;
  }

  const Group& group_;
  Combinations combinations_;
  std::vector<Value> texts_;
  size_t size_ = 0;
};

/// Nobody waits for pictures of millions of pixels, or for a wide pen on every column of
/// one: what is asked for by the parameters of a member that takes no picture. Sizes below
/// 1 are those of the member's own choice.
bool isAffordable(const Target& target, const Inputs& inputs) {
  if (target.owner != nullptr) return true;
  int64_t most = 1 << 16;
  int64_t pixels = 1;
  const auto& parameters = target.member->declaration.parameters;
  for (size_t i = 0; i < parameters.size(); ++i) {
    const std::string& name = parameters[i].name;
    const auto* number = std::get_if<int32_t>(&inputs[i]);
    if (number == nullptr) continue;
    if (sameName(name, "Width") || sameName(name, "Height")) pixels *= *number < 1 ? 500 : *number;
    if (sameName(name, "outlinewidth") && *number > 1) most = 1 << 13;
  }
  // The largest are refused at once.
  return pixels <= most || pixels > INT_MAX;
}

/// Calls a function of the plug-in; words that are no values of their types go as integers.
Value callWithWords(const Target& target, std::span<Value> inputs) {
  Declaration declaration = target.member->declaration;
  Self self;
  if (target.owner != nullptr) {
    const auto* word = std::get_if<int32_t>(&inputs[0]);
    self = word != nullptr ? reinterpret_cast<Object*>(*word) : objectOf(inputs[0]);
    inputs = inputs.subspan(1);
  }
  for (size_t i = 0; i < inputs.size(); ++i) {
    if (std::holds_alternative<int32_t>(inputs[i])) declaration.parameters[i].type = {};
  }
  const auto address = reinterpret_cast<uintptr_t>(target.member->function);
  return callFunction(reinterpret_cast<qrz::HostFunction>(address), declaration, self, inputs);
}

/// The first elements of a table alternate between two numbers.
void fillTables(const Class& owner, Object* instance, const Value& one, const Value& other) {
  for (const Member& member : owner.members) {
    if (member.isProperty || !member.assign) continue;
    for (int32_t i = 0; i < 24; ++i) {
      std::vector<Value> indices = {i & 1, i >> 1 & 1, i >> 2 & 1, i >> 3};
      member.assign(instance, indices, i % 5 < 2 ? one : other);
    }
  }
}

bool isAmong(const Value& value, std::span<const Value> inputs) {
  return std::ranges::any_of(inputs, [&](const Value& input) {
    return objectOf(input) != nullptr && objectOf(input) == objectOf(value);
  });
}

/// What is read back; or the method's result, and the pictures that it put into properties.
std::vector<Value> callOnInstance(const Target& target, std::span<Value> inputs) {
  const Member& member = *target.member;
  const auto instance = newInstance(target.owner->name);
  if (target.assigns) {
    const auto indices = inputs.first(inputs.size() - 1);
    member.assign(instance.get(), indices, inputs.back());
    return {member.call(instance.get(), indices)};
  }
  if (!target.usesProperties()) return {member.call(instance.get(), inputs)};
  const auto properties = propertiesOf(*target.owner);
  for (size_t i = 0; i < properties.size(); ++i)
    properties[i]->assign(instance.get(), {}, inputs[i]);
  fillTables(*target.owner, instance.get(), inputs[inputs.size() - 2], inputs.back());
  std::vector<Value> results = {member.call(instance.get(), {})};
  for (const Member* property : properties) {
    const Value now = property->call(instance.get(), {});
    if (objectAs<Picture>(now) != nullptr && !isAmong(now, inputs)) results.push_back(now);
  }
  return results;
}

/// The result, and what else the call makes: ByRef arguments, pictures of an instance.
std::vector<Value> call(const Target& target, std::span<Value> inputs) {
  if (target.isOnInstance()) return callOnInstance(target, inputs);
  if (target.assigns) {
    target.member->assign(objectOf(inputs[0]), inputs.subspan(1, inputs.size() - 2), inputs.back());
    return {Nil{}};
  }
  std::vector<Value> results = {callWithWords(target, inputs)};
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

// --- What is checked ---------------------------------------------------------

/// One call, seen from outside.
struct Made {
  const Target& target;
  const Setting& setting;
  const Objects& objects;
  const Inputs& inputs;
  const std::vector<Value>& results;

  [[nodiscard]] const Picture* picture(size_t input) const {
    return objectAs<Picture>(inputs[input]);
  }
  /// Pictures where pictures are expected, and none with a false description.
  [[nodiscard]] bool hasItsPictures() const {
    for (size_t i = 0; i < inputs.size(); ++i) {
      if (!sameName(target.inputs[i].className, "Picture") || i == destination()) continue;
      if (picture(i) == nullptr) return false;
      if (setting.claimed && picture(i) == objects.pictures[0].get()) return false;
    }
    return true;
  }
  /// A property that does not matter to the method.
  [[nodiscard]] size_t destination() const { return target.usesProperties() ? 1 : SIZE_MAX; }
  /// Blocks where blocks are expected.
  [[nodiscard]] bool hasItsBlocks(size_t least) const {
    for (size_t i = 0; i < inputs.size(); ++i) {
      if (!sameName(target.inputs[i].className, "MemoryBlock")) continue;
      const auto* block = objectAs<MemoryBlock>(inputs[i]);
      if (block == nullptr || block->bytes.size() < least) return false;
    }
    return true;
  }
};

/// The rectangle among the arguments, or the whole picture.
Rectangle rectangleOf(const Made& made) {
  if (made.target.member->declaration.text.find(rectangleParameters) == std::string::npos) {
    return wholePicture;
  }
  const auto number = [&](size_t i) { return std::get<int32_t>(made.inputs[i]); };
  return {number(1), number(2), number(3), number(4)};
}

/// Members of which it is plain what each pixel becomes.
void expectPixels(const Made& made, const Picture& source, const Picture& result) {
  const Inputs& inputs = made.inputs;
  const auto isGrey = [](uint32_t rgb) { return rgb == (rgb & 0xFF) * 0x010101; };
  const Rectangle r = rectangleOf(made);
  const auto inside = [&](int32_t x, int32_t y) { return contains(r, source, x, y); };
  const auto expect = [&](const std::function<uint32_t(uint32_t)>& map) {
    EXPECT_TRUE(samePixels(result, expectedPixels(source, inside, map)));
  };
  if (made.target.is("InvertQRZ")) expect([](uint32_t rgb) { return 0xFFFFFF - rgb; });
  if (made.target.is("InvertGrayQRZ"))
    expect([&](uint32_t rgb) { return isGrey(rgb) ? 0xFFFFFF - rgb : rgb; });
  for (const Tone& tone : tones) {
    if (made.target.member->declaration.text != tone.declaration) continue;
    std::vector<double> x;
    for (size_t i = 1; i < inputs.size(); ++i) x.push_back(std::get<double>(inputs[i]));
    expect([&](uint32_t rgb) { return tone(rgb, x); });
  }
  if (!made.target.is("ExtractColorRectangleMask")) return;
  const auto words = result.pixels();
  for (int32_t i = 0; i < std::ssize(words); ++i) {
    const bool isInside = inside(i % source.width(), i / source.width());
    EXPECT_TRUE(isInside || words[static_cast<size_t>(i)] == 0xFFFFFF) << "pixel " << i;
  }
}

/// Whether a rectangle of the picture has one colour; an empty picture has every one.
void expectIsOf(const Made& made, uint32_t color) {
  const Picture* source = made.picture(0);
  const Rectangle r = rectangleOf(made);
  bool expected = source != nullptr;
  for (int32_t y = 0; expected && made.hasItsPictures() && y < source->height(); ++y) {
    for (int32_t x = 0; expected && x < source->width(); ++x) {
      if (contains(r, *source, x, y)) expected = source->pixel(x, y) == color;
    }
  }
  EXPECT_EQ(made.results[0], Value{expected});
}

bool isNilOrBlock(const Value& value, size_t least) {
  const auto* block = objectAs<MemoryBlock>(value);
  return std::holds_alternative<Nil>(value) || (block != nullptr && block->bytes.size() >= least);
}

/// Results that are pictures, or may be.
void expectPicture(const Made& made, bool isRefused) {
  const auto* picture = objectAs<Picture>(made.results[0]);
  EXPECT_TRUE(picture != nullptr || objectOf(made.results[0]) == nullptr) << "no picture";
  // What records a picture does not care what it is.
  EXPECT_TRUE(!isRefused || picture == nullptr || made.target.is("PicHandleQRZ"))
      << "a picture of none";
  const Picture* source = made.inputs.empty() ? nullptr : made.picture(0);
  if (picture == nullptr || source == nullptr || made.setting.claimed) return;
  EXPECT_TRUE(picture->width() == source->width() && picture->height() == source->height());
  if (made.setting.isSmall()) expectPixels(made, *source, *picture);
}

/// What was assigned is read back, or 0 where there is no such element.
void expectKept(const Made& made) {
  bool isThere = true;
  for (size_t i = 0; i + 1 < made.inputs.size(); ++i) {
    const auto index = std::get<int32_t>(made.inputs[i]);
    isThere &= index >= 0 && index < (i < 3 ? 18 : 3);
  }
  const Value expected = isThere ? made.inputs.back() : Value{0.0};
  const auto* number = std::get_if<double>(&expected);
  const bool isSame = number == nullptr ? made.results[0] == expected
                                        : memcmp(number, std::get_if<double>(&made.results[0]),
                                                 sizeof *number) == 0;
  EXPECT_TRUE(isSame) << "another value is read back";
}

void expectFits(const Made& made, bool isNative) {
  const Target& target = made.target;
  const auto& declared = target.member->declaration.result;
  const bool isLie = made.setting.claimed.has_value();
  const bool isSound = made.hasItsPictures();
  if (isLie && !isNative) return;  // of copies, the host is asked for the size
  if (isSurfaceForPicture(target, made.inputs)) return;
  if (target.isOnInstance()) {
    if (target.assigns) expectKept(made);
    if (target.is("Run")) {
      EXPECT_EQ(made.results[0], Value{isSound});
    }
    return;
  }
  if (declared && sameName(declared->className, "Picture")) expectPicture(made, !isSound);
  if (target.is("isWhiteQRZ")) expectIsOf(made, 0xFFFFFF);
  if (target.is("isBlackQRZ")) expectIsOf(made, 0);
  if (target.is("TransformColorsQRZ")) {
    const bool maps = isSound && made.hasItsBlocks(256);
    EXPECT_EQ(objectOf(made.results[0]) != nullptr, maps);
  }
  if (target.is("CountColorsQRZ")) {
    const auto blocks = std::span(made.inputs).subspan(1, 3);
    const bool counts =
        made.picture(0) != nullptr &&
        std::ranges::all_of(blocks, [](const Value& value) { return isNilOrBlock(value, 1024); });
    EXPECT_EQ(std::get<int32_t>(made.results[4]) >= 0, counts);
  }
}

// --- The processes -----------------------------------------------------------

/// What they share.
struct Shared {
  static constexpr size_t kMostCalls = 60000;
  size_t outcomes[std::size(allRepresentations)][kMostCalls];  ///< hashes
  bool isMade[std::size(allRepresentations)][kMostCalls];
  size_t calls;    ///< of a group on one representation, so far
  size_t skipped;  ///< of them
  uint64_t allCalls;
};
Shared& shared = *static_cast<Shared*>(
    mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));

using LockDescription = uint32_t (*)(void* picture, qrz::PictureDescription* description);
LockDescription lockDescription = nullptr;
const Picture* claimed = nullptr;
PictureSize claimedSize{};

uint32_t lockWithClaimedSize(void* picture, qrz::PictureDescription* description) {
  lockDescription(picture, description);
  if (picture != claimed) return 0;
  description->width = claimedSize.width;
  description->height = claimedSize.height;
  return 0;
}

std::string textOf(const Value& value) {
  std::ostringstream text;
  text.precision(17);
  if (const Object* object = objectOf(value)) {
    text << object->describe() << " at " << object;
  } else if (const auto* color = std::get_if<Color>(&value)) {
    text << "&h" << std::hex << color->rgb;
  } else if (const auto* bytes = std::get_if<std::string>(&value)) {
    text << testing::PrintToString(*bytes);
  } else if (const auto* number = std::get_if<double>(&value)) {
    text << *number;
  } else if (const auto* integer = std::get_if<int32_t>(&value)) {
    text << *integer;
  } else {
    text << (std::holds_alternative<bool>(value) ? std::get<bool>(value) ? "true" : "false"
                                                 : "nil");
  }
  return text.str();
}

std::string textOf(const Setting& setting, const Inputs& inputs) {
  std::string text = host::textOf(setting.size);
  if (setting.claimed) text += " said to be " + host::textOf(*setting.claimed);
  for (const Value& input : inputs) text += (&input == inputs.data() ? ": " : ", ") + textOf(input);
  return text;
}

/// What nobody may leave behind.
struct Balance {
  explicit Balance(const Objects& objects) : living(Object::living().size()) {
    for (const Value& value : objects.all) {
      if (const Object* object = objectOf(value)) references += object->references();
      if (const auto* picture = objectAs<Picture>(value)) locks += picture->locks();
    }
  }
  friend bool operator==(const Balance& left, const Balance& right) {
    return left.living == right.living && left.references == right.references &&
           left.locks == right.locks && left.strings == right.strings &&
           memcmp(&left.counts, &right.counts, sizeof counts) == 0;
  }

  size_t living;
  int32_t references = 0;
  int32_t locks = 0;
  int32_t strings = livingStrings();
  standin::Counts counts = standin::counts();
};

class HostileTest : public testing::TestWithParam<Group> {
 protected:
  /// On pictures of each size; it takes time.
  static constexpr size_t kFencedCalls = 100;

  static const Target& target() { return *GetParam().target; }

  /// Representations whose outcomes are the same.
  static bool isCompared(const Setting& setting, size_t representation) {
    const std::string name = allRepresentations[representation].name;
    const bool isNative = representation < 3;
    if (target().is("Scroll"))
      return name == "GWorld" || name == "Context" ||
             (name == "CopyOfGWorld24" && !setting.claimed);
    return isNative || (!target().is("EmbeddedMaskQRZ") && !setting.claimed);
  }

  /// A misuse of a handle that was none for the service is what is to come of it.
  static void expectMisuses(const Inputs& given) {
    const bool isOfHandles = target().is("BuildPictureWithGWorldHandleQRZ");
    bool isForeign = isOfHandles;
    for (size_t i = 0; i < given.size(); ++i) {
      if (target().inputs[i].kind != Type::Kind::Object) continue;
      const Object* object = objectOf(given[i]);
      isForeign |= object != nullptr ? !sameName(object->className(), target().inputs[i].className)
                                     : given[i] == Value{kNoObject};
    }
    for (const std::string& misuse : runtime().takeMisuses()) {
      EXPECT_TRUE(isForeign && (misuse.ends_with(" was called with a handle of another kind") ||
                                (isOfHandles && misuse.ends_with(" got a handle of no GWorld"))))
          << misuse;
    }
  }

  /// Calls, checks, and tells the outcome.
  static Outcome checkedCall(const Setting& setting, const Objects& objects, const Inputs& given,
                             bool isNative) {
    const auto* self = given.empty() ? nullptr : objectAs<Picture>(given[0]);
    const Picture* changed = target().isInPlace() ? self : nullptr;
    const bool mayCount = target().is("CountColorsQRZ");
    Outcome outcome("");
    const SamePort samePort;
    const Balance before(objects);
    try {
      Inputs inputs = given;
      if (isFenced_) fenceMemory();
      const auto results = call(target(), inputs);
      stopFencing();
      for (const Value& result : results) outcome.add(outcomeIn(objects, result));
      expectFits({target(), setting, objects, given, results}, isNative);
      expectRowEnds();
    } catch (const RaisedException& exception) {
      stopFencing();
      outcome.add(Outcome("raised " + exception.instance->className()));
    }
    if (changed != nullptr)
      outcome.add(Outcome("in place",
                          bytesOf(target().is("Scroll") ? colorsOf(*changed) : changed->pixels())));
    expectMisuses(given);
    EXPECT_TRUE(Balance(objects) == before) << testing::PrintToString(runtime().findLeaks());
    if (setting.isSmall() || changed != nullptr) objects.expectUnchanged(changed, mayCount);
    if (changed != nullptr || mayCount) objects.restore();
    return outcome;
  }

  /// Makes all calls of a group, or names one of them.
  static void makeCalls(size_t representation, std::optional<size_t> named) {
    lockDescription = reinterpret_cast<LockDescription>(resolveService("lockPictureDescription"));
    runtime().replacedServices["lockPictureDescription"] =
        reinterpret_cast<void*>(lockWithClaimedSize);
    shared.skipped = 0;
    size_t first = 0;
    for (const Setting& setting : GetParam().settings) {
      fenceMemory();
      const Objects objects(allRepresentations[representation], setting.size);
      stopFencing();
      objects.setMasks(target().is("Scroll") || target().is("HasMaskQRZ"));
      const Plan plan(GetParam(), setting, objects);
      ASSERT_LE(first + plan.size(), Shared::kMostCalls);
      claimed = setting.claimed ? objects.pictures[0].get() : nullptr;
      claimedSize = setting.claimed.value_or(PictureSize{});
      for (size_t i = 0; i < plan.size(); ++i) {
        const size_t call = first + i;
        if (named && call != *named) continue;
        const Inputs inputs = plan[i];
        if (named) FAIL() << textOf(setting, inputs);
        shared.calls = call;
        shared.isMade[representation][call] =
            isCompared(setting, representation) && !isSurfaceForPicture(target(), inputs);
        if (!isAffordable(target(), inputs)) {
          ++shared.skipped;
          shared.outcomes[representation][call] = 0;
          continue;
        }
        isFenced_ = i < kFencedCalls;
        const Outcome outcome = checkedCall(setting, objects, inputs, representation < 3);
        shared.outcomes[representation][call] =
            std::hash<std::string_view>()(outcome.head) ^ outcome.body;
        if (HasFailure()) FAIL() << textOf(setting, inputs) << " gives " << outcome.head;
      }
      first += plan.size();
      objects.expectUnchanged(nullptr, false);
      claimed = nullptr;
    }
    shared.calls = first;
    for (const std::string& leak : runtime().findLeaks()) ADD_FAILURE() << leak;
  }

  static bool run(size_t representation, std::optional<size_t> named = {}) {
    constexpr uint32_t kSeconds = 100;
    const Representation& chosen = allRepresentations[representation];
    return runApart(chosen.name, chosen, kSeconds, [&] { makeCalls(representation, named); });
  }

  /// The first call whose outcome differs from that on another representation.
  static void expectSameOutcomes() {
    for (size_t call = 0; call < shared.calls; ++call) {
      std::optional<size_t> first;
      for (size_t i = 0; i < std::size(allRepresentations); ++i) {
        if (!shared.isMade[i][call]) continue;
        if (!first) first = i;
        if (shared.outcomes[i][call] == shared.outcomes[*first][call]) continue;
        ADD_FAILURE() << allRepresentations[i].name << " differs from "
                      << allRepresentations[*first].name << " in call " << call;
        run(i, call);
        return;
      }
    }
  }

  static bool isFenced_;
};

bool HostileTest::isFenced_ = false;

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

// --- The groups --------------------------------------------------------------

constexpr PictureSize kSmall{7, 5};

std::vector<Setting> otherSizes() {
  std::vector<Setting> settings;
  for (const PictureSize size : {PictureSize{1, 1}, {1, 9}, {9, 1}, {2, 65}, {65, 2}})
    settings.push_back({size, {}, 100});
  for (const PictureSize size : {PictureSize{32767, 1}, {40000, 2}, {1, 40000}, {2, 32767}}) {
    settings.push_back({size, {}, 12});
  }
  return settings;
}

std::vector<Setting> claims() {
  std::vector<Setting> settings;
  for (const PictureSize size : {PictureSize{0, 0},
                                 {0, 5},
                                 {7, 0},
                                 {-1, 5},
                                 {7, -1},
                                 {-10, 1},
                                 {-7, -5},
                                 {INT_MIN, 1},
                                 {INT_MIN, INT_MIN}}) {
    settings.push_back({kSmall, size, 60});
  }
  return settings;
}

/// Listed once, since they refer to each other.
const std::vector<Group>& allGroups() {
  static const auto* groups = [] {
    addBuiltInClasses(runtime().registry);
    loadPlugin(pluginPath());
    static const std::vector<Target> targets = allTargets();
    auto* all = new std::vector<Group>;
    for (const Target& target : targets) {
      const auto takes = [&](std::string_view type) {
        return std::ranges::any_of(target.inputs,
                                   [&](const Type& input) { return sameName(input.name(), type); });
      };
      all->push_back({&target, target.name, Kind::Combined, {{kSmall, {}, 10000}}});
      if (target.isOnInstance() && !target.usesProperties()) continue;
      if (takes("Picture")) {
        all->push_back({&target, target.name + "_sizes", Kind::Combined, otherSizes()});
        all->push_back({&target, target.name + "_claims", Kind::Combined, claims()});
      }
      if (takes("MemoryBlock"))
        all->push_back({&target, target.name + "_blocks", Kind::Blocks, {{kSmall, {}, 0}}});
      if (takes("String"))
        all->push_back({&target, target.name + "_texts", Kind::Texts, {{kSmall, {}, 0}}});
    }
    return all;
  }();
  return *groups;
}

INSTANTIATE_TEST_SUITE_P(All, HostileTest, testing::ValuesIn(allGroups()),
                         [](const auto& test) { return test.param.name; });

class Environment : public testing::Environment {
 public:
  /// Says how much was done.
  void TearDown() override {
    std::set<const Member*> members;
    for (const Group& group : allGroups()) members.insert(group.target->member);
    std::cout << "hostile calls: " << members.size() << " members, " << shared.allCalls
              << " calls on " << std::size(allRepresentations) << " representations and "
              << otherSizes().size() + 1 << " sizes, " << claims().size() << " false ones"
              << std::endl;
  }
};
const auto* const environment = testing::AddGlobalTestEnvironment(new Environment);

}  // namespace
}  // namespace host
