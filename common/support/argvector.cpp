#include "support/argvector.h"

#include <utility>

ArgVector::ArgVector() = default;

ArgVector::~ArgVector() = default;

void ArgVector::addArgument(std::string argument) {
  array_.clear();
  arguments_.push_back(std::move(argument));
}

const char* const* ArgVector::getArgArray() {
  if (array_.empty()) {
    array_.reserve(arguments_.size() + 1);
    for (const std::string& argument : arguments_) array_.push_back(argument.c_str());
    array_.push_back(nullptr);
  }
  return array_.data();
}
