#pragma once

#include <istream>
#include <string>

// What the database readers share. Not installed.

/// The whole rest of a stream, read past its formatting in large blocks. Leaves
/// the state of the stream alone; what its buffer throws goes on.
std::string remainingText(std::istream& in);

/// Reads a whole file. False if it cannot be opened, as a directory cannot;
/// throws std::runtime_error "Could not read file" if reading breaks off.
bool readFile(std::string const& path, std::string& text);

/// Replaces a packed text by what it holds and leaves any other as it is.
/// Throws std::runtime_error: the codec's text, or "Packed text is too long"
/// where a short input stands for far more text than a database has.
void unpack(std::string& text);
