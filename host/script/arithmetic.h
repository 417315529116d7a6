// The operators of the host's language on values.
#pragma once

#include <optional>

#include "host/core/value.h"
#include "host/script/operators.h"

namespace host {

/// Nothing if the operator does not take such a value.
std::optional<Value> applyUnary(UnaryOperator operation, const Value& operand);

/// Nothing if the operator does not take such values. Integers wrap around in
/// 32 bits. Raises DivisionByZeroException for `\` and Mod.
std::optional<Value> applyBinary(BinaryOperator operation, const Value& left, const Value& right);

}  // namespace host
