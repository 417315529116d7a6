// The class PictureSepiaQRZ: what it registers, its weights and Close.

#include "plugin/classes/sepia.h"

#include <iterator>

namespace qrz {

namespace {

PictureSepia& sepiaOf(HostObject instance) {
  return instanceData<PictureSepia>(sepiaClass, instance);
}

/// Weighs the channels like the eye does; the rest stays as the host hands it
/// over.
void constructSepia(HostObject instance) {
  PictureSepia& sepia = sepiaOf(instance);
  sepia.FactorRed = 0.299;
  sepia.FactorGreen = 0.587;
  sepia.FactorBlue = 0.114;
}

/// Releases both pictures. As a method it may be called at any time, and the
/// instance goes on to work; all else stays as it is.
void CloseSepiaQRZ(HostObject instance) { sepiaOf(instance).filter.close(); }

// The parameter of the property records is not used.

template <SepiaWeight PictureSepia::*weight>
double getWeight(HostObject instance, int32_t /*parameter*/) {
  return sepiaOf(instance).*weight;
}

/// Any value is kept.
template <SepiaWeight PictureSepia::*weight>
void setWeight(HostObject instance, int32_t /*parameter*/, double value) {
  sepiaOf(instance).*weight = value;
}

#define QRZ_WEIGHT(NAME)                                                                         \
  {                                                                                              \
    nullptr, #NAME, "Double", 0, reinterpret_cast<HostFunction>(getWeight<&PictureSepia::NAME>), \
        reinterpret_cast<HostFunction>(setWeight<&PictureSepia::NAME>), 0, {}                    \
  }

PropertyRecord properties[] = {
    QRZ_FILTER_FIELDS(0),
    QRZ_HOST_FIELD(PictureSepia, SepiaRed, "Integer", 0),
    QRZ_HOST_FIELD(PictureSepia, SepiaGreen, "Integer", 0),
    QRZ_HOST_FIELD(PictureSepia, SepiaBlue, "Integer", 0),
    QRZ_WEIGHT(FactorRed),
    QRZ_WEIGHT(FactorBlue),
    QRZ_WEIGHT(FactorGreen),
};

MethodRecord methods[] = {
    {reinterpret_cast<HostFunction>(CloseSepiaQRZ), nullptr, "Close", 0},
    {reinterpret_cast<HostFunction>(RunSepiaQRZ), nullptr, "Run as boolean", 0},
};

}  // namespace

// clang-format off
ClassRecord sepiaClass = {
    /*version=*/kInterfaceVersion,
    /*name=*/"PictureSepiaQRZ",
    /*superclass=*/nullptr,
    /*dataSize=*/sizeof(PictureSepia),
    /*systemUse=*/0,
    /*constructor=*/reinterpret_cast<HostFunction>(constructSepia),
    /*destructor=*/reinterpret_cast<HostFunction>(CloseSepiaQRZ),
    /*properties=*/properties, std::size(properties),
    /*methods=*/methods, std::size(methods),
    /*unused1=*/{},
    /*flags=*/0,
    /*secondProperties=*/nullptr, 0,
    /*secondMethods=*/nullptr, 0,
    /*unused2=*/{}};
// clang-format on

}  // namespace qrz
