#include "host/core/native_call.h"

#include <array>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "host/core/runtime.h"
#include "host/core/string_record.h"

namespace host {
namespace {

using Word = uint32_t;

/// More words than any member of the plug-in takes. The caller clears a cdecl call's stack, so
/// words beyond the parameters do no harm.
constexpr size_t kWords = 16;

using Clock = std::chrono::steady_clock;

/// What the stopwatch shows, if there is one.
struct Timing {
  bool isOn = false;
  int32_t depth = 0;  ///< a function's services may call functions
  Clock::duration elapsed{};
};
Timing timing;

/// One call of a function of the plug-in.
class TimedCall {
 public:
  TimedCall() {
    if (timing.isOn && ++timing.depth == 1) start_ = Clock::now();
  }
  TimedCall(const TimedCall&) = delete;
  TimedCall& operator=(const TimedCall&) = delete;
  ~TimedCall() {
    if (timing.isOn && --timing.depth == 0) timing.elapsed += Clock::now() - start_;
  }

 private:
  Clock::time_point start_;
};

template <typename Result, size_t... Index>
Result invoke(qrz::HostFunction function, const std::array<Word, kWords>& words,
              std::index_sequence<Index...> /*all*/) {
  auto* target = reinterpret_cast<Result (*)(decltype(static_cast<Word>(Index))...)>(function);
  const TimedCall timed;
  return target(words[Index]...);
}

template <typename Result>
Result invoke(qrz::HostFunction function, const std::array<Word, kWords>& words) {
  return invoke<Result>(function, words, std::make_index_sequence<kWords>());
}

template <typename Pointer>
Word wordOf(Pointer* pointer) {
  return reinterpret_cast<Word>(pointer);
}

struct StringDeleter {
  void operator()(StringRecord* string) const { releaseString(string); }
};
using OwnedString = std::unique_ptr<StringRecord, StringDeleter>;

/// A variable of the caller that a ByRef parameter points to.
struct Cell {
  union {
    int32_t integer;
    double number;
    Object* object;
    StringRecord* string;
  };
};

/// The object that the plug-in handed out, which must be one.
Ref<Object> adoptObject(Object* object) {
  if (object == nullptr) return nullptr;
  if (!Object::isAlive(object)) {
    runtime().reportMisuse("a result is no object of the host");
    return nullptr;
  }
  return Ref<Object>::adopt(object);
}

std::string adoptString(StringRecord* string) {
  if (string == nullptr) return {};
  if (!isString(string)) {
    runtime().reportMisuse("a result is no string of the host");
    return {};
  }
  const OwnedString owned(string);
  return std::string(owned->text());
}

/// The words of a call, and what has to live until it returns.
class Arguments {
 public:
  void add(Word word) { words_.at(count_++) = word; }

  void add(const Type& type, const Value& value) {
    switch (type.kind) {
      case Type::Kind::Double:
        addDouble(std::get<double>(value));
        break;
      case Type::Kind::Integer:
        add(static_cast<Word>(std::get<int32_t>(value)));
        break;
      case Type::Kind::Boolean:
        add(std::get<bool>(value) ? 1 : 0);
        break;
      case Type::Kind::Color:
        add(std::get<Color>(value).rgb);
        break;
      case Type::Kind::String:
        strings_.emplace_back(newString(std::get<std::string>(value)));
        add(wordOf(strings_.back().get()));
        break;
      case Type::Kind::Object:
        add(wordOf(objectOf(value)));
        break;
    }
  }

  /// A cell with the argument's value; the plug-in gets its address.
  void addReference(const Type& type, const Value& value) {
    cells_.push_back(std::make_unique<Cell>());
    Cell& cell = *cells_.back();
    add(wordOf(&cell));
    switch (type.kind) {
      case Type::Kind::Double:
        cell.number = std::get<double>(value);
        break;
      case Type::Kind::Integer:
        cell.integer = std::get<int32_t>(value);
        break;
      case Type::Kind::Boolean:
        cell.integer = std::get<bool>(value) ? 1 : 0;
        break;
      case Type::Kind::Color:
        cell.integer = static_cast<int32_t>(std::get<Color>(value).rgb);
        break;
      case Type::Kind::String:
        cell.string = newString(std::get<std::string>(value));
        break;
      case Type::Kind::Object:
        cell.object = objectOf(value);
        break;
    }
  }

  void addAll(const Declaration& declaration, std::span<Value> values) {
    for (size_t i = 0; i < declaration.parameters.size(); ++i) {
      const Parameter& parameter = declaration.parameters[i];
      parameter.byRef ? addReference(parameter.type, values[i]) : add(parameter.type, values[i]);
    }
  }

