#pragma once
// The file system as the engine meets it. Names are UTF-8 text on every
// platform; files are always opened as bytes, never as text, so the readers
// see the line ends the file holds. One implementation per platform
// (FilesPosix.cpp, FilesWindows.cpp).
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>

namespace kestrum {

// The path a UTF-8 name stands for, and the UTF-8 name of a path.
std::filesystem::path PathOf(const std::string& name);
std::string NameOf(const std::filesystem::path& path);

// std::fopen for a UTF-8 name; mode is one of "rb", "wb", "ab". Null, with
// errno set, on a failure.
std::FILE* OpenBytes(const std::string& name, const char* mode);
// std::fseek with offsets beyond 2 GiB where long is 32 bits.
bool SeekBytes(std::FILE* file, std::int64_t offset, int origin);

// Gives the file working the name target at once, replacing a regular file
// there (on Windows keeping the old one's attributes, security and creation
// time). False, with the system's words, when it can't.
bool MoveIntoPlace(const std::string& working, const std::string& target, std::string& reason);

}  // namespace kestrum
