#pragma once

#include <string>

/// Checks what holds for every text: functions agree with reference implementations that go another
/// way, or keep an invariant. Fails as a test does.
void CheckText(const std::string& text);
