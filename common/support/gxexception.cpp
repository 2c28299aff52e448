#include "support/gxexception.h"

GXException::GXException(int code, std::string message) : code_(code), message_(message) {}

GXException::~GXException() = default;

int GXException::code() const noexcept { return code_; }

const char* GXException::what() const noexcept { return message_.what(); }
