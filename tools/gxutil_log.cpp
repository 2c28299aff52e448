// The tool's own log in the place of the client's: what the module logs is a diagnostic like any
// other, and makes the command that called it fail.

#include <algorithm>
#include <utility>

#include "gxutil.h"

// As much of the class as the module knows; support/logfile.h describes it.
class Logfile {
 public:
  void Log(std::string message, int level);
};

Logfile logfile;

namespace {

bool hasLogged = false;
gxutil::KeptLog* keeper = nullptr;

}  // namespace

namespace gxutil {

bool HasLogged() { return hasLogged; }

KeptLog::KeptLog() : outer_(std::exchange(keeper, this)) {}

KeptLog::~KeptLog() { keeper = outer_; }

bool KeptLog::Has(const std::string& message) const {
  return std::find(lines_.begin(), lines_.end(), message) != lines_.end();
}

void KeptLog::Keep(std::string message) { lines_.push_back(std::move(message)); }

}  // namespace gxutil

void Logfile::Log(std::string message, int /*level*/) {
  if (keeper != nullptr) {
    keeper->Keep(std::move(message));
    return;
  }
  hasLogged = true;
  (void)gxutil::Fail(std::move(message));
}
