// Turns the records that the plug-in registers into entries of the registry.
#pragma once

#include "host/core/registry.h"
#include "plugin/binding/records.h"

namespace host {

/// Adds a class and writes the record's system-use word. A declaration that
/// cannot be parsed is reported as misuse and left out, here and below.
void registerClass(Registry& registry, qrz::ClassRecord& record);
/// Adds the record's methods to a class that the host has.
void registerExtension(Registry& registry, qrz::ClassRecord& record);
void registerGlobalMethod(Registry& registry, qrz::MethodRecord& record);

}  // namespace host
