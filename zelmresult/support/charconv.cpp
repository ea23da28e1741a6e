#include "zelmresult/support/charconv.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>
#include <type_traits>

namespace ZelmResult {

namespace {

#ifdef __cpp_lib_to_chars

template <class Number>
char* ShortestDigits(char* first, char* last, Number value)
{
    return std::to_chars(first, last, value).ptr;
}

template <class Number>
std::size_t Read(std::string_view text, Number& value)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() ? static_cast<std::size_t>(end - text.data()) : 0;
}

#else

// Such standard libraries come with a C library whose numbers have a point in each locale.

template <class Number>
Number Parse(const char* text, char** end)
{
    if constexpr (std::is_same_v<Number, float>)
        return std::strtof(text, end);
    else
        return std::strtod(text, end);
}

char* Print(char* first, char* last, const char* form, int precision, double value)
{
    return first + std::snprintf(first, static_cast<std::size_t>(last - first), form, precision, value);
}

// As few digits as give the number back; with an exponent where that is shorter.
template <class Number>
char* ShortestDigits(char* first, char* last, Number value)
{
    const auto exact = static_cast<double>(value);
    constexpr int kMostDigits = 17;
    constexpr int kLargestInDigits = 21; // beyond these powers of ten an exponent is always shorter
    constexpr int kLeastInDigits = -5;
    int decimals = 0;
    char* end = Print(first, last, "%.*e", decimals, exact);
    while (std::isfinite(value) && decimals < kMostDigits - 1 && Parse<Number>(first, nullptr) != value)
        end = Print(first, last, "%.*e", ++decimals, exact);
    if (!std::isfinite(value)) return end;
    const std::string scientific(first, end);
    const int exponent = std::atoi(scientific.c_str() + scientific.find('e') + 1);
    if (exponent > kLargestInDigits || exponent < kLeastInDigits) return end;
    end = Print(first, last, "%.*f", std::max(decimals - exponent, 0), exact);
    if (end - first > static_cast<std::ptrdiff_t>(scientific.size())) end = Print(first, last, "%.*e", decimals, exact);
    return end;
}

// No blanks, plus signs or hexadecimal digits, which strtod takes too.
template <class Number>
std::size_t Read(std::string_view text, Number& value)
{
    const std::size_t sign = text.starts_with('-') ? 1 : 0;
    const std::string_view digits = text.substr(sign);
    if (digits.empty() || digits.front() == '+' || digits.front() == ' ' ||
        (digits.front() >= '\t' && digits.front() <= '\r'))
        return 0;
    const bool isHexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
    const std::string copy(text.substr(0, isHexadecimal ? sign + 1 : text.size()));
    char* end = nullptr;
    errno = 0;
    const Number read = Parse<Number>(copy.c_str(), &end);
    const bool isInRange = errno != ERANGE || (read != Number{0} && std::isfinite(read));
    if (end == copy.c_str() || !isInRange) return 0;
    value = read;
    return static_cast<std::size_t>(end - copy.c_str());
}

#endif

} // namespace

char* ToChars(char* first, char* last, double value) { return ShortestDigits(first, last, value); }
char* ToChars(char* first, char* last, float value) { return ShortestDigits(first, last, value); }

char* ToChars(char* first, char* last, double value, std::chars_format format, int precision)
{
#ifdef __cpp_lib_to_chars
    return std::to_chars(first, last, value, format, precision).ptr;
#else
    if (format == std::chars_format::fixed) return Print(first, last, "%.*f", precision, value);
    return Print(first, last, format == std::chars_format::scientific ? "%.*e" : "%.*g", precision, value);
#endif
}

std::size_t FromChars(std::string_view text, double& value) { return Read(text, value); }
std::size_t FromChars(std::string_view text, float& value) { return Read(text, value); }

} // namespace ZelmResult
