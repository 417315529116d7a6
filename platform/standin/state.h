// State that the stand-in's files share.
#pragma once

#include "platform/standin/standin.h"

namespace standin {

extern Counts held;

/// Reports a call; false if it is to fail.
bool called(const char* call);

}  // namespace standin
