// How much of the thread's stack is left.
#pragma once

namespace host {

/// True once what is left is to be kept for members, messages and cleaning up.
bool isStackLow();

}  // namespace host
