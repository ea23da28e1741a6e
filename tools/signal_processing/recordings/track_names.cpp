#include "tools/signal_processing/recordings/track_names.h"

#include <array>
#include <charconv>
#include <utility>

namespace zmxf {

namespace {

// What stands between the first tag of that name and its end, and the text moves after it. Empty when there is none.
std::string_view Next(std::string_view& xml, const std::string& name)
{
    const std::string begin = "<" + name + ">";
    const std::string end = "</" + name + ">";
    const std::size_t from = xml.find(begin);
    const std::size_t to = from == std::string_view::npos ? from : xml.find(end, from);
    if (to == std::string_view::npos) {
        xml = {};
        return {};
    }
    const std::string_view inside = xml.substr(from + begin.size(), to - from - begin.size());
    xml.remove_prefix(to + end.size());
    return inside;
}

std::string_view Inside(std::string_view xml, const std::string& name) { return Next(xml, name); }

std::string Unescaped(std::string_view text)
{
    constexpr std::array<std::pair<std::string_view, char>, 5> entities = {
        {{"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}, {"&amp;", '&'}}};
    std::string plain;
    while (!text.empty()) {
        std::size_t length = 1;
        char c = text.front();
        for (const auto& [entity, meaning] : entities)
            if (text.starts_with(entity)) {
                length = entity.size();
                c = meaning;
                break;
            }
        plain += c;
        text.remove_prefix(length);
    }
    return plain;
}

} // namespace

void NameChannels(std::string_view xml, std::span<ChannelFacts> channels)
{
    for (std::string_view track = Next(xml, "TRACK"); !track.empty(); track = Next(xml, "TRACK")) {
        std::string_view number = Inside(track, "INTERLEAVE_INDEX");
        if (number.empty()) number = Inside(track, "CHANNEL_INDEX");
        std::size_t channel = 0;
        (void)std::from_chars(number.data(), number.data() + number.size(), channel);
        if (channel >= 1 && channel <= channels.size()) channels[channel - 1].name = Unescaped(Inside(track, "NAME"));
    }
}

} // namespace zmxf
