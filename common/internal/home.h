/// @file
/// Private to the project and not installed: the rule for the home directory.
#pragma once

#include <string>
#include <utility>

#include <pwd.h>

#include "gxclient_util.h"
#include "internal/environment.h"

namespace GXInternal {

constexpr char kPerUserDirectory[] = ".gannorex";
constexpr char kFallbackHome[] = "/root";

// What calcHomeDir() returns; nothing is made.
inline std::string HomeDirectory(std::string user) {
  std::string home = Environment("HOME");
  if (home != "/") return home;
  const passwd* entry = getpwnam(GXUtils::Transcode("UTF-8", "", std::move(user)).c_str());
  return entry != nullptr ? entry->pw_dir : kFallbackHome;
}

}  // namespace GXInternal
