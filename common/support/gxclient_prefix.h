/// @file
/// The installation prefix of the client.
#pragma once

#include <string>

/// The installation prefix: the directory that GXUtils::AddPathPrefix() puts before relative paths.
///
///     gxclient_prefix = "/opt/app";
///     GXUtils::AddPathPrefix("lib/x");   // "/opt/app/lib/x"
///
/// The prefix is empty until the client sets it. Set it after static initialisation, while no other
/// thread calls AddPathPrefix(): it is read without a lock.
extern std::string gxclient_prefix;
