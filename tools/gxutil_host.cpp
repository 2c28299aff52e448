// Files, users and the host.

#include <cerrno>
#include <cstring>
#include <memory>

#include "gxclient_util.h"
#include "gxutil.h"
#include "support/exportdata.h"
#include "support/gxclient_prefix.h"

namespace gxutil {
namespace {

int PrintExports(const std::string& option) {
  std::vector<Exportdata*> exports;
  const int valid = parse_nfs_export_option(option, exports);
  for (const Exportdata* record : exports) {
    const std::unique_ptr<const Exportdata> owner(record);
    (void)PrintLine(std::to_string(record->access) + " " + record->path);
  }
  return valid != 0 ? 0 : Fail("not every pair is valid");
}

int MakeDirectory(const std::string& path, bool recursive) {
  if (GXUtils::CheckCreateDir(path, recursive)) return PrintBool(true);
  const int error = errno;
  (void)PrintBool(false);
  return Fail(std::strerror(error));
}

int ShowFile(const std::string& path) {
  switch (const int status = GXUtils::ShowInFileManager(path)) {
    case 0:
      return 0;
    case 1:
      return Fail("status 1: nothing is there, or it cannot be reached");
    case 2:
      return Fail("status 2: no program, session bus or display shows it; see 'gxutil doctor'");
    case 3:
      return Fail("status 3: the file manager gave no answer in time; it may still show the file");
    default:
      return Fail("status " + std::to_string(status));
  }
}

void AddFileCommands(CLI::App& app) {
  Add(app, "check-create-dir", "Make sure that a directory exists", [](CLI::App& command) {
    const auto path = Operand(command, "PATH", "The directory, absolute");
    const auto* recursive =
        command.add_flag("-r,--recursive")->description("Make those above it as well");
    command.footer(
        "With -r a path that does not begin with a slash counts from the root directory,\n"
        "without what stands before its first slash.");
    return [=] { return MakeDirectory(path(), recursive->count() != 0); };
  });
  Add(app, "generate-temp-file", "Create a private file below /tmp", [](CLI::App& command) {
    const auto name = Operand(command, "NAME", "What its name begins with");
    return [=] {
      const std::string path = GXUtils::GenerateTempFile(name(), nullptr);
      return path.empty() ? Fail("the file cannot be created") : PrintLine(path);
    };
  });
  Add(app, "unlink-or-truncate", "Remove a file", [](CLI::App& command) {
    const auto path = Operand(command, "PATH", "The file");
    return [=] {
      if (GXUtils::UnlinkOrTruncate(path().c_str()) == 0) return 0;
      return Fail(std::strerror(errno));
    };
  });
  Add(app, "win-get-temp-dir", "Print the platform's temporary directory",
      [](CLI::App&) { return [] { return PrintLine(GXUtils::winGetTempDir()); }; });
  Add(app, "add-path-prefix", "Put the installation prefix before a path", [](CLI::App& command) {
    const auto path = Operand(command, "PATH", "The path");
    const auto* prefix =
        command.add_option("-p,--prefix", "The installation prefix")->option_text("PATH");
    return [=] {
      if (prefix->count() != 0) gxclient_prefix = prefix->as<std::string>();
      return PrintLine(GXUtils::AddPathPrefix(path()));
    };
  });
  Add(app, "show-in-file-manager", "Show a file in the desktop's file manager",
      [](CLI::App& command) {
        const auto path = Operand(command, "PATH", "The file");
        return [=] { return ShowFile(path()); };
      });
}

}  // namespace

void AddHostCommands(CLI::App& app) {
  AddFileCommands(app);
  Add(app, "home-dir", "Print the home directory; makes .gannorex in it", [](CLI::App& command) {
    const auto* user = command.add_option(
        "USER", "Looked up only where HOME is \"/\"\n(default: the running user)");
    return [=] {
      const bool given = user->count() != 0;
      return PrintLine(
          GXUtils::calcHomeDir(given ? user->as<std::string>() : GXUtils::calcRunningUser()));
    };
  });
  Add(app, "running-user", "Print the running user's name",
      [](CLI::App&) { return [] { return PrintLine(GXUtils::calcRunningUser()); }; });
  Add(app, "bogo-mips", "Print the host's speed figure", [](CLI::App&) {
    return [] {
      const int figure = GXUtils::GetBogoMips();
      return figure < 0 ? Fail("there is no figure") : PrintLine(std::to_string(figure));
    };
  });
  Add(app, "nfs-exports", "Print access and path of each export", [](CLI::App& command) {
    const auto option = Operand(command, "OPTION", "PATH,ro|rw|disabled[,PATH,...]");
    command.footer("The access is 0 for none, 1 for read-only, 2 for read-write.");
    return [=] { return PrintExports(option()); };
  });
}

}  // namespace gxutil
