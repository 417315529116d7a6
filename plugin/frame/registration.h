// Hands the catalogue to the host.
#pragma once

namespace qrz {

/// The host's version; 0.0 if it does not report one.
inline double HostVersion = 0.0;

/// Translates the flags of every record by HostVersion, then registers classes,
/// extensions and global methods in the catalogue's order. Once per process.
void PluginEntry();

}  // namespace qrz
