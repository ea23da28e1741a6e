#pragma once

#include "zelmresult/support/wstring.h"

#include <csignal>
#include <string>

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

// The name of an existing file as the library takes it, which is UTF-16. What isn't UTF-8 is reached through a
// descriptor that this object holds. Throws Failure when such a file can't be reached.
class LibraryPath {
public:
    explicit LibraryPath(const std::string& path);
    [[nodiscard]] const ZelmResult::wstring& text() const { return m_text; }

private:
    Descriptor m_descriptor;
    ZelmResult::wstring m_text;
};

// Throws Failure when a file of that name can't be made or would overwrite the input. An empty input is none.
void CheckOutput(const std::string& path, const std::string& input);

// A file that appears under its name only when it is whole. Until Commit it is a temporary beside that name, and
// without Commit it vanishes again. Signals that ask the program to end wait as long as the object lives, so nothing
// but writing should happen meanwhile.
class OutputFile {
public:
    // Makes the temporary, empty; throws Failure.
    explicit OutputFile(const std::string& path);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    // The temporary, for others to write to: by name, or by a descriptor that stays this object's.
    [[nodiscard]] const std::string& temporary() const { return m_temporary; }
    [[nodiscard]] int descriptor() const { return m_descriptor.get(); }
    // Has the bytes reach the device and gives the file its name, in the place of what had it. Throws Failure.
    void Commit();

private:
    // Holds signals back from its construction on.
    class SignalsHeld {
    public:
        SignalsHeld();
        SignalsHeld(const SignalsHeld&) = delete;
        SignalsHeld& operator=(const SignalsHeld&) = delete;
        ~SignalsHeld();

    private:
        sigset_t m_former{};
    };

    SignalsHeld m_signalsHeld;
    std::string m_path;
    std::string m_temporary;
    Descriptor m_descriptor;
};

// "cannot read x.wav: No such file or directory", the reason being that of errno.
std::string SystemFailure(const std::string& what, const std::string& path);

} // namespace zmxf
