#include "tools/zmxf/exporting/hdf5_objects.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/text.h"

#include <algorithm>
#include <cstddef>

namespace zmxf::hdf5 {

namespace {

constexpr unsigned kDeflateLevel = 4;
constexpr std::size_t kLeastPacked = 256; // values; below that, what describes the pieces outweighs what is won
constexpr hsize_t kLongestPiece = 65536;  // of an array along one dimension

// The reason of the operating system where there is one, as "No space left on device"; else that of the library.
std::string ReasonIn(std::string_view description)
{
    constexpr std::string_view message = "error message = '";
    const std::size_t at = description.find(message);
    if (at != std::string_view::npos) description.remove_prefix(at + message.size());
    return Printable(description.substr(0, description.find(at != std::string_view::npos ? '\'' : '\n')));
}

[[noreturn]] void Fail()
{
    std::string reason;
    (void)H5Ewalk2(
        H5E_DEFAULT, H5E_WALK_DOWNWARD,
        [](unsigned, const H5E_error2_t* error, void* innermost) {
            if (error->desc != nullptr) *static_cast<std::string*>(innermost) = ReasonIn(error->desc);
            return herr_t{0};
        },
        &reason);
    throw Failure(reason.empty() ? "the library gives no reason" : reason);
}

void Check(herr_t status)
{
    if (status < 0) Fail();
}

Object Properties(hid_t kind) { return {H5Pcreate(kind), H5Pclose}; }

// For files, groups and arrays: no times, and members and attributes in the order in which they were made.
Object CreationProperties(hid_t kind)
{
    constexpr unsigned inOrder = H5P_CRT_ORDER_TRACKED | H5P_CRT_ORDER_INDEXED;
    constexpr unsigned mostInHeader = 64; // attributes; more of them get a heap of their own
    Object properties = Properties(kind);
    Check(H5Pset_obj_track_times(properties.id(), false));
    Check(H5Pset_attr_creation_order(properties.id(), inOrder));
    Check(H5Pset_attr_phase_change(properties.id(), mostInHeader, mostInHeader / 2));
    if (kind != H5P_DATASET_CREATE) Check(H5Pset_link_creation_order(properties.id(), inOrder));
    return properties;
}

Object SpaceOf(const Shape& shape)
{
    return shape.empty() ? Object(H5Screate(H5S_SCALAR), H5Sclose)
                         : Object(H5Screate_simple(static_cast<int>(shape.size()), shape.data(), nullptr), H5Sclose);
}

Object TextType(std::size_t size = H5T_VARIABLE)
{
    Object type(H5Tcopy(H5T_C_S1), H5Tclose);
    Check(H5Tset_size(type.id(), size));
    if (size == H5T_VARIABLE) Check(H5Tset_cset(type.id(), H5T_CSET_UTF8));
    return type;
}

void SetAttribute(const Object& object, const char* name, hid_t stored, hid_t given, const Shape& shape,
                  const void* values)
{
    const Object space = SpaceOf(shape);
    const Object attribute(H5Acreate2(object.id(), name, stored, space.id(), H5P_DEFAULT, H5P_DEFAULT), H5Aclose);
    Check(H5Awrite(attribute.id(), given, values));
}

// Texts of a fixed length, as readers expect them of dimensions.
void SetFixedText(const Object& object, const char* name, const std::string& text)
{
    const Object type = TextType(text.size() + 1);
    SetAttribute(object, name, type.id(), type.id(), {}, text.c_str());
}

Object MakeArray(const Object& parent, const std::string& name, hid_t type, const Shape& shape,
                 const Object& properties)
{
    const Object space = SpaceOf(shape);
    return {H5Dcreate2(parent.id(), name.c_str(), type, space.id(), H5P_DEFAULT, properties.id(), H5P_DEFAULT),
            H5Dclose};
}

Object WriteArray(const Object& parent, const std::string& name, hid_t stored, hid_t given, const Shape& shape,
                  const void* values)
{
    Object array = MakeArray(parent, name, stored, shape, CreationProperties(H5P_DATASET_CREATE));
    const bool isEmpty = std::find(shape.begin(), shape.end(), hsize_t{0}) != shape.end();
    if (!isEmpty) Check(H5Dwrite(array.id(), given, H5S_ALL, H5S_ALL, H5P_DEFAULT, values));
    return array;
}

hobj_ref_t ReferenceTo(const Object& group, const std::string& name)
{
    hobj_ref_t reference{};
    Check(H5Rcreate(&reference, group.id(), name.c_str(), H5R_OBJECT, -1));
    return reference;
}

} // namespace

Object::Object(hid_t id, Close close) : m_id(id), m_close(close)
{
    if (m_id < 0) Fail();
}

Object::~Object()
{
    if (m_id >= 0) (void)m_close(m_id);
}

void Object::CloseNow() { Check(m_close(std::exchange(m_id, H5I_INVALID_HID))); }

Object MakeFile(const std::string& path)
{
    // After a failed write the library would try again at the end of the program.
    (void)H5dont_atexit();
    (void)H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
    const Object access = Properties(H5P_FILE_ACCESS);
    Check(H5Pset_libver_bounds(access.id(), H5F_LIBVER_V18, H5F_LIBVER_V18));
    Check(H5Pset_file_locking(access.id(), false, true)); // nobody else knows the file, and some file systems have none
    const Object creation = CreationProperties(H5P_FILE_CREATE);
    return {H5Fcreate(path.c_str(), H5F_ACC_TRUNC, creation.id(), access.id()), H5Fclose};
}

void Finish(Object file)
{
    Check(H5Fflush(file.id(), H5F_SCOPE_GLOBAL));
    file.CloseNow();
}

Object MakeGroup(const Object& parent, const std::string& name)
{
    const Object creation = CreationProperties(H5P_GROUP_CREATE);
    return {H5Gcreate2(parent.id(), name.c_str(), H5P_DEFAULT, creation.id(), H5P_DEFAULT), H5Gclose};
}

void SetText(const Object& object, const char* name, const std::string& text)
{
    const Object type = TextType();
    const char* const bytes = text.c_str();
    SetAttribute(object, name, type.id(), type.id(), {}, &bytes);
}

void SetNumber(const Object& object, const char* name, std::int64_t number)
{
    SetAttribute(object, name, H5T_STD_I64LE, H5T_NATIVE_INT64, {}, &number);
}

void SetNumber(const Object& object, const char* name, double number)
{
    SetAttribute(object, name, H5T_IEEE_F64LE, H5T_NATIVE_DOUBLE, {}, &number);
}

Object MakeFloats(const Object& parent, const std::string& name, const Shape& shape, Packing packing)
{
    const Object creation = CreationProperties(H5P_DATASET_CREATE);
    Shape piece(shape.size(), 1);
    std::size_t values = 1;
    for (const hsize_t size : shape) values *= static_cast<std::size_t>(size);
    const bool isPacked = packing == Packing::Deflate && values >= kLeastPacked;
    if ((shape.size() > 1 && values != 0) || isPacked) {
        piece.back() = shape.size() > 1 ? shape.back() : std::min(shape.back(), kLongestPiece);
        Check(H5Pset_chunk(creation.id(), static_cast<int>(piece.size()), piece.data()));
    }
    if (isPacked) {
        Check(H5Pset_shuffle(creation.id()));
        Check(H5Pset_deflate(creation.id(), kDeflateLevel));
    }
    return MakeArray(parent, name, H5T_IEEE_F32LE, shape, creation);
}

void WriteRows(const Object& dataset, const Shape& shape,
               const std::function<void(std::size_t first, std::span<float> row)>& fill)
{
    std::vector<float> row(shape.empty() ? 1 : static_cast<std::size_t>(shape.back()));
    std::size_t rows = row.empty() ? 0 : 1;
    for (std::size_t i = 0; i + 1 < shape.size(); ++i) rows *= static_cast<std::size_t>(shape[i]);
    const Object space = SpaceOf(shape);
    const Object memory = SpaceOf(shape.empty() ? Shape{} : Shape{shape.back()});
    Shape start(shape.size(), 0);
    Shape count(shape.size(), 1);
    if (!shape.empty()) count.back() = shape.back();
    for (std::size_t i = 0; i < rows; ++i) {
        fill(i * row.size(), row);
        if (rows > 1)
            Check(H5Sselect_hyperslab(space.id(), H5S_SELECT_SET, start.data(), nullptr, count.data(), nullptr));
        Check(H5Dwrite(dataset.id(), H5T_NATIVE_FLOAT, memory.id(), space.id(), H5P_DEFAULT, row.data()));
        for (std::size_t d = shape.size(); d-- > 1 && ++start[d - 1] == shape[d - 1];) start[d - 1] = 0;
    }
}

Object WriteNumbers(const Object& parent, const std::string& name, const Shape& shape,
                    const std::vector<std::int32_t>& numbers)
{
    return WriteArray(parent, name, H5T_STD_I32LE, H5T_NATIVE_INT32, shape, numbers.data());
}

Object WriteTexts(const Object& parent, const std::string& name, const Shape& shape,
                  const std::vector<std::string>& texts)
{
    std::vector<const char*> bytes(texts.size());
    std::transform(texts.begin(), texts.end(), bytes.begin(), [](const std::string& text) { return text.c_str(); });
    const Object type = TextType();
    return WriteArray(parent, name, type.id(), type.id(), shape, bytes.data());
}

Scale::Scale(const Object& group, const std::string& name, const Object& array)
    : m_name(name), m_reference(ReferenceTo(group, name))
{
    SetFixedText(array, "CLASS", "DIMENSION_SCALE");
    SetFixedText(array, "NAME", name);
}

Scale::Scale(const Object& group, const std::string& name, hsize_t size) : m_name(name)
{
    // By these words, and a size of ten digits, netCDF knows a dimension that has no variable.
    constexpr const char* bare = "This is a netCDF dimension but not a netCDF variable.{:10}";
    const Object array = MakeArray(group, name, H5T_IEEE_F32BE, {size}, CreationProperties(H5P_DATASET_CREATE));
    SetFixedText(array, "CLASS", "DIMENSION_SCALE");
    SetFixedText(array, "NAME", fmt::format(bare, size));
    m_reference = ReferenceTo(group, name);
}

void Scale::Attach(const Object& group, const std::string& name, const Object& array, const std::vector<Scale*>& scales)
{
    if (scales.empty()) return;
    const hobj_ref_t reference = ReferenceTo(group, name);
    std::vector<hvl_t> list;
    for (std::size_t i = 0; i < scales.size(); ++i) {
        list.push_back({1, &scales[i]->m_reference});
        scales[i]->m_users.push_back({reference, static_cast<std::int32_t>(i)});
    }
    const Object type(H5Tvlen_create(H5T_STD_REF_OBJ), H5Tclose);
    SetAttribute(array, "DIMENSION_LIST", type.id(), type.id(), {scales.size()}, list.data());
}

void Scale::NoteUsers(const Object& group) const
{
    if (m_users.empty()) return;
    const auto typeOf = [](std::size_t size, std::size_t dimensionAt, hid_t number) {
        Object type(H5Tcreate(H5T_COMPOUND, size), H5Tclose);
        Check(H5Tinsert(type.id(), "dataset", 0, H5T_STD_REF_OBJ));
        Check(H5Tinsert(type.id(), "dimension", dimensionAt, number));
        return type;
    };
    // Stored without the gap that the structure has at its end.
    const Object stored = typeOf(sizeof(hobj_ref_t) + sizeof(std::int32_t), sizeof(hobj_ref_t), H5T_STD_I32LE);
    const Object given = typeOf(sizeof(User), offsetof(User, dimension), H5T_NATIVE_INT32);
    const Object dataset(H5Dopen2(group.id(), m_name.c_str(), H5P_DEFAULT), H5Dclose);
    SetAttribute(dataset, "REFERENCE_LIST", stored.id(), given.id(), {m_users.size()}, m_users.data());
}

} // namespace zmxf::hdf5
