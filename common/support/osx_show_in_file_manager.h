/// @file
/// The desktop's file manager.
#pragma once

#include <string>

/// Shows the file or directory at `path`, selected, in the desktop's file manager. Named for the
/// system where it came from; it works on all of them.
///
/// On macOS it runs `open -R`. Elsewhere `dbus-send` asks the file manager through the interface
/// org.freedesktop.FileManager1 (freedesktop.org, File Manager DBus Interface), where the session
/// has a bus. Where that fails, `xdg-open` opens the directory that holds the item, provided
/// DISPLAY or WAYLAND_DISPLAY is set and not empty; it and the file manager it becomes run detached
/// from the client. The programs are found along PATH, get no descriptor of the client and write
/// nothing to its streams.
///
/// A relative path counts from the working directory. The path ends at its first NUL byte; every
/// other byte is part of a name, whatever the encoding.
///
/// @retval 0 shown, or `xdg-open` was started
/// @retval 1 there is nothing at `path`, or it cannot be reached; a dangling symbolic link is
///         something
/// @retval 2 no program, bus or display was there to show it, or a program failed
/// @retval 3 no answer in time, or the file manager ended before it answered. It may still show the
///         item, so nothing else was tried.
///
/// Blocks until the file manager has answered: for 5 seconds at the most, or 10 where the bus
/// itself does not answer. Leaves no child behind, whatever the client does about SIGCHLD, whose
/// action it does not touch. May run on any thread, but not while another one changes the
/// environment.
int osxShowInFileManager(const std::string& path);
