#pragma once

#include <string>

/// The lines that the module has logged since a test cleared the text, as in "2 message\n" for a
/// message with level 2. The tests define the client's log themselves, as a client may.
extern std::string logged;
