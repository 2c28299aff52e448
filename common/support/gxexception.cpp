#include "support/gxexception.h"

GXException::GXException(int code, std::string message)
    : std::runtime_error(message), code_(code) {}

GXException::~GXException() = default;

int GXException::code() const noexcept { return code_; }
