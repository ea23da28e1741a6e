#pragma once

#include "zelmresult/reading/listed_result.h"
#include "zelmresult/results/kinds.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// Which results of a document a user wants.

namespace zmxf {

// Numbers of results, both ends included.
struct NumberRange {
    std::size_t first = 0;
    std::size_t last = 0;

    // "3" or "7-9"; nothing for another text.
    static std::optional<NumberRange> Parse(std::string_view text);
};

// What people call the result, or its process type.
using KindChoice = std::variant<ZelmResult::ResultGroup, std::uint32_t>;
// "frf", "FRF" or "31"; nothing for another text.
std::optional<KindChoice> ParseKind(std::string_view text);

ZelmResult::ResultGroup GroupOf(const ZelmResult::CResultHeader& header);
const char* KindName(const ZelmResult::CResultHeader& header);

// A result is selected when each list that isn't empty holds something that describes it.
//
// Names (of channels, of references, of the process) are in UTF-8. One that is the name of a result of the document
// means that name alone; any other is a pattern (see MatchesGlob), and "#2" is a channel's number. So is "2" where no
// name is like it.
struct Selection {
    std::vector<NumberRange> results;
    std::vector<std::string> channels;
    std::vector<std::string> references;
    std::vector<KindChoice> kinds;
    std::vector<std::string> names;
    std::vector<std::int32_t> systems;

    [[nodiscard]] bool IsMade() const;
    // The numbers of the selected results, in rising order.
    [[nodiscard]] std::vector<std::size_t> Of(std::span<const ZelmResult::ListedResult> all) const;
    // The same. Throws Failure when there are none, and for a number that the document doesn't hold.
    [[nodiscard]] std::vector<std::size_t> Require(const std::string& path,
                                                   std::span<const ZelmResult::ListedResult> all) const;
};

// What could have been selected, for one whose selection found nothing: the values of the options that were used.
class Selectable {
public:
    explicit Selectable(const Selection& selection) : m_selection(selection) {}
    void Add(std::span<const ZelmResult::ListedResult> all);
    // "there are channels Channel 1, Channel 2; kinds level, octave"
    [[nodiscard]] std::string Text() const;

private:
    // The distinct ones, in the order in which they came.
    class Values {
    public:
        void Add(std::string value);
        [[nodiscard]] std::string Text() const;

    private:
        std::set<std::string> m_known;
        std::vector<std::string> m_shown;
    };

    const Selection& m_selection;
    std::size_t m_results = 0; // of the longest document
    Values m_channels, m_references, m_kinds, m_names, m_systems;
};

// "x.zmxf has no result 60: it holds 55 results, counted from 0"
[[noreturn]] void FailForNumber(const std::string& path, std::size_t number, std::size_t count);

} // namespace zmxf
