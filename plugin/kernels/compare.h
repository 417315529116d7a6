// Comparison of pixel rows.
#pragma once

#define QRZ_KERNEL "plugin/kernels/compare.inc"
#include "plugin/kernels/for_each_level.h"
