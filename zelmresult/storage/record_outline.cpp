#include "zelmresult/storage/record_outline.h"

namespace ZelmResult {

bool RecordOutline::record(const char* name, newest written, first lowest)
{
    m_name = name;
    m_lowest = lowest.value;
    m_rows.push_back({"version", "u16, written " + std::to_string(written.value), "", "", ""});
    return true;
}

std::string RecordOutline::Versions(const detail::FieldOptions& options) const
{
    if (m_name.empty()) return {}; // a base block before the version
    const std::string from = std::to_string(std::max(options.since, m_lowest));
    return options.until == 0xFFFF ? from : from + " to " + std::to_string(options.until);
}

std::string RecordOutline::Table() const
{
    std::string table = "| field | form | from version | when absent | present when |\n|---|---|---|---|---|\n";
    for (const Row& row : m_rows)
        table +=
            "| " + row.name + " | " + row.form + " | " + row.versions + " | " + row.absent + " | " + row.when + " |\n";
    return table;
}

} // namespace ZelmResult
