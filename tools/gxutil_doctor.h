/// @file
/// What the two files of `gxutil doctor` share.
#pragma once

#include <string>

namespace gxutil {

/// What was found, and why it is wrong: empty where all is well.
struct Fact {
  std::string value;
  std::string trouble = {};
};

/// What ShowInFileManager() finds. That there is no desktop is no trouble: this may be a server.
Fact Opener();
Fact Display();
Fact SessionBus();
Fact FileManager();

}  // namespace gxutil
