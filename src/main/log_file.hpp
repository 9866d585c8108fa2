// The log file: the latest invocation path, overwritten at its start.
#pragma once

// The product's log; it lies in a world-writable directory.
inline constexpr const char* log_path = "/var/tmp/verbgw.log";

// Opens `path` for the invocation record and writes `invocation` (when not
// null) at offset 0, with no truncation and no line feed. Returns the
// descriptor, or -1 when the path is not a plain file of its own: a
// symbolic link (dangling or not), a FIFO, a device or a directory is
// never followed, written or waited on, and the request is served as usual.
int log_invocation(const char* path, const char* invocation);
