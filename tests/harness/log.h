#pragma once

#include <string>

/// What the module has logged since a test cleared it: of each line its level, message and "\n".
/// The tests bring the client's log themselves, as README.md shows; this is what it does.
extern std::string logged;
extern bool logThrows;  ///< each call throws a std::runtime_error once its line is taken
