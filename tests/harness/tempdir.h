#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

/// An empty directory, removed with all that is in it when it goes out of scope.
class TempDir {
 public:
  TempDir() { (void)!mkdtemp(path_.data()); }
  ~TempDir() { std::filesystem::remove_all(path_, ignored_); }
  TempDir& operator=(TempDir&&) = delete;  // neither copied nor moved

  /// The directory, or with a `name` the path of that entry in it.
  std::string Path(const std::string& name = "") const {
    return name.empty() ? path_ : path_ + "/" + name;
  }

 private:
  std::string path_ = "/tmp/gxclient_test.XXXXXX";
  std::error_code ignored_;
};
