#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// What each system does in its own way. Each has its source.
namespace Tool::System {

/// Belongs at the start of the program, ahead of all that opens files.
/// Afterwards a closed pipe and a file too large show as failed writes, no file
/// takes the place of a standard stream that the caller has closed, and those
/// streams carry bytes as they are.
void start();

/// The file of the running program, empty where that is unknown.
std::filesystem::path program();

/// Writes `text` where only this process finds it, and returns a path to read
/// it by. It goes with the process. Throws std::runtime_error.
std::string privateFile(std::string const& name, std::string_view text);

/// True for a path that privateFile() returned.
bool isPrivate(std::string const& path);

/// Opens a device or pipe for writing: a descriptor, or -1 and errno.
int openDevice(std::string const& path);

/// Opens a new file in the folder of `target`: a descriptor, or -1 and errno.
/// `path` becomes its name, empty for a file that has none yet and goes with
/// the process.
int openBeside(std::string const& target, std::string& path);

/// Readies a file of openBeside() to be renamed to `target`: gives it the
/// permissions of that and a name. False and errno on failure.
bool prepareToReplace(std::string const& target, int descriptor,
                      std::string& path);

/// True if gnuplot drew something into the open file `picture`. Throws
/// std::runtime_error if it cannot be started.
bool runGnuplot(std::string const& commands, int picture);

}  // namespace Tool::System
