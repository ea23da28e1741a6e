#pragma once

#include <cstdint>
#include <string>

// What temporary files need from the platform. Names are bytes, as in the system.

namespace ZelmResult {

// Where temporary files go, with a separator at its end; empty when there is no such place.
std::string TemporaryDirectory();
enum class Creation { Made, NameInUse, Failed };
// Makes an empty file that, on POSIX systems, only this user can access; Windows gives it the rights of its folder.
Creation CreateExclusively(const std::string& path);
bool RemoveFile(const std::string& path);
// The bytes that this user may still write there. False when the system doesn't know.
bool FreeBytes(const std::string& directory, std::uint64_t& bytes);
// A number that no other process has now; a fork changes it.
std::uint64_t ProcessNumber();
// The memory of the machine in bytes.
std::uint64_t PhysicalMemory();

} // namespace ZelmResult
