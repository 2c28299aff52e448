/// @file
/// The record of an NFS export.
#pragma once

#include <cstdint>
#include <string>

/// One NFS export, a record of parse_nfs_export_option().
struct Exportdata {
  std::string path;         ///< The exported path, without its escapes.
  std::int32_t access = 0;  ///< 0: not exported, 1: read-only, 2: read-write.
};
