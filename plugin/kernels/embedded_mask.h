// The mask in the pads of pixel rows.
#pragma once

#define QRZ_KERNEL "plugin/kernels/embedded_mask.inc"
#include "plugin/kernels/for_each_level.h"
