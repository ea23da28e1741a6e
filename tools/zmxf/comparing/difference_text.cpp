#include "tools/zmxf/base/text.h"
#include "tools/zmxf/comparing/difference_report.h"
#include "tools/zmxf/showing/list_table.h"

#include <cmath>
#include <fmt/format.h>
#include <utility>

namespace zmxf {

namespace {

using enum TextTable::Align;
using What = Difference::What;
using ZelmResult::CResultHeader;

std::string ProcessText(const CResultHeader& header)
{
    const std::string process = Printable(header.processCaption());
    return process.empty() ? KindName(header) : process;
}

std::string ChannelText(const CResultHeader& header)
{
    const std::string name = Printable(header.responseName());
    return name.empty() ? fmt::format("#{}", header.GetNumReponse()) : name;
}

// Where the two have nothing to be parts of: empty.
std::string ShareText(const Difference& difference)
{
    if (!difference.largest || !std::isfinite(difference.largest->share)) return {};
    return fmt::format("{:.3g} %", 100.0 * difference.largest->share);
}

std::string WhatText(const Difference& difference)
{
    const std::string title = difference.title.empty() ? difference.array : difference.title;
    switch (difference.what) {
    case What::Values:
    case What::OnlyInA:
    case What::OnlyInB: return title;
    case What::NotCompared: return fmt::format("{}, not compared", title);
    default: return fmt::format("{}{}{}", NameOf(difference.what), title.empty() ? "" : " of ", title);
    }
}

// Highest and lowest values stand beside what they are of.
bool IsExtreme(const Difference& difference)
{
    return difference.array.ends_with("minimum") || difference.array.ends_with("maximum");
}

// The one that a line is about. What isn't values comes first, since it explains the others; extremes come last.
const Difference& Foremost(const ResultDifference& result)
{
    const Difference* foremost = &result.differences.front();
    const auto rank = [](const Difference& difference) {
        if (difference.what == What::NotCompared) return 3;
        if (difference.what != What::Values) return 0;
        return IsExtreme(difference) ? 2 : 1;
    };
    for (const Difference& difference : result.differences) {
        const bool isFurther = difference.largest && foremost->largest && rank(difference) == rank(*foremost) &&
                               difference.largest->share > foremost->largest->share;
        if (isFurther || rank(difference) < rank(*foremost)) foremost = &difference;
    }
    return *foremost;
}

std::string Indented(const ListTable& table)
{
    std::string text;
    const std::string common = table.Common();
    if (!common.empty()) text += fmt::format("  In all lines: {}\n", common);
    for (const std::string& line : table.Lines("  ")) text += line + '\n';
    return text;
}

std::string ResultTable(const DocumentDifference& found)
{
    if (found.results.empty()) return {};
    ListTable table({{"A", Right, true},
                     {"B", Right, true},
                     {"Process", Left, true},
                     {"Channel", Left, true},
                     {"Reference", Left},
                     {"What", Left, true},
                     {"In A", Right, true},
                     {"In B", Right, true},
                     {"Apart", Right, true},
                     {"At", Left, true},
                     {"Differing", Right, true},
                     {"More", Right, true}});
    for (const ResultDifference& result : found.results) {
        const CResultHeader& header = *result.a.listed.header;
        const Difference& shown = Foremost(result);
        const std::size_t more = result.differences.size() - 1;
        table.AddRow({std::to_string(result.a.number), std::to_string(result.numberInB), ProcessText(header),
                      ChannelText(header), Printable(header.referenceName()), WhatText(shown), shown.a, shown.b,
                      ShareText(shown), shown.largest ? shown.largest->place : "",
                      shown.largest ? fmt::format("{} of {}", shown.differing, shown.count) : "",
                      more == 0 ? "" : fmt::format("+{}", more)});
    }
    return "\nResults\n" + Indented(table);
}

std::string OnlyTable(const std::string& path, const std::vector<NumberedResult>& results)
{
    if (results.empty()) return {};
    ListTable table({{"N", Right, true}, {"Process", Left, true}, {"Channel", Left, true}, {"Reference", Left}});
    for (const NumberedResult& result : results) {
        const CResultHeader& header = *result.listed.header;
        table.AddRow({std::to_string(result.number), ProcessText(header), ChannelText(header),
                      Printable(header.referenceName())});
    }
    return fmt::format("\nOnly in {}\n", Printable(path)) + Indented(table);
}

std::string FactText(const Json& fact)
{
    if (fact.is_null()) return "none";
    if (fact.is_string()) return Printable(fact.get_ref<const std::string&>());
    if (fact.is_boolean()) return fact.get<bool>() ? "on" : "off";
    return fact.is_structured() ? "there" : fact.dump();
}

std::string BranchTable(const char* title, const std::vector<BranchDifference>& differences)
{
    if (differences.empty()) return {};
    TextTable table({Left, Left, Left});
    table.AddRow({"What", "In A", "In B"});
    for (const BranchDifference& difference : differences)
        table.AddRow({difference.place, FactText(difference.a), FactText(difference.b)});
    return fmt::format("\n{}\n{}", title, table.Text("  "));
}

// "2 of 55 results differ, 1 result only in b.zmxf, settings differ"
std::string Summary(const CompareChoice& choice, const DocumentDifference& found)
{
    std::vector<std::string> parts;
    if (!found.results.empty())
        parts.push_back(fmt::format("{} of {} differ", found.results.size(), Counted(found.compared, "common result")));
    if (!found.onlyInA.empty())
        parts.push_back(fmt::format("{} only in {}", Counted(found.onlyInA.size(), "result"), Printable(choice.a)));
    if (!found.onlyInB.empty())
        parts.push_back(fmt::format("{} only in {}", Counted(found.onlyInB.size(), "result"), Printable(choice.b)));
    if (!found.settings.empty()) parts.emplace_back("settings differ");
    if (!found.recordings.empty()) parts.emplace_back("recordings differ");
    return fmt::format("{}", fmt::join(parts, ", "));
}

std::string LargestText(const DocumentDifference& found)
{
    const ResultDifference* result = found.Largest();
    if (result == nullptr) return {};
    const Difference& largest = *result->Largest();
    const std::string place = largest.largest->place;
    const std::string share = ShareText(largest);
    const CResultHeader& header = *result->a.listed.header;
    return fmt::format("Furthest apart: {} of {}{}{}: {} in A, {} in B{}\n", ProcessText(header), ChannelText(header),
                       place.empty() ? "" : " at ", place, largest.a, largest.b,
                       share.empty() ? "" : fmt::format(", {} of the largest value", share));
}

} // namespace

std::string DifferenceText(const CompareChoice& choice, const DocumentDifference& found)
{
    if (found.IsEmpty())
        return fmt::format("{} and {} are equal: {}\n", Printable(choice.a), Printable(choice.b),
                           Counted(found.compared, "result"));
    return fmt::format("A is {}, B is {}\n{}\n{}{}{}{}{}{}", Printable(choice.a), Printable(choice.b),
                       Summary(choice, found), LargestText(found), ResultTable(found),
                       OnlyTable(choice.a, found.onlyInA), OnlyTable(choice.b, found.onlyInB),
                       BranchTable("Settings", found.settings), BranchTable("Recordings", found.recordings));
}

} // namespace zmxf
