// The runtime directory of the hosted platform, where server sockets and the registry live.
//
// $HL_RUNTIME_DIR, else $XDG_RUNTIME_DIR/halcyra, else /tmp/halcyra-<uid>; read from the
// environment on every call, so a process that changes HL_RUNTIME_DIR uses the new one at once.
// Thread: free functions, safe from any thread (the environment must not change concurrently).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace hos::platform::runtime_directory {

// The directory path, without creating it.
std::string Path();
// Creates the directory (mode 0700) and its "servers" and "registry" subdirectories as needed.
// Returns the path, or nothing when it cannot be made or belongs to another user (logged).
std::optional<std::string> Ensure();
// The socket path of server `name` inside `root`, or nothing if it would exceed the socket path
// limit (logged).
std::optional<std::string> ServerSocketPath(std::string_view root, std::string_view name);

}  // namespace hos::platform::runtime_directory
