// The class PictureLut3DQRZ: what it registers, its table and Close.

#include "plugin/classes/lut3d.h"

#include <iterator>

namespace qrz {

namespace {

/// The instance data stays as the host hands it over.
void constructLut3D(HostObject /*instance*/) {}

/// Releases both pictures. As a method it may be called at any time, and the
/// instance goes on to work; region and table stay as they are.
void CloseLut3DQRZ(HostObject instance) {
  instanceData<PictureLut3D>(lut3DClass, instance).filter.close();
}

/// Element (r, g, b, x), or null if r, g or b is not 0 to 17 or x not 0 to 2.
Lut3DElement* elementAt(HostObject instance, int32_t r, int32_t g, int32_t b, int32_t x) {
  const auto red = static_cast<uint32_t>(r);
  const auto green = static_cast<uint32_t>(g);
  const auto blue = static_cast<uint32_t>(b);
  const auto channel = static_cast<uint32_t>(x);
  if (red >= kLut3DPoints || green >= kLut3DPoints || blue >= kLut3DPoints ||
      channel >= kLut3DChannels) {
    return nullptr;
  }
  auto& lut = instanceData<PictureLut3D>(lut3DClass, instance);
  return lut.table + red * kLut3DRedStride + green * kLut3DGreenStride + blue * kLut3DBlueStride +
         channel;
}

/// The table's element; 0.0 for an index out of range.
double TableLut3DQRZ(HostObject instance, int32_t r, int32_t g, int32_t b, int32_t x) {
  const Lut3DElement* element = elementAt(instance, r, g, b, x);
  return element != nullptr ? *element : 0.0;
}

/// Stores an element, whatever the value; nothing for an index out of range.
void SetTableLut3DQRZ(HostObject instance, int32_t r, int32_t g, int32_t b, int32_t x,
                      double value) {
  if (Lut3DElement* element = elementAt(instance, r, g, b, x)) *element = value;
}

PropertyRecord properties[] = {QRZ_FILTER_FIELDS(kMemberFlag)};

MethodRecord methods[] = {
    {reinterpret_cast<HostFunction>(CloseLut3DQRZ), nullptr, "Close", kMemberFlag},
    {reinterpret_cast<HostFunction>(RunLut3DQRZ), nullptr, "Run as boolean", kMemberFlag},
    {reinterpret_cast<HostFunction>(TableLut3DQRZ),
     reinterpret_cast<HostFunction>(SetTableLut3DQRZ),
     "Table(r as integer, g as integer, b as integer, x as integer) as double", kMemberFlag},
};

}  // namespace

// clang-format off
ClassRecord lut3DClass = {
    /*version=*/kInterfaceVersion,
    /*name=*/"PictureLut3DQRZ",
    /*superclass=*/nullptr,
    /*dataSize=*/sizeof(PictureLut3D),
    /*systemUse=*/0,
    /*constructor=*/reinterpret_cast<HostFunction>(constructLut3D),
    /*destructor=*/reinterpret_cast<HostFunction>(CloseLut3DQRZ),
    /*properties=*/properties, std::size(properties),
    /*methods=*/methods, std::size(methods),
    /*unused1=*/{},
    /*flags=*/4,
    /*secondProperties=*/nullptr, 0,
    /*secondMethods=*/nullptr, 0,
    /*unused2=*/{}};
// clang-format on

}  // namespace qrz
