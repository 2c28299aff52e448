#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

/// An empty directory. The destructor removes it with its content.
struct TempDir {
  TempDir() { (void)!mkdtemp(path.data()); }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  ~TempDir() {
    std::error_code ignored;
    (void)std::filesystem::remove_all(path, ignored);
  }

  std::string path = "/tmp/gxclient_test.XXXXXX";
};
