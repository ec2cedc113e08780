#pragma once

namespace Host {

/// Prevents files that are opened later from taking the place of a closed standard stream, and
/// makes a closed pipe a write error instead of a signal that ends the program. Call it before any
/// file is opened.
void sanitizeStandardStreams();

} // namespace Host
