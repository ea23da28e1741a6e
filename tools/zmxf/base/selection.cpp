#include "tools/zmxf/base/selection.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/glob.h"
#include "tools/zmxf/base/text.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <cctype>
#include <fmt/format.h>
#include <functional>

namespace zmxf {

namespace {

using ZelmResult::CResultHeader;
using ZelmResult::ListedResult;
using ZelmResult::ResultKind;
using ZelmResult::wstring;

using Listed = std::span<const ListedResult>;

// A mark per result.
using Marks = std::vector<bool>;

void Mark(Marks& marks, Listed all, const std::function<bool(const ListedResult&)>& isMeant)
{
    for (std::size_t i = 0; i < all.size(); ++i) marks[i] = marks[i] || isMeant(all[i]);
}

// The name that an option is about, and the number of the channel that has it.
using NameOf = wstring (CResultHeader::*)() const;
using NumberOf = std::int32_t (CResultHeader::*)() const;

// numberOf is null for names that aren't those of channels.
void MarkNamed(Marks& marks, Listed all, const std::string& text, NameOf nameOf, NumberOf numberOf)
{
    const wstring pattern = ZelmResult::FromUtf8(text);
    const auto name = [nameOf](const ListedResult& listed) { return (*listed.header.*nameOf)(); };
    const auto isExact = [&](const ListedResult& listed) { return name(listed) == pattern; };
    if (std::any_of(all.begin(), all.end(), isExact)) {
        Mark(marks, all, isExact);
        return;
    }
    const bool isHashed = text.starts_with('#');
    const auto number = numberOf != nullptr ? WholeNumber(text.substr(isHashed ? 1 : 0)) : std::nullopt;
    Mark(marks, all, [&](const ListedResult& listed) {
        return number ? (*listed.header.*numberOf)() == static_cast<std::int32_t>(*number)
                      : MatchesGlob(pattern, name(listed));
    });
}

bool IsOfKind(const KindChoice& kind, const CResultHeader& header)
{
    const auto* group = std::get_if<ZelmResult::ResultGroup>(&kind);
    return group != nullptr ? GroupOf(header) == *group : header.GetProcessType() == std::get<std::uint32_t>(kind);
}

// Takes the marks from those results that none of the choices means. Without choices all stay.
template <class Choice, class MarkOne>
void Narrow(Marks& selected, const std::vector<Choice>& choices, const MarkOne& markOne)
{
    if (choices.empty()) return;
    Marks meant(selected.size());
    for (const Choice& choice : choices) markOne(meant, choice);
    for (std::size_t i = 0; i < selected.size(); ++i) selected[i] = selected[i] && meant[i];
}

} // namespace

std::optional<NumberRange> NumberRange::Parse(std::string_view text)
{
    const std::size_t dash = text.find('-');
    const auto first = WholeNumber(text.substr(0, dash));
    const auto last = dash == std::string_view::npos ? first : WholeNumber(text.substr(dash + 1));
    if (!first || !last || *last < *first) return std::nullopt;
    return NumberRange{*first, *last};
}

std::optional<KindChoice> ParseKind(std::string_view text)
{
    if (const auto type = WholeNumber(text)) return *type;
    std::string word(text);
    for (char& c : word) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const auto names = ResultKind::GroupNames();
    const auto found = std::find(names.begin(), names.end(), word);
    if (found == names.end()) return std::nullopt;
    return static_cast<ZelmResult::ResultGroup>(found - names.begin());
}

ZelmResult::ResultGroup GroupOf(const CResultHeader& header)
{
    return ResultKind::Of(header.GetProcessType()).GroupAt(static_cast<int>(header.GetWaterfallDimension()));
}

const char* KindName(const CResultHeader& header) { return ResultKind::NameOf(GroupOf(header)); }

bool Selection::IsMade() const
{
    return !results.empty() || !channels.empty() || !references.empty() || !kinds.empty() || !names.empty() ||
           !systems.empty();
}

std::vector<std::size_t> Selection::Of(Listed all) const
{
    Marks selected(all.size(), true);
    Narrow(selected, results, [&](Marks& marks, const NumberRange& range) {
        for (std::size_t i = range.first; i <= range.last && i < all.size(); ++i) marks[i] = true;
    });
    Narrow(selected, channels, [&](Marks& marks, const std::string& text) {
        MarkNamed(marks, all, text, &CResultHeader::responseName, &CResultHeader::GetNumReponse);
    });
    Narrow(selected, references, [&](Marks& marks, const std::string& text) {
        MarkNamed(marks, all, text, &CResultHeader::referenceName, &CResultHeader::GetNumReference);
    });
    Narrow(selected, kinds, [&](Marks& marks, const KindChoice& kind) {
        Mark(marks, all, [&kind](const ListedResult& listed) { return IsOfKind(kind, *listed.header); });
    });
    Narrow(selected, names, [&](Marks& marks, const std::string& text) {
        MarkNamed(marks, all, text, &CResultHeader::processCaption, nullptr);
    });
    Narrow(selected, systems, [&](Marks& marks, std::int32_t system) {
        Mark(marks, all, [system](const ListedResult& listed) { return listed.system == system; });
    });
    std::vector<std::size_t> numbers;
    for (std::size_t i = 0; i < selected.size(); ++i)
        if (selected[i]) numbers.push_back(i);
    return numbers;
}

std::vector<std::size_t> Selection::Require(const std::string& path, Listed all) const
{
    for (const NumberRange& range : results)
        if (range.last >= all.size()) FailForNumber(path, range.last, all.size());
    std::vector<std::size_t> numbers = Of(all);
    if (!numbers.empty()) return numbers;
    Selectable selectable(*this);
    selectable.Add(all);
    throw Failure("{} has no such result; {}", Printable(path), selectable.Text());
}

void Selectable::Values::Add(std::string value)
{
    constexpr std::size_t most = 12;
    if (value.empty() || !m_known.insert(value).second || m_shown.size() == most) return;
    m_shown.push_back(std::move(value));
}

std::string Selectable::Values::Text() const
{
    if (m_shown.empty()) return "none";
    const std::size_t more = m_known.size() - m_shown.size();
    return fmt::format("{}{}", fmt::join(m_shown, ", "), more == 0 ? "" : fmt::format(" and {} more", more));
}

void Selectable::Add(Listed all)
{
    m_results = std::max(m_results, all.size());
    for (const ListedResult& listed : all) {
        const CResultHeader& header = *listed.header;
        m_channels.Add(Printable(header.responseName()));
        m_references.Add(Printable(header.referenceName()));
        m_kinds.Add(KindName(header));
        m_names.Add(Printable(header.processCaption()));
        m_systems.Add(std::to_string(listed.system));
    }
}

std::string Selectable::Text() const
{
    std::vector<std::string> parts;
    const auto add = [&parts](bool isUsed, const char* what, const std::string& values) {
        if (isUsed) parts.push_back(fmt::format("{} {}", what, values));
    };
    add(!m_selection.results.empty(), "up to", Counted(m_results, "result"));
    add(!m_selection.channels.empty(), "channels", m_channels.Text());
    add(!m_selection.references.empty(), "references", m_references.Text());
    add(!m_selection.kinds.empty(), "kinds", m_kinds.Text());
    add(!m_selection.names.empty(), "names", m_names.Text());
    add(!m_selection.systems.empty(), "systems", m_systems.Text());
    return fmt::format("there are {}", fmt::join(parts, "; "));
}

void FailForNumber(const std::string& path, std::size_t number, std::size_t count)
{
    throw Failure("{} has no result {}: it holds {}, counted from 0", Printable(path), number,
                  Counted(count, "result"));
}

} // namespace zmxf
