// A client of the module. With OWN_COLLABORATORS it defines a log and a file manager, which need not be
// shaped like those of the project. They call members of std::string, because an unoptimised library
// has these in the object files that the client's own definitions replace.
#include "gxclient_util.h"

#ifdef OWN_COLLABORATORS
class Logfile {
 public:
  void Log(std::string message, int level);
  std::string lines = "";
};
Logfile logfile;

void Logfile::Log(std::string message, int level) {
  lines += std::to_string(level);
  for (const char byte : message) lines += byte;
}
int osxShowInFileManager(const std::string& path) {
  return path.rfind("/such") == path.find("/s") ? 7 : -1;
}

bool CollaboratorsWereCalled(int shown) {
  return shown == 7 && logfile.lines == "2Failed to start command no-such-program";
}
#else
bool CollaboratorsWereCalled(int shown) { return shown == 1; }
#endif

int main() {
  unsigned char digest[32];
  GXUtils::SHA256Digest("abc", digest);
  const bool failed = GXUtils::System("no-such-program") == -2;
  const int shown = GXUtils::ShowInFileManager("/no/such");
  return digest[0] == 0xba && failed && CollaboratorsWereCalled(shown) ? 0 : 1;
}
