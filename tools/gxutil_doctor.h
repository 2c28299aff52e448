/// @file
/// The facts of `gxutil doctor`, one function each. What is information and what is wrong stands in
/// docs/design.md.
#pragma once

#include <string>

namespace gxutil {

/// What was found, why it is wrong (empty where all is well), and what to do about it then.
struct Fact {
  std::string value;
  std::string trouble = {};
  std::string advice = {};
};

/// The system and its languages.
Fact ModuleVersion();
Fact SystemVersion();
Fact Distribution();
Fact LanguageVariables();
Fact Locale();
Fact Encoding();
Fact SpeedFigure();

/// The user and the directories.
Fact RunningUser();
Fact Home();
Fact PerUserDirectory();
Fact WorkingDirectory();
Fact Umask();
Fact SearchPath();
Fact TemporaryDirectory();

/// Running programs.
Fact RunProgram();
Fact ProgramEnd();
Fact StandardStreams();
Fact OpenFiles();
Fact Processes();

/// What ShowInFileManager() finds. That there is no desktop is no trouble: this may be a server.
bool HasDesktop();
Fact Desktop();
Fact BusTool();
Fact Opener();
Fact Display();
Fact SessionBus();
Fact FileManager();

}  // namespace gxutil
