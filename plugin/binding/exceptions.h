// Exceptions in the host's language.
#pragma once

namespace qrz {

/// Raises an exception of the named host class. The host keeps it pending and
/// delivers it when the registered function returns, so the caller goes on to
/// return its own failure result. `message` may be null; a null or empty one
/// leaves the exception with a nil Message. When the host cannot create or raise
/// the exception there is nothing to raise, and nothing happens.
void RaiseHostException(const char* className, const char* message);

/// RaiseHostException with the class "NilObjectException".
void RaiseNilObjectException(const char* message);

}  // namespace qrz
