// Every service of the host that the plug-in uses, under the host's own name.
#pragma once

#include "platform/platform.h"
#include "plugin/binding/description.h"
#include "plugin/binding/host_service.h"
#include "plugin/binding/records.h"

namespace qrz::service {

// Registration. The host keeps the pointers for the life of the process.
inline HostService<void(ClassRecord*)> PluginRegisterClass{"PluginRegisterClass"};
inline HostService<void(ClassRecord*)> PluginRegisterClassExtension{"PluginRegisterClassExtension"};
inline HostService<void(MethodRecord*)> PluginRegisterMethod{"PluginRegisterMethod"};
inline HostService<void()> REALenterMovies{"REALenterMovies"};

// Strings. New strings carry one reference for the caller.
inline HostService<HostString(const char* bytes, int32_t length)> REALBuildString{
    "REALBuildString"};
inline HostService<void(HostString, int32_t encoding)> REALSetStringEncoding{
    "REALSetStringEncoding"};
inline HostService<HostString(HostString, int32_t encoding)> REALConvertString{"REALConvertString"};
inline HostService<void(HostString)> REALUnlockString{"REALUnlockString"};

// Objects.
inline HostService<void(HostObject)> REALLockObject{"REALLockObject"};
inline HostService<void(HostObject)> REALUnlockObject{"REALUnlockObject"};
inline HostService<HostObject(const char* className)> PluginNewInstance{"PluginNewInstance"};
inline HostService<void(HostObject)> RuntimeRaiseException{"RuntimeRaiseException"};
inline HostService<HostBoolean(HostObject, const char* property, HostString)>
    REALSetPropValueString{"REALSetPropValueString"};
inline HostService<HostBoolean(HostObject, const char* property, int32_t* value)>
    REALGetPropValueInt{"REALGetPropValueInt"};
inline HostService<HostBoolean(HostObject, const char* property, int32_t value)>
    REALSetPropValueInt{"REALSetPropValueInt"};
inline HostService<void*(HostObject, const char* declaration)> REALLoadObjectMethod{
    "REALLoadObjectMethod"};

// Drawing.
using DrawPictureService =
    HostService<void(HostGraphics, HostPicture, int32_t x, int32_t y, int32_t w, int32_t h,
                     int32_t sx, int32_t sy, int32_t sw, int32_t sh)>;
inline HostService<void(HostGraphics, int32_t x1, int32_t y1, int32_t x2, int32_t y2)>
    RuntimeGraphicsDrawLine{"RuntimeGraphicsDrawLine"};
inline HostService<void(HostPicture, const Rect*, int32_t zero)> drawPicturePrimitive{
    "drawPicturePrimitive"};

// Pictures. New pictures, graphics and masks carry one reference for the caller.
inline HostService<HostPicture(int32_t width, int32_t height, int32_t depth)> newPicture{
    "newPicture"};
inline HostService<HostGraphics(HostPicture)> pluginPictureGraphicsGetter{
    "pluginPictureGraphicsGetter"};
inline HostService<void(HostPicture, PictureDescription*)> lockPictureDescription{
    "lockPictureDescription"};
inline HostService<void(HostPicture)> unlockPictureDescription{"unlockPictureDescription"};
inline HostService<HostBoolean(HostPicture, PictureDescription*, int32_t type)>
    REALLockPictureDescription{"REALLockPictureDescription"};
inline HostService<void(HostPicture)> REALPictureClearCache{"REALPictureClearCache"};
inline HostService<HostPicture(HostPicture, HostBoolean)> REALGetPictureMask{"REALGetPictureMask"};
inline HostService<HostPicture(PicHandle, HostBoolean)> REALBuildPictureFromPicHandle{
    "REALBuildPictureFromPicHandle"};
inline HostService<HostPicture(GWorldPtr, HostBoolean)> REALBuildPictureFromGWorld{
    "REALBuildPictureFromGWorld"};

// Memory blocks.
inline HostService<HostMemoryBlock(int32_t size)> newMemoryBlock{"newMemoryBlock"};
inline HostService<void*(HostMemoryBlock)> memoryBlockGetPtr{"memoryBlockGetPtr"};
inline HostService<int32_t(HostMemoryBlock)> memoryBlockGetSize{"memoryBlockGetSize"};

}  // namespace qrz::service
