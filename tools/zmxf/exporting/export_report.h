#pragma once

#include "tools/zmxf/exporting/exporter.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>

namespace zmxf {

// Numbers of results.
struct ExportTotals {
    std::size_t exported = 0;
    std::size_t leftOut = 0;

    ExportTotals& operator+=(const ExportTotals& other);
};

// Counts what becomes of the results of a document, and says on standard error what isn't exported and why.
class ExportReport final : public ExportNotes {
public:
    explicit ExportReport(std::string document) : m_document(std::move(document)) {}

    void LeaveOut(const ZelmResult::LabelledResult& result, const std::string& why) override;
    void Warn(const ZelmResult::LabelledResult& result, const std::string& what) override;
    // For a result that went to an output, unless it was left out there.
    void CountDone() { ++m_done; }
    // For one that can't be read.
    void Fail(const std::string& why);

    [[nodiscard]] ExportTotals Totals() const;
    [[nodiscard]] bool IsFailed() const { return m_failed != 0; }
    // Names what was changed, and what was left out, by reason.
    void PrintNotes() const;

private:
    std::string m_document;
    std::size_t m_done = 0;
    std::size_t m_failed = 0;
    std::set<std::size_t> m_incomplete;                      // numbers
    std::map<std::string, std::set<std::size_t>> m_byReason; // the same
    std::map<std::string, std::set<std::size_t>> m_warnings;
};

} // namespace zmxf
