// Pixel rows made of the channels of two or three rows.
#pragma once

#define QRZ_KERNEL "plugin/kernels/channels.inc"
#include "plugin/kernels/for_each_level.h"
