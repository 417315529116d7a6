// State that the stand-in's files share.
#pragma once

#include "platform/standin/standin.h"

namespace standin {

extern Counts held;

/// Reports a call; false if it is to fail.
bool called(const char* call);

/// False, and the handle as it was, without memory. New bytes may hold anything;
/// the master pointer may move. Making a handle smaller and as large again never
/// fails.
bool resizeHandle(Handle handle, long size);
/// Gives back what a handle holds beyond its size.
void trimHandle(Handle handle);

/// Ends the recording into a handle, if there is one.
void forgetRecording(Handle data);

}  // namespace standin
