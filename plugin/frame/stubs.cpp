// Members that are registered for programs written on other systems, and do
// nothing here.

#include "plugin/binding/handles.h"

namespace qrz {

/// There are no HBITMAPs here: 0.
int32_t MakeHBITMAPQRZ() { return 0; }

/// Draws nothing, whatever the arguments: false.
int32_t StretchDIBitsQRZ() { return 0; }

/// Does nothing.
void PaintDesktopQRZ() {}

}  // namespace qrz
