#pragma once

#include "tools/zmxf/base/files.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/storage/mmio_file.h"

#include <memory>
#include <string>
#include <vector>

namespace zmxf {

// A file that is open to be read in parts, however damaged it is. It owns the quantities that these reads list.
class ProbedFile : public ZelmResult::CMmioFile {
public:
    explicit ProbedFile(const std::string& path) : CMmioFile(false), m_path(LibraryPath(path)) { Begin(); }
    ProbedFile(const ProbedFile&) = delete;
    ProbedFile& operator=(const ProbedFile&) = delete;
    ~ProbedFile() override { DeleteQuantities(); }

    [[nodiscard]] const ZelmResult::wstring& path() const { return m_path; }
    // Opens it again, since a file notes one refusal alone. The quantities die.
    void OpenAgain()
    {
        DeleteQuantities();
        (void)Close();
        Begin();
    }

private:
    void Begin()
    {
        if (Open(m_path, nullptr, ZelmResult::OMMIO_READ)) LimitSearches();
    }
    void DeleteQuantities()
    {
        const auto& listed = ListeGrandeur();
        const std::vector<std::unique_ptr<const ZelmResult::CGrandeurFichier>> owners(listed.begin(), listed.end());
    }

    ZelmResult::wstring m_path;
};

} // namespace zmxf
