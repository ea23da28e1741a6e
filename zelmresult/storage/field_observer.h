#pragma once

#include <cstdint>
#include <string_view>

namespace ZelmResult {

// Is told of each field while records are read from the files that know the observer: for tools that show a file, and
// for those that judge one. Positions are those of the file after what was read; a field that the file ended in is
// told too.
class FieldObserver {
public:
    FieldObserver() = default;
    FieldObserver(const FieldObserver&) = delete;
    FieldObserver& operator=(const FieldObserver&) = delete;
    virtual ~FieldObserver() = default;

    // A record begins with its version, inside the record that is being read, if any. newest is the version that this
    // library writes.
    virtual void BeginRecord(std::string_view name, std::uint16_t version, std::uint16_t newest,
                             std::int32_t position) = 0;
    virtual void EndRecord() = 0;
    // form is that of docs/format, for what stands in older forms that of the bytes: "u32"; "bytes" for "N bytes".
    virtual void Field(std::string_view name, std::string_view form, std::int32_t position) = 0;
};

} // namespace ZelmResult
