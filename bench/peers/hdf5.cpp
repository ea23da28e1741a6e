#include "bench/peers/hdf5.h"

namespace peers::hdf5 {

namespace {

Handle Access(Where where)
{
    constexpr std::size_t kGrowth = 34U << 20U; // of a file in memory: room for a whole waterfall
    Handle access(::H5Pcreate(H5P_FILE_ACCESS), ::H5Pclose);
    Do(::H5Pset_libver_bounds(access, H5F_LIBVER_LATEST, H5F_LIBVER_LATEST));
    if (where == Where::Memory) Do(::H5Pset_fapl_core(access, kGrowth, false));
    return access;
}

// All of the data is written, so nothing is written before it.
Handle DataOptions()
{
    Handle options(::H5Pcreate(H5P_DATASET_CREATE), ::H5Pclose);
    Do(::H5Pset_fill_time(options, H5D_FILL_TIME_NEVER));
    return options;
}

} // namespace

Handle CreateFile(const Path& path, Where where)
{
    return {::H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, Access(where)), ::H5Fclose};
}

Handle OpenFile(const Path& path) { return {::H5Fopen(path.c_str(), H5F_ACC_RDONLY, Access(Where::Disk)), ::H5Fclose}; }

Handle Space(const std::vector<hsize_t>& extent)
{
    if (extent.empty()) return {::H5Screate(H5S_SCALAR), ::H5Sclose};
    return {::H5Screate_simple(static_cast<int>(extent.size()), extent.data(), nullptr), ::H5Sclose};
}

Handle Text(std::size_t size)
{
    Handle type(::H5Tcopy(H5T_C_S1), ::H5Tclose);
    Do(::H5Tset_size(type, size));
    Do(::H5Tset_strpad(type, H5T_STR_NULLPAD));
    Do(::H5Tset_cset(type, H5T_CSET_UTF8));
    return type;
}

Handle Array(hid_t element, hsize_t n) { return {::H5Tarray_create2(element, 1, &n), ::H5Tclose}; }

Handle Compound(std::size_t size, const std::vector<Member>& members)
{
    Handle type(::H5Tcreate(H5T_COMPOUND, size), ::H5Tclose);
    for (const Member& member : members) Do(::H5Tinsert(type, member.name, member.offset, member.type));
    return type;
}

Handle CreateGroup(hid_t place, const std::string& name)
{
    return {::H5Gcreate2(place, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), ::H5Gclose};
}

Handle OpenGroup(hid_t place, const std::string& name)
{
    return {::H5Gopen2(place, name.c_str(), H5P_DEFAULT), ::H5Gclose};
}

Handle CreateData(hid_t place, const char* name, hid_t type, const std::vector<hsize_t>& extent)
{
    return {::H5Dcreate2(place, name, type, Space(extent), H5P_DEFAULT, DataOptions(), H5P_DEFAULT), ::H5Dclose};
}

Handle CreateChunkedData(hid_t place, const char* name, hid_t type, const std::vector<hsize_t>& extent,
                         const std::vector<hsize_t>& chunk)
{
    std::vector<hsize_t> most = extent;
    most.front() = H5S_UNLIMITED;
    const int rank = static_cast<int>(extent.size());
    const Handle space(::H5Screate_simple(rank, extent.data(), most.data()), ::H5Sclose);
    const Handle options = DataOptions();
    Do(::H5Pset_chunk(options, rank, chunk.data()));
    return {::H5Dcreate2(place, name, type, space, H5P_DEFAULT, options, H5P_DEFAULT), ::H5Dclose};
}

Handle OpenData(hid_t place, const char* name) { return {::H5Dopen2(place, name, H5P_DEFAULT), ::H5Dclose}; }

void WriteAttribute(hid_t place, const char* name, hid_t type, const void* value)
{
    const Handle attribute(::H5Acreate2(place, name, type, Space({}), H5P_DEFAULT, H5P_DEFAULT), ::H5Aclose);
    Do(::H5Awrite(attribute, type, value));
}

void ReadAttribute(hid_t place, const char* name, hid_t type, void* value)
{
    const Handle attribute(::H5Aopen(place, name, H5P_DEFAULT), ::H5Aclose);
    Do(::H5Aread(attribute, type, value));
}

void WriteTextAttribute(hid_t place, const char* name, const std::string& value)
{
    WriteAttribute(place, name, Text(value.size() + 1), value.c_str());
}

std::string ReadTextAttribute(hid_t place, const char* name)
{
    const Handle attribute(::H5Aopen(place, name, H5P_DEFAULT), ::H5Aclose);
    const Handle type(::H5Aget_type(attribute), ::H5Tclose);
    std::string value(::H5Tget_size(type), '\0');
    Do(::H5Aread(attribute, type, value.data()));
    value.resize(value.find('\0'));
    return value;
}

Rows::Rows(const Handle& data, hid_t type)
    : m_data(data), m_type(type), m_space(::H5Dget_space(data), ::H5Sclose), m_memory(Space({}))
{
    m_extent.resize(static_cast<std::size_t>(::H5Sget_simple_extent_ndims(m_space)));
    m_start.resize(m_extent.size());
    Require(::H5Sget_simple_extent_dims(m_space, m_extent.data(), nullptr) >= 0, "a call of HDF5");
    m_selected = m_extent;
}

void Rows::Write(hsize_t first, hsize_t n, const void* rows)
{
    Select(first, n);
    Do(::H5Dwrite(m_data, m_type, m_memory, m_space, H5P_DEFAULT, rows));
}

void Rows::Read(hsize_t first, hsize_t n, void* rows)
{
    Select(first, n);
    Do(::H5Dread(m_data, m_type, m_memory, m_space, H5P_DEFAULT, rows));
}

void Rows::Select(hsize_t first, hsize_t n)
{
    m_start.front() = first;
    m_selected.front() = n;
    Do(::H5Sselect_hyperslab(m_space, H5S_SELECT_SET, m_start.data(), nullptr, m_selected.data(), nullptr));
    if (n != m_inMemory) m_memory = Space(m_selected);
    m_inMemory = n;
}

} // namespace peers::hdf5
