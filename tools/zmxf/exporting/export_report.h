#pragma once

#include "tools/zmxf/exporting/exporter.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>

namespace zmxf {

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

    [[nodiscard]] const std::string& document() const { return m_document; }
    [[nodiscard]] std::size_t Exported() const { return m_done - m_incomplete.size(); }
    [[nodiscard]] bool IsFailed() const { return m_failed != 0; }
    // Names what was left out, by reason.
    void PrintLeftOut() const;
    // "52 results, 3 left out"
    [[nodiscard]] std::string Summary() const;

private:
    std::string m_document;
    std::size_t m_done = 0;
    std::size_t m_failed = 0;
    std::set<std::size_t> m_incomplete;                      // numbers
    std::map<std::string, std::set<std::size_t>> m_byReason; // the same
};

} // namespace zmxf
