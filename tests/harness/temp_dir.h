#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

/// An empty directory. The destructor removes it with its content.
struct TempDir {
  TempDir() { (void)!mkdtemp(path.data()); }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  ~TempDir() { (void)std::filesystem::remove_all(path); }

  std::string path = "/tmp/gxclient_test.XXXXXX";
};
