// The CPU level at which the loaded plug-in runs.
#pragma once

#include <string>

namespace host {

/// "AVX2" or "SSE2", as it is seen while InvertQRZ inverts a picture: AVX2 code
/// clears the upper halves of the vector registers that it uses, SSE2 code leaves
/// them as they are. So it does not matter what the plug-in's file is called or
/// how it chooses. "unknown" if there is no InvertQRZ.
std::string observedLevel();

}  // namespace host
