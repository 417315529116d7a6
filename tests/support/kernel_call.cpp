#include "tests/support/kernel_call.h"

namespace host {

void KernelCall::start(int32_t length, uint32_t turn) {
  if (turn == 0) shifts_ = chance.word();
  turn_ = turn;
  rowsUsed_ = 0;
  count = length;
  color = {chance.byte(), chance.byte(), chance.byte()};
}

GuardedRow& KernelCall::row(int32_t elements, size_t elementSize, size_t step) {
  GuardedRow& row = rows_[rowsUsed_];
  // A shift of its own, so that two rows are not always in the same two places.
  const uint32_t place = (turn_ + (shifts_ >> 3 * rowsUsed_)) % GuardedRow::kPlaces;
  row.place(static_cast<size_t>(elements) * elementSize, place, step, chance.word());
  ++rowsUsed_;
  return row;
}

GuardedRow& KernelCall::pixels() {
  using enum Kind;
  const Kind kind = chance.oneOf({Any, Any, Zeros, Ones, Greys, Runs, Ends, Ties, Color});
  GuardedRow& row = newPixels();
  Pixel before = color;
  for (int32_t x = 0; x < count; ++x) row.set(x, word(before = pixelOf(kind, before)));
  return row;
}

Pixel KernelCall::pixelOf(Kind kind, const Pixel& before) {
  const auto made = [](const auto& value) -> Pixel { return {value(), value(), value(), value()}; };
  const int64_t pad = chance.byte();
  switch (kind) {
    case Kind::Zeros:
      return {0, 0, 0};
    case Kind::Ones:
      return {255, 255, 255, 255};
    case Kind::Greys: {
      const int64_t grey = chance.byte();
      return {grey, grey, grey, pad};
    }
    case Kind::Runs:
      if (chance.oneIn(24)) break;
      return {before.red, before.green, before.blue, pad};
    case Kind::Ends:
      return made([&] { return chance.oneOf({0, 1, 127, 128, 254, 255}); });
    case Kind::Ties: {  // between remainders of 17
      const int32_t remainder = chance.between(0, 16);
      return made([&] {
        const int32_t other = chance.between(0, 16);
        return chance.between(0, 14) * 17 + chance.oneOf({remainder, remainder, other});
      });
    }
    case Kind::Color: {
      const int64_t wrong = int64_t{1} << chance.between(0, 47);
      return {color.red ^ (wrong & 0xFF), color.green ^ (wrong >> 8 & 0xFF),
              color.blue ^ (wrong >> 16 & 0xFF), pad};
    }
    case Kind::Any:
      break;
  }
  return made([&] { return chance.byte(); });
}

uint32_t KernelCall::word(const Pixel& pixel) const {
  const auto placed = [&](int64_t value, size_t i) {
    return static_cast<uint32_t>(value) << 8 * places_[i];
  };
  return placed(pixel.red, 0) | placed(pixel.green, 1) | placed(pixel.blue, 2) |
         placed(pixel.pad, 3);
}

Pixel KernelCall::pixel(const GuardedRow& row, int32_t x) const {
  const auto word = row.get<uint32_t>(x);
  const auto value = [&](size_t i) -> int64_t { return word >> 8 * places_[i] & 0xFF; };
  return {value(0), value(1), value(2), value(3)};
}

void KernelCall::run(const std::function<void()>& kernel) {
  if (isTraced) {
    static const CodeRange program = codeAround(reinterpret_cast<const void*>(&faultIn));
    highest = highestInstructionSet(program, kernel);
    return;
  }
  const auto fault = faultIn(kernel);
  if (!fault) return;
  testing::Message where;
  for (uint32_t i = 0; i < rowsUsed_; ++i) {
    const auto distance = rows_[i].distanceTo(*fault);
    if (distance) where << ": byte " << *distance << " of row " << i;
  }
  ADD_FAILURE() << "touches memory that it must not" << where;
}

testing::AssertionResult KernelCall::isAsExpected() const {
  for (uint32_t i = 0; i < rowsUsed_; ++i) {
    const auto result = rows_[i].isAsExpected();
    if (!result) return testing::AssertionFailure() << "row " << i << ": " << result.message();
  }
  return testing::AssertionSuccess();
}

}  // namespace host
