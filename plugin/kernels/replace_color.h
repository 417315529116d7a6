// Pixels of one exact colour in rows, replaced.
#pragma once

#define QRZ_KERNEL "plugin/kernels/replace_color.inc"
#include "plugin/kernels/for_each_level.h"
