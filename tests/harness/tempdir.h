#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

/// An empty directory, removed with all that is in it when it goes out of scope.
class TempDir {
 public:
  TempDir() { (void)!mkdtemp(path_.data()); }
  ~TempDir() { (void)std::filesystem::remove_all(path_); }
  TempDir& operator=(TempDir&&) = delete;  // neither copied nor moved

  /// The directory, or with a `name` the path of that entry in it.
  std::string Path(const std::string& name = "") const {
    return name.empty() ? path_ : path_ + "/" + name;
  }

 private:
  std::string path_ = "/tmp/gxclient_test.XXXXXX";
};
