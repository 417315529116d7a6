// Pixel rows to and from bytes R, G, B without padding.
#pragma once

#define QRZ_KERNEL "plugin/kernels/triplets.inc"
#include "plugin/kernels/for_each_level.h"
