#pragma once

#include "zelmresult/support/wstring.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace zmxf {

// A value of a MAT-file of version 5: a matrix of numbers, a text, or cells and structs of such.
class MatValue {
public:
    using Shape = std::vector<std::size_t>; // a single value without any, a column with one
    // A float by its place, row by row.
    using Singles = std::function<float(std::size_t)>;

    // As UTF-16. A character of two halves becomes U+FFFD: there are programs that fail on a whole file for one.
    static MatValue Text(ZelmResult::wstring_view text);
    static MatValue Number(double number);
    // The functions, and the integers below, stay valid as long as the value. Without imaginary parts they are real.
    static MatValue OfSingles(Shape shape, Singles real, Singles imaginary = {});
    static MatValue OfIntegers(Shape shape, std::span<const std::int32_t> integers);
    static MatValue OfTexts(const Shape& shape, std::span<const ZelmResult::wstring> texts);
    static MatValue Struct(std::vector<std::pair<std::string, MatValue>> fields);
    // Of structs with the same fields; values has those of the first, then those of the next.
    static MatValue StructArray(std::vector<std::string> fields, std::vector<MatValue> values);

    // That the value takes in a file. A variable of more than kMostBytes isn't legal.
    [[nodiscard]] std::uint64_t Bytes(std::string_view name) const;
    void Write(std::ostream& output, std::string_view name) const;

    static constexpr std::uint64_t kMostBytes = 0x7FFFFFFF;
    // Of names: of variables and of fields.
    static constexpr std::size_t kLongestName = 31;

private:
    struct Matrix {
        Singles real;
        Singles imaginary;
    };
    using Integers = std::span<const std::int32_t>;
    struct Members {
        bool areFields = false; // else cells
        std::vector<std::string> names;
        std::vector<MatValue> values;
    };
    using Content = std::variant<ZelmResult::wstring, double, Matrix, Integers, Members>;

    MatValue(Shape shape, Content content);
    [[nodiscard]] std::size_t Count() const;
    [[nodiscard]] std::uint64_t ContentBytes() const;
    [[nodiscard]] std::uint32_t Flags() const;
    void WriteContent(std::ostream& output) const;

    Shape m_shape; // of two dimensions or more
    Content m_content;
};

// What begins each file.
void WriteMatHeader(std::ostream& output);

// Names of fields, each like a text and unlike the others: letters, digits and underlines after a letter.
class MatNames {
public:
    std::string Take(ZelmResult::wstring_view text);

private:
    std::vector<std::string> m_taken;
};

} // namespace zmxf
