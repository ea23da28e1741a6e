#pragma once

#include <cstdint>
#include <string_view>

namespace ZelmResult {

// Gets a call for each field while records are read from the files that know the observer: for tools that show or check
// a file. Positions are those of the file after the read; a field in which the file ended is reported too.
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
    // form is that of docs/format; for older forms that of the bytes: "u32"; "bytes" for "N bytes".
    virtual void Field(std::string_view name, std::string_view form, std::int32_t position) = 0;
};

} // namespace ZelmResult
