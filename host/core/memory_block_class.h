// The class MemoryBlock of scripts.
#pragma once

#include "host/core/registry.h"

namespace host {

void addMemoryBlock(Registry& registry);

}  // namespace host
