// The calls of the host and the platform that taking pictures and giving them
// back consists of.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

namespace host {

using Calls = std::vector<std::string>;

inline const Calls openGWorld = {
    "lockPictureDescription", "GetGWorldPixMap", "GetPixDepth",   "LockPixels",
    "GetPixBaseAddr",         "REALLockObject",  "GetPixRowBytes"};
inline const Calls closeGWorld = {"UnlockPixels", "unlockPictureDescription", "REALUnlockObject"};
inline const Calls createGWorld = {"newPicture", "lockPictureDescription", "GetGWorldPixMap",
                                   "LockPixels", "GetPixRowBytes",         "GetPixBaseAddr"};
inline const Calls finishGWorld = {"unlockPictureDescription", "UnlockPixels",
                                   "REALPictureClearCache"};
inline const Calls createContext = {"newPicture",
                                    "lockPictureDescription",
                                    "CGBitmapContextGetData",
                                    "CGBitmapContextGetBytesPerRow",
                                    "CGBitmapContextGetBitsPerComponent",
                                    "CGBitmapContextGetBitsPerPixel"};
inline const Calls finishOther = {"unlockPictureDescription", "REALPictureClearCache"};
inline const Calls refuse = {"lockPictureDescription", "unlockPictureDescription"};
inline const Calls openBitmap = {"lockPictureDescription", "REALLockObject"};
inline const Calls closeBitmap = {"unlockPictureDescription", "REALUnlockObject"};
inline const Calls createBitmap = {"newPicture", "lockPictureDescription"};
inline const Calls refuseDepth = {"lockPictureDescription", "GetGWorldPixMap", "GetPixDepth",
                                  "unlockPictureDescription"};
inline const Calls makeCopy = {
    "REALGetPropValueInt",  "REALGetPropValueInt", "newPicture",      "pluginPictureGraphicsGetter",
    "REALLoadObjectMethod", "DrawPicture",         "REALUnlockObject"};
inline const Calls dropCopy = {"REALUnlockObject"};

inline Calls joined(std::initializer_list<Calls> parts) {
  Calls all;
  for (const Calls& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

}  // namespace host
