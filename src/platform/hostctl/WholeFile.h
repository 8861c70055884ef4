#pragma once

#include <string>

namespace HostCtl {

// Replaces the contents of `path` with `text` so that a crash or a kill at any moment leaves the old
// contents or the new, never part of either: written beside it, synced, renamed over it, and the rename
// synced. The file keeps its permission bits. A file that is a mount point of its own (a bind-mounted
// /etc/hosts in a container) cannot be renamed over; it is rewritten in place and synced instead.
// std::system_error ("Cannot write <path>: <reason>", the errno as its code) when it cannot be done; the
// file is then unchanged, except where an in-place rewrite itself failed.
void WriteWholeFile(const std::string& path, const std::string& text);

// The whole contents of `path`; std::system_error ("Cannot read <path>: <reason>") when it cannot be read.
std::string ReadWholeFile(const std::string& path);

// Syncs the directory that holds `path`, so that a rename or removal there survives a power loss.
void SyncDirectoryOf(const std::string& path);

}  // namespace HostCtl
