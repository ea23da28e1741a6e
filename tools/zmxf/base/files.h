#pragma once

#include "zelmresult/storage/file_replacement.h"
#include "zelmresult/support/wstring.h"

#include <csignal>
#include <span>
#include <string>
#include <vector>

// Files by their names as the system has them: any bytes but a NUL.

namespace zmxf {

// A descriptor that closes with the object.
class Descriptor {
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor();
    [[nodiscard]] int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

// The name of a file as the library takes it.
ZelmResult::wstring LibraryPath(const std::string& path);

// The name of a file without its folder.
std::string BaseName(const std::string& path);

// The bytes of a file of at most 2 GiB. Throws Failure.
std::vector<char> ReadBytes(const std::string& path);

// Makes a folder, and those above it that are missing. Throws Failure.
void MakeFolder(const std::string& folder);

// Throws Failure when a file of that name can't be made or would overwrite the input. An empty input is none.
void CheckOutput(const std::string& path, const std::string& input);
// The same for many; and when two of them are one file by different names.
void CheckOutputs(std::span<const std::string> paths, std::span<const std::string> inputs);

// What stands in for standard streams that are closed. Without it the next files that are opened would take their
// numbers, and get what is printed.
void HoldStandardStreams();

// Signals that ask the program to end wait as long as the object lives, so nothing but writing should happen meanwhile.
class SignalsHeld {
public:
    SignalsHeld();
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;
    ~SignalsHeld();

    [[nodiscard]] static bool IsPending(); // whether one waits that isn't ignored

private:
    sigset_t m_former{};
};

// A file that appears under its name only when it is whole, and vanishes without Commit; see
// ZelmResult::FileReplacement.
class OutputFile {
public:
    // Makes the temporary, empty; throws Failure.
    explicit OutputFile(const std::string& path);

    // The temporary, for others to write to: by name, or by a descriptor that stays this object's.
    [[nodiscard]] std::string temporary() const;
    [[nodiscard]] int descriptor() const { return m_descriptor.get(); }
    // Gives the file its name. Throws Failure.
    void Commit();

private:
    [[noreturn]] void Fail() const;

    SignalsHeld m_signalsHeld;
    std::string m_path;
    ZelmResult::FileReplacement m_replacement;
    Descriptor m_descriptor;
};

// "cannot read x.wav: No such file or directory", the reason being that of errno.
std::string SystemFailure(const std::string& what, const std::string& path);

} // namespace zmxf
