#pragma once

namespace Host {

/// Has the program do well with whatever its standard channels are. A channel that it was started
/// without stays one that cannot be used, so that no file takes its place; and an output that
/// nobody reads any more is one that cannot be written to, instead of the program's end. To be
/// called before any file is opened.
void sanitizeStandardStreams();

} // namespace Host
