#include "plugin/frame/catalogue.h"

#include <iterator>

#include "plugin/classes/lut3d.h"
#include "plugin/classes/sepia.h"

namespace qrz {

// Each line of the lists is read twice: for the function's declaration …
#define QRZ_MEMBER(RESULT, FUNCTION, PARAMETERS, FLAGS, DECLARATION) RESULT FUNCTION PARAMETERS;
#define QRZ_ASSIGNABLE(FUNCTION, PARAMETERS, SETTER, SETTER_PARAMETERS, FLAGS, DECLARATION) \
  HostPicture FUNCTION PARAMETERS;                                                          \
  void SETTER SETTER_PARAMETERS;
#include "plugin/frame/global_members.inc"
#include "plugin/frame/graphics_members.inc"
#include "plugin/frame/picture_members.inc"
#undef QRZ_MEMBER
#undef QRZ_ASSIGNABLE

namespace {

// … and for its record. The casts stand in the tables themselves, so that the
// tables are initialised by the linker and not by code.
#define QRZ_MEMBER(RESULT, FUNCTION, PARAMETERS, FLAGS, DECLARATION) \
  {reinterpret_cast<HostFunction>(FUNCTION), nullptr, DECLARATION, FLAGS},
#define QRZ_ASSIGNABLE(FUNCTION, PARAMETERS, SETTER, SETTER_PARAMETERS, FLAGS, DECLARATION)       \
  {reinterpret_cast<HostFunction>(FUNCTION), reinterpret_cast<HostFunction>(SETTER), DECLARATION, \
   FLAGS},

MethodRecord graphicsMethods[] = {
#include "plugin/frame/graphics_members.inc"
};

MethodRecord pictureMethods[] = {
#include "plugin/frame/picture_members.inc"
};

MethodRecord globalMethodRecords[] = {
#include "plugin/frame/global_members.inc"
};

#undef QRZ_MEMBER
#undef QRZ_ASSIGNABLE

/// An extension record holds its methods and nothing else.
constexpr ClassRecord extensionOf(const char* className, MethodRecord* methods, int32_t count) {
  ClassRecord record{};
  record.version = kInterfaceVersion;
  record.name = className;
  record.methods = methods;
  record.methodCount = count;
  record.flags = 4;
  return record;
}

ClassRecord graphicsExtension =
    extensionOf("graphics", graphicsMethods, std::size(graphicsMethods));
ClassRecord pictureExtension = extensionOf("Picture", pictureMethods, std::size(pictureMethods));

ClassRecord* const classRecords[] = {&sepiaClass, &lut3DClass};
ClassRecord* const extensionRecords[] = {&graphicsExtension, &pictureExtension};

}  // namespace

RecordList<ClassRecord* const> classes() { return {classRecords, std::size(classRecords)}; }

RecordList<ClassRecord* const> extensions() {
  return {extensionRecords, std::size(extensionRecords)};
}

RecordList<MethodRecord> globalMethods() {
  return {globalMethodRecords, std::size(globalMethodRecords)};
}

}  // namespace qrz
