#include "tools/signal_processing/recordings/printed_number.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace zmxf {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsSign(char c) { return c == '+' || c == '-'; }

constexpr std::size_t kLongestNumber = 400; // the largest double printed without an exponent, and some decimals

// A number in the form that the standard library reads, as it is put together.
class PlainNumber {
public:
    void Add(char c)
    {
        if (m_size < m_text.size()) m_text[m_size++] = c;
    }
    bool Read(double& value) const
    {
        const char* end = m_text.data() + m_size;
        const auto [stop, error] = std::from_chars(m_text.data(), end, value);
        return m_size < m_text.size() && stop == end && error == std::errc();
    }

private:
    std::array<char, kLongestNumber> m_text{};
    std::size_t m_size = 0;
};

// Digits before and after the decimal mark.
std::size_t TakeDigits(std::string_view text, std::size_t at, char decimal, PlainNumber& plain, PrintedNumber& number)
{
    const std::size_t from = at;
    std::size_t mark = std::string_view::npos;
    for (; at < text.size(); ++at) {
        const bool isMark = text[at] == decimal && mark == std::string_view::npos;
        if (!isMark && !IsDigit(text[at])) break;
        if (isMark) mark = at;
        plain.Add(isMark ? '.' : text[at]);
        if (!isMark && (number.significant > 0 || text[at] != '0')) ++number.significant;
    }
    const std::size_t digits = at - from - (mark == std::string_view::npos ? 0 : 1);
    if (mark != std::string_view::npos) number.lastPlace = -static_cast<int>(std::min<std::size_t>(at - mark - 1, 999));
    return digits == 0 ? from : at;
}

std::size_t TakeExponent(std::string_view text, std::size_t at, PlainNumber& plain, PrintedNumber& number)
{
    constexpr int largest = 9999;
    std::size_t next = at;
    if (next < text.size() && std::string_view("eEdD").find(text[next]) != std::string_view::npos) ++next;
    const bool isSigned = next < text.size() && IsSign(text[next]);
    const bool isNegative = isSigned && text[next] == '-';
    if (isSigned) ++next;
    if (next == at || next >= text.size() || !IsDigit(text[next])) return at;
    plain.Add('e');
    if (isNegative) plain.Add('-');
    int exponent = 0;
    for (; next < text.size() && IsDigit(text[next]); ++next) {
        plain.Add(text[next]);
        exponent = std::min(exponent * 10 + (text[next] - '0'), largest);
    }
    number.lastPlace += isNegative ? -exponent : exponent;
    return next;
}

} // namespace

double PrintedNumber::Step() const
{
    const double finest = std::fabs(value) * 1e-15; // what a double tells apart
    return std::max(std::pow(10.0, lastPlace), finest);
}

std::string_view Trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool TakeNumber(std::string_view& text, char decimal, PrintedNumber& number)
{
    std::size_t at = text.find_first_not_of(" \t");
    if (at == std::string_view::npos) return false;
    PlainNumber plain;
    PrintedNumber taken;
    if (IsSign(text[at])) {
        if (text[at] == '-') plain.Add('-');
        ++at;
    }
    const std::size_t after = TakeDigits(text, at, decimal, plain, taken);
    if (after == at) return false;
    at = TakeExponent(text, after, plain, taken);
    if (!plain.Read(taken.value)) return false;
    number = taken;
    text.remove_prefix(at);
    return true;
}

bool IsNumber(std::string_view text, char decimal, PrintedNumber& number)
{
    text = Trimmed(text);
    return TakeNumber(text, decimal, number) && text.empty();
}

double ShortestWithin(double low, double high)
{
    const double middle = (low + high) / 2.0;
    for (int digits = 1; digits < 17; ++digits) {
        std::array<char, 40> text{};
        char* const end =
            std::to_chars(text.data(), text.data() + text.size(), middle, std::chars_format::scientific, digits - 1)
                .ptr;
        double rounded = 0.0;
        (void)std::from_chars(text.data(), end, rounded);
        if (rounded >= low && rounded <= high) return rounded;
    }
    return middle;
}

} // namespace zmxf
