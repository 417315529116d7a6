// The class PictureSepiaQRZ: its instance data.
#pragma once

#include "plugin/classes/filter_instance.h"

namespace qrz {

/// The host aligns instance data to words only.
typedef double SepiaWeight __attribute__((aligned(4)));

/// The instance data. The host reads and writes all but the weights itself.
struct PictureSepia {
  FilterInstance filter;
  int32_t SepiaRed, SepiaGreen, SepiaBlue;  ///< added to the luminance
  SepiaWeight FactorRed, FactorGreen, FactorBlue;
};
static_assert(offsetof(PictureSepia, SepiaRed) == 24);
static_assert(offsetof(PictureSepia, SepiaGreen) == 28);
static_assert(offsetof(PictureSepia, SepiaBlue) == 32);
static_assert(offsetof(PictureSepia, FactorRed) == 36);
static_assert(offsetof(PictureSepia, FactorGreen) == 44);
static_assert(offsetof(PictureSepia, FactorBlue) == 52);
static_assert(sizeof(PictureSepia) == 60);

extern ClassRecord sepiaClass;

/// The method Run, in a file of its own.
int32_t RunSepiaQRZ(HostObject instance);

}  // namespace qrz
