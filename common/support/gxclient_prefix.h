/// @file
/// Where the client is installed.
#pragma once

#include <string>

/// The installation prefix: the directory under which the client's own relative paths are found,
/// as AddPathPrefix() puts it in front of them. Empty until the client sets it, which it does after
/// static initialisation.
///
/// Read without a lock: a client that changes it keeps the threads that read it away meanwhile.
extern std::string gxclient_prefix;