  /// Puts what the plug-in left in the cells back into the arguments.
  void writeBack(const Declaration& declaration, std::span<Value> values) const {
    size_t next = 0;
    for (size_t i = 0; i < declaration.parameters.size(); ++i) {
      if (!declaration.parameters[i].byRef) continue;
      writeBack(*cells_[next++], declaration.parameters[i].type, values[i]);
    }
  }

  [[nodiscard]] const std::array<Word, kWords>& words() const { return words_; }

 private:
  void addDouble(double number) {
    Word halves[2];
    memcpy(halves, &number, sizeof number);
    add(halves[0]);
    add(halves[1]);
  }

  static void writeBack(const Cell& cell, const Type& type, Value& value) {
    switch (type.kind) {
      case Type::Kind::Double:
        value = cell.number;
        break;
      case Type::Kind::Integer:
        value = cell.integer;
        break;
      case Type::Kind::Boolean:
        value = (cell.integer & 0xFF) != 0;
        break;
      case Type::Kind::Color:
        value = Color{static_cast<uint32_t>(cell.integer) & 0x00FFFFFF};
        break;
      case Type::Kind::String:
        value = adoptString(cell.string);
        break;
      case Type::Kind::Object:
        // A new object comes with a reference for the variable; the one that
        // was there keeps the variable's own.
        if (cell.object != objectOf(value)) value = objectValue(adoptObject(cell.object));
        break;
    }
  }

  std::array<Word, kWords> words_{};
  size_t count_ = 0;
  std::vector<OwnedString> strings_;
  std::vector<std::unique_ptr<Cell>> cells_;
};

/// Calls and turns the result register into a value of the type.
Value invokeFor(qrz::HostFunction function, const Type& type, const Arguments& arguments) {
  if (type.kind == Type::Kind::Double) return invoke<double>(function, arguments.words());
  const auto word = invoke<Word>(function, arguments.words());
  switch (type.kind) {
    case Type::Kind::Boolean:
      return (word & 0xFF) != 0;
    case Type::Kind::Color:
      return Color{word & 0x00FFFFFF};
    case Type::Kind::String:
      return adoptString(reinterpret_cast<StringRecord*>(word));
    case Type::Kind::Object:
      return objectValue(adoptObject(reinterpret_cast<Object*>(word)));
    default:
      return static_cast<int32_t>(word);
  }
}

int32_t wordsOf(const Type& type) { return type.kind == Type::Kind::Double ? 2 : 1; }

}  // namespace

bool fitsIntoCall(const Declaration& declaration) {
  // The object, and the value that a setter is given.
  int32_t words = 1 + wordsOf(declaration.result.value_or(Type{}));
  for (const Parameter& parameter : declaration.parameters) {
    words += parameter.byRef ? 1 : wordsOf(parameter.type);
  }
  return words <= static_cast<int32_t>(kWords);
}

Value callFunction(qrz::HostFunction function, const Declaration& declaration, Self self,
                   std::span<Value> arguments) {
  Arguments native;
  if (self) native.add(wordOf(*self));
  native.addAll(declaration, arguments);
  Value result = Nil{};
  if (declaration.result) {
    result = invokeFor(function, *declaration.result, native);
  } else {
    invoke<Word>(function, native.words());
  }
  native.writeBack(declaration, arguments);
  runtime().deliverPendingException();
  return result;
}

void callSetter(qrz::HostFunction setter, const Declaration& declaration, Self self,
                std::span<Value> arguments, const Value& assigned, const Type& assignedType) {
  Arguments native;
  if (self) native.add(wordOf(*self));
  native.addAll(declaration, arguments);
  native.add(assignedType, assigned);
  invoke<Word>(setter, native.words());
  native.writeBack(declaration, arguments);
  runtime().deliverPendingException();
}

Value callGetter(qrz::HostFunction getter, Object* self, int32_t param, const Type& type) {
  Arguments native;
  native.add(wordOf(self));
  native.add(static_cast<Word>(param));
  Value result = invokeFor(getter, type, native);
  runtime().deliverPendingException();
  return result;
}

void callPropertySetter(qrz::HostFunction setter, Object* self, int32_t param, const Type& type,
                        const Value& value) {
  Arguments native;
  native.add(wordOf(self));
  native.add(static_cast<Word>(param));
  native.add(type, value);
  invoke<Word>(setter, native.words());
  runtime().deliverPendingException();
}

CallStopwatch::CallStopwatch() { timing = {true, 0, {}}; }

CallStopwatch::~CallStopwatch() { timing = {}; }

std::chrono::nanoseconds CallStopwatch::elapsed() const { return timing.elapsed; }

}  // namespace host
