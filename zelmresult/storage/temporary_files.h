#pragma once

#include <cstdint>
#include <string>

// What temporary files need of the platform. Names are bytes, as the system has them.

namespace ZelmResult {

// Where temporary files go, with a separator at its end; empty when there is no such place.
std::string TemporaryDirectory();
// Makes an empty file for this user alone. False when there is anything of that name.
bool CreateExclusively(const std::string& path);
bool RemoveFile(const std::string& path);
// The bytes that this user may still write there. False when the system doesn't tell.
bool FreeBytes(const std::string& directory, std::uint64_t& bytes);
// What no other process has now; a fork changes it.
std::uint64_t ProcessNumber();
// The memory of the machine in bytes.
std::uint64_t PhysicalMemory();

} // namespace ZelmResult
