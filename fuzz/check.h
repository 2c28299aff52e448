#pragma once

#include <string>

/// Checks what holds for every text: the functions that take a text agree with reference
/// implementations that go another way, and with each other. Fails as a test does.
void CheckText(const std::string& text);
