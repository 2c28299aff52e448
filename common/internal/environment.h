/// @file
/// Private to the project and not installed: what several of its files read from the environment.
#pragma once

#include <cstdlib>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace GXInternal {

// The variable's value; one that is not set counts as empty.
inline std::string Environment(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr ? value : "";
}

// Where dbus-send finds the bus of the session; empty where it finds none and would start a bus of
// its own, which stays.
inline std::string SessionBusAddress() {
  std::string address = Environment("DBUS_SESSION_BUS_ADDRESS");
  const std::string directory = Environment("XDG_RUNTIME_DIR");
  if (!address.empty() || directory.empty()) return address;
  std::string bus = directory + "/bus";
  struct stat info = {};
  const bool owned =
      lstat(bus.c_str(), &info) == 0 && S_ISSOCK(info.st_mode) && info.st_uid == getuid();
  return owned ? bus : std::string();
}

}  // namespace GXInternal
