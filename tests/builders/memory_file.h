#pragma once

#include "tests/builders/bytes.h"
#include "zelmresult/storage/file_handle.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/storage/mmio_riff.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace ZelmResult::test {

// Files in memory by path, under the library's own backend. A test owns the disk; handles and backends keep it alive.
class MemoryDisk {
public:
    using File = std::vector<char>;

    // What the handles of this disk were asked for.
    struct Counts {
        std::size_t reads = 0;
        std::int64_t bytesRead = 0;
        std::size_t writes = 0;
        std::size_t closes = 0;
    };

    MemoryDisk() : m_state(std::make_shared<State>()) {}

    // The contents of a file. Makes an empty one when there is none, unlike an open for reading.
    File& operator[](const wstring& path) { return m_state->files[path]; }
    [[nodiscard]] bool Holds(const wstring& path) const { return m_state->files.contains(path); }
    void Put(const wstring& path, const Bytes& bytes) { m_state->files[path] = bytes.data(); }
    // From now on no file grows past this size: a write that would is refused as a whole.
    void SetLimit(std::size_t bytes) { m_state->limit = bytes; }
    [[nodiscard]] Counts& counts() { return m_state->counts; }

    [[nodiscard]] FileHandleFactory handles() const;
    [[nodiscard]] CMmioFile::BackendFactory backend(CMmioRiff::Search search = CMmioRiff::Search::Indexed) const;

private:
    struct State {
        std::map<wstring, File> files;
        std::size_t limit = SIZE_MAX;
        Counts counts;
    };
    class Handle;

    std::shared_ptr<State> m_state;
};

// Gives all files that name no backend of their own this one, as long as it lives: documents make their files
// themselves.
class UseBackend {
public:
    explicit UseBackend(CMmioFile::BackendFactory makeBackend);
    explicit UseBackend(const MemoryDisk& disk) : UseBackend(disk.backend()) {}
    UseBackend(const UseBackend&) = delete;
    UseBackend& operator=(const UseBackend&) = delete;
    ~UseBackend();

private:
    CMmioFile::BackendFactory m_former;
};

// A folder on the real disk that dies with the object, for where files themselves are the subject.
class TempFolder {
public:
    TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder();

    [[nodiscard]] const std::string& path() const { return m_path; }
    [[nodiscard]] std::string file(const std::string& name) const;
    [[nodiscard]] wstring wideFile(const std::string& name) const;

private:
    std::string m_path;
};

// The bytes of a file on the real disk, empty when there is none.
std::string readDiskFile(const std::string& path);

} // namespace ZelmResult::test
