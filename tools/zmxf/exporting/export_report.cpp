#include "tools/zmxf/exporting/export_report.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/text.h"

#include <fmt/format.h>
#include <iterator>

namespace zmxf {

namespace {

// "0-6, 43"
std::string RangesText(const std::set<std::size_t>& numbers)
{
    std::string text;
    for (auto first = numbers.begin(); first != numbers.end();) {
        auto last = first;
        for (auto next = std::next(last); next != numbers.end() && *next == *last + 1; ++next) last = next;
        text += text.empty() ? "" : ", ";
        text += first == last ? std::to_string(*first) : fmt::format("{}-{}", *first, *last);
        first = std::next(last);
    }
    return text;
}

} // namespace

void ExportReport::LeaveOut(const ZelmResult::LabelledResult& result, const std::string& why)
{
    m_incomplete.insert(result.information.number);
    m_byReason[why].insert(result.information.number);
}

void ExportReport::Warn(const ZelmResult::LabelledResult& result, const std::string& what)
{
    m_warnings[what].insert(result.information.number);
}

void ExportReport::Fail(const std::string& why)
{
    ++m_failed;
    PrintFailure(why);
}

void ExportReport::PrintNotes() const
{
    for (const auto& [what, numbers] : m_warnings)
        PrintWarning(
            fmt::format("{}: {}: {}: {}", m_document, Counted(numbers.size(), "result"), what, RangesText(numbers)));
    for (const auto& [why, numbers] : m_byReason)
        PrintWarning(fmt::format("{}: {} left out: {}: {}", m_document, Counted(numbers.size(), "result"), why,
                                 RangesText(numbers)));
}

ExportTotals ExportReport::Totals() const { return {m_done - m_incomplete.size(), m_incomplete.size() + m_failed}; }

ExportTotals& ExportTotals::operator+=(const ExportTotals& other)
{
    exported += other.exported;
    leftOut += other.leftOut;
    return *this;
}

} // namespace zmxf
