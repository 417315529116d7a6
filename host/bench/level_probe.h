// The CPU level at which the loaded plug-in runs.
#pragma once

#include <string>

namespace host {

/// "SSE2", "SSSE3", "AVX2" or "AVX512": the highest instruction set that the
/// plug-in's own code uses to invert a small picture and to make a binary string
/// of it. So it does not matter what the plug-in's file is called or how it
/// chooses. "unknown" if it has neither InvertQRZ nor PicturetoBinaryStringQRZ.
std::string observedLevel();

}  // namespace host
