// Inversion of pixel rows.
#pragma once

#define QRZ_KERNEL "plugin/kernels/invert.inc"
#include "plugin/kernels/for_each_level.h"
