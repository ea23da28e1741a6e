#pragma once

#include "tools/zmxf/base/paths.h"
#include "tools/zmxf/base/signals.h"
#include "zelmresult/storage/file_handle.h"
#include "zelmresult/storage/file_replacement.h"

#include <memory>
#include <span>
#include <string>
#include <system_error>
#include <vector>

namespace zmxf {

// The bytes of a file of at most 2 GiB. Throws Failure.
std::vector<char> ReadBytes(const std::string& path);

// Makes a folder, and those above it that are missing. Throws Failure.
void MakeFolder(const std::string& folder);

// Throws Failure when a file of that name can't be made or would overwrite the input. An empty input is none.
void CheckOutput(const std::string& path, const std::string& input);
// The same for many; and when two of them are one file by different names.
void CheckOutputs(std::span<const std::string> paths, std::span<const std::string> inputs);

// A file that appears under its name only when it is whole, and vanishes without Commit; see
// ZelmResult::FileReplacement.
class OutputFile {
public:
    // Makes the temporary, empty; throws Failure.
    explicit OutputFile(const std::string& path);

    // The temporary, for others to write to: by name, or by a handle that stays this object's.
    [[nodiscard]] std::string temporary() const;
    [[nodiscard]] ZelmResult::FileHandle& file() { return *m_file; }
    // Gives the file its name, after which nothing can be written to it. Throws Failure.
    void Commit();

private:
    [[noreturn]] void Fail() const;

    SignalsHeld m_signalsHeld;
    std::string m_path;
    ZelmResult::FileReplacement m_replacement;
    std::unique_ptr<ZelmResult::FileHandle> m_file;
};

// "cannot read x.wav: No such file or directory". Without a reason the system had nothing against it, but a path to
// something else than a file was refused.
std::string SystemFailure(const std::string& what, const std::string& path, const std::error_code& reason);

} // namespace zmxf
