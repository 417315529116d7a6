// Inversion of the grey pixels of rows.
#pragma once

#define QRZ_KERNEL "plugin/kernels/invert_gray.inc"
#include "plugin/kernels/for_each_level.h"
