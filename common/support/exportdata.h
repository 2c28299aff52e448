#pragma once

#include <cstdint>
#include <string>

/// One export of a file system.
struct Exportdata {
  /// The path as the option names it, its escapes resolved.
  std::string path;
  std::int32_t access = 0;  ///< 0: not exported, 1: read-only, 2: read-write
};
