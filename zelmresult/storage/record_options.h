#pragma once

#include "zelmresult/support/packed_texts.h"

#include <concepts>
#include <cstdint>
#include <type_traits>

// What a record says of a field besides its name and place; see record_io.h.

namespace ZelmResult {

// ---- What can be said of a field besides its name and place ----

struct newest { // the version that is written
    std::uint16_t value;
};
struct first { // the lowest version that holds any field; below it the record ends with success
    std::uint16_t value;
};
struct since { // the first version that holds the field
    std::uint16_t value;
};
struct until { // the last version that holds it
    std::uint16_t value;
};
template <class T>
struct absent { // what a read sets when the stored version doesn't hold the field; without it the field isn't changed
    T value;
};
template <class T>
absent(T) -> absent<T>;
struct only { // a field that is present under a condition of the object itself
    const char* when;
    bool condition;
};
struct shortBefore { // a time that older versions hold as unsigned 32 bits
    std::uint16_t value;
};

namespace detail {

inline constexpr const char* kNoCondition = "";

struct FieldOptions {
    std::uint16_t since = 0;
    std::uint16_t until = 0xFFFF;
    std::uint16_t shortBefore = 0;
    const char* when = kNoCondition;
    bool condition = true;

    void take(struct since option) { since = option.value; }
    void take(struct until option) { until = option.value; }
    void take(struct shortBefore option) { shortBefore = option.value; }
    void take(only option) { when = option.when, condition = option.condition; }
    template <class T>
    void take(const absent<T>& /*option*/)
    {
    }

    template <class... Options>
    explicit FieldOptions(const Options&... options)
    {
        (take(options), ...);
    }
    [[nodiscard]] bool HeldBy(std::uint16_t version) const { return version >= since && version <= until && condition; }
};

template <class T, class Option>
void SetAbsent(T& /*value*/, const Option& /*option*/)
{
}
template <class T, class A>
void SetAbsent(T& value, const absent<A>& option)
{
    value = T(option.value);
}
template <std::size_t count, class A>
void SetAbsent(PackedText<count>& value, const absent<A>& option)
{
    value = option.value;
}

// The words of a field list that only readers use, for the other directions.
struct NoReaderWords {
    template <class Self, class Accept>
    void accepts(const char* /*name*/, Self& /*object*/, Accept /*accept*/)
    {
    }
    template <class Self, class Use>
    void onRead(Self& /*object*/, Use /*use*/)
    {
    }
    template <class T>
    void clears(const T& /*value*/)
    {
    }
};

// The words that only writers use.
struct NoWriterWords {
    template <class Self, class IsLost>
    void loses(const Self& /*object*/, IsLost /*isLost*/)
    {
    }
    template <class MakeText>
    void dump(MakeText /*makeText*/)
    {
    }
    template <class Self, class Write>
    void dumpLines(Self& /*object*/, Write /*write*/)
    {
    }
};

// A value as the bytes that a reader fills, and those that a writer takes.
template <class T>
std::uint8_t* BytesOf(T& value)
{
    return reinterpret_cast<std::uint8_t*>(&value);
}
template <class T>
const std::uint8_t* BytesOf(const T& value)
{
    return reinterpret_cast<const std::uint8_t*>(&value);
}

template <class T>
concept FourBytes = sizeof(T) == 4 && (std::is_enum_v<T> || std::integral<T>);

} // namespace detail

} // namespace ZelmResult
