// Everything that the plug-in registers with the host.
#pragma once

#include "plugin/binding/records.h"

namespace qrz {

/// A static array of records.
template <typename Record>
struct RecordList {
  Record* records;
  int32_t count;

  Record* begin() const { return records; }
  Record* end() const { return records + count; }
};

/// Classes, in the order of registration.
RecordList<ClassRecord* const> classes();
/// Extensions of host classes, in the order of registration.
RecordList<ClassRecord* const> extensions();
/// Global methods, in the order of registration.
RecordList<MethodRecord> globalMethods();

}  // namespace qrz
