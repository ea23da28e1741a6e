#pragma once

#include <hdf5.h>

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// HDF5 as the exporter uses it. Objects close themselves, no times are stored, and what fails throws Failure with the
// reason; the library prints nothing by itself.

namespace zmxf::hdf5 {

// An identifier of the library.
class Object {
public:
    using Close = herr_t (*)(hid_t);

    Object(hid_t id, Close close); // throws Failure for the identifier of a failure
    Object(Object&& other) noexcept : m_id(std::exchange(other.m_id, H5I_INVALID_HID)), m_close(other.m_close) {}
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    Object& operator=(Object&&) = delete;
    ~Object();
    [[nodiscard]] hid_t id() const { return m_id; }
    void CloseNow(); // throws Failure

private:
    hid_t m_id;
    Close m_close;
};

using Shape = std::vector<hsize_t>; // empty for one value

// Makes the file anew, in a layout that doesn't depend on the version of the library.
Object MakeFile(const std::string& path);
// Writes all that the library still holds back, and closes the file, of which no other object is left.
void Finish(Object file);
Object MakeGroup(const Object& parent, const std::string& name);

// Texts are UTF-8 without a NUL.
void SetText(const Object& object, const char* name, const std::string& text);
void SetNumber(const Object& object, const char* name, std::int64_t number);
void SetNumber(const Object& object, const char* name, double number);

enum class Packing : std::uint8_t { None, Deflate };
// In pieces as long as the last dimension: of a waterfall, one per slice.
Object MakeFloats(const Object& parent, const std::string& name, const Shape& shape, Packing packing);
// Asks for one row after the other; a row is what the last dimension is long.
void WriteRows(const Object& dataset, const Shape& shape,
               const std::function<void(std::size_t first, std::span<float> row)>& fill);
Object WriteNumbers(const Object& parent, const std::string& name, const Shape& shape,
                    const std::vector<std::int32_t>& numbers);
Object WriteTexts(const Object& parent, const std::string& name, const Shape& shape,
                  const std::vector<std::string>& texts);

// A dimension that arrays of a group share: an array along it, or an array without values where there is none.
class Scale {
public:
    // Takes the array as the dimension of its name.
    Scale(const Object& group, const std::string& name, const Object& array);
    // Makes an array without values.
    Scale(const Object& group, const std::string& name, hsize_t size);
    // Says on an array of the group what its dimensions are.
    static void Attach(const Object& group, const std::string& name, const Object& array,
                       const std::vector<Scale*>& scales);
    // Says on the dimension which arrays it belongs to; once, after all of them.
    void NoteUsers(const Object& group) const;

private:
    struct User {
        hobj_ref_t array;
        std::int32_t dimension;
    };

    std::string m_name;
    hobj_ref_t m_reference;
    std::vector<User> m_users;
};

} // namespace zmxf::hdf5
