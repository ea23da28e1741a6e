#pragma once

#include "bench/peers/case.h"

#include <hdf5.h>

#include <string>
#include <utility>
#include <vector>

// What the cases on HDF5 share: handles that close themselves, and the settings that make it fast.

namespace peers::hdf5 {

class Handle {
public:
    Handle(hid_t id, herr_t (*close)(hid_t)) : m_id(id), m_close(close) { Require(id >= 0, "a call of HDF5"); }
    Handle(Handle&& other) noexcept : m_id(std::exchange(other.m_id, -1)), m_close(other.m_close) {}
    Handle& operator=(Handle&& other) noexcept
    {
        std::swap(m_id, other.m_id);
        std::swap(m_close, other.m_close);
        return *this;
    }
    ~Handle()
    {
        if (m_id >= 0) (void)m_close(m_id);
    }

    operator hid_t() const { return m_id; } // NOLINT: as it is used in each call

private:
    hid_t m_id;
    herr_t (*m_close)(hid_t);
};

inline void Do(herr_t status) { Require(status >= 0, "a call of HDF5"); }

enum class Where { Memory, Disk };

Handle CreateFile(const Path& path, Where where = Where::Disk);
Handle OpenFile(const Path& path);

Handle Space(const std::vector<hsize_t>& extent);
Handle Text(std::size_t size); // of a fixed size, filled up with zeros
Handle Array(hid_t element, hsize_t n);
struct Member {
    const char* name;
    std::size_t offset;
    hid_t type;
};
Handle Compound(std::size_t size, const std::vector<Member>& members);

Handle CreateGroup(hid_t place, const std::string& name);
Handle OpenGroup(hid_t place, const std::string& name);
Handle CreateData(hid_t place, const char* name, hid_t type, const std::vector<hsize_t>& extent);
// It may grow by rows; so much of it lies together.
Handle CreateChunkedData(hid_t place, const char* name, hid_t type, const std::vector<hsize_t>& extent,
                         const std::vector<hsize_t>& chunk);
Handle OpenData(hid_t place, const char* name);
void WriteAttribute(hid_t place, const char* name, hid_t type, const void* value);
void ReadAttribute(hid_t place, const char* name, hid_t type, void* value);
void WriteTextAttribute(hid_t place, const char* name, const std::string& value);
std::string ReadTextAttribute(hid_t place, const char* name);

// Rows of a data set: all that follows its first dimension.
class Rows {
public:
    Rows(const Handle& data, hid_t type);

    [[nodiscard]] hsize_t count() const { return m_extent.front(); }
    void Write(hsize_t first, hsize_t n, const void* rows);
    void Read(hsize_t first, hsize_t n, void* rows);

private:
    void Select(hsize_t first, hsize_t n);

    hid_t m_data;
    hid_t m_type;
    Handle m_space;
    std::vector<hsize_t> m_extent;
    std::vector<hsize_t> m_selected; // the extent of what is selected
    std::vector<hsize_t> m_start;
    Handle m_memory; // the space of as many rows as were selected last
    hsize_t m_inMemory = 0;
};

} // namespace peers::hdf5
