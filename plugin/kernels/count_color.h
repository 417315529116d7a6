// Pixels of one exact colour, counted in rows.
#pragma once

#define QRZ_KERNEL "plugin/kernels/count_color.inc"
#include "plugin/kernels/for_each_level.h"
