#include "tools/zmxf/viewer/page_writing.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/text.h"

#include <algorithm>
#include <array>
#include <span>

namespace zmxf {

namespace {

// Where the page has its place for documents.
constexpr std::string_view kPlace = "<!-- documents -->";

void WriteBase64(std::ostream& out, std::span<const char> bytes)
{
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t three = 0;
        for (std::size_t k = 0; k < 3; ++k)
            three = three << 8U | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0U);
        std::array<char, 4> four{};
        for (std::size_t k = 0; k < 4; ++k) four[k] = k <= count ? digits[three >> (18 - 6 * k) & 63U] : '=';
        out.write(four.data(), four.size());
    }
}

// For the value of an attribute. Of control characters and broken text nothing is left that could end it.
std::string Attribute(const std::string& text)
{
    std::string escaped;
    for (const char c : Printable(text)) {
        switch (c) {
        case '&': escaped += "&amp;"; break;
        case '<': escaped += "&lt;"; break;
        case '>': escaped += "&gt;"; break;
        case '"': escaped += "&quot;"; break;
        default: escaped += c;
        }
    }
    return escaped;
}

} // namespace

void WritePage(std::ostream& out, std::string_view page, const std::vector<CarriedDocument>& documents)
{
    const std::size_t place = page.find(kPlace);
    if (place == std::string_view::npos) throw Failure("the page that was built in has no place for documents");
    out << page.substr(0, place);
    for (const CarriedDocument& document : documents) {
        out << R"(<script type="application/x-zmxf" data-name=")" << Attribute(document.name) << R"(" data-note=")"
            << Attribute(document.note) << R"(">)";
        WriteBase64(out, document.bytes);
        out << "</script>\n";
    }
    out << page.substr(place + kPlace.size());
}

} // namespace zmxf
