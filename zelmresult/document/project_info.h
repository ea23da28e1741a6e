#pragma once

#include "zelmresult/storage/stored_record.h"
#include "zelmresult/support/wstring.h"

namespace ZelmResult {

// Who measured what, in files of the LXF kind. A plain value.
class ProjectInfo {
public:
    [[nodiscard]] const wstring& projectName() const { return m_projectName; }
    void setProjectName(const wstring& name) { m_projectName = name; }
    [[nodiscard]] const wstring& userName() const { return m_userName; }
    void setUserName(const wstring& name) { m_userName = name; }
    [[nodiscard]] const wstring& measurementName() const { return m_measurementName; }
    void setMeasurementName(const wstring& name) { m_measurementName = name; }

private:
    friend class ProjectInfoMmioReaderWriter;

    wstring m_projectName;
    wstring m_userName;
    wstring m_measurementName;
};

// The chunk "PRJI". Read searches for it from the top of the file and leaves the position after the record.
class ProjectInfoMmioReaderWriter : public StoredFields<ProjectInfoMmioReaderWriter, ProjectInfo> {
public:
    static constexpr const char* kRecordName = "ProjectInfo";
    [[nodiscard]] bool Read(CMmioFile& file, ProjectInfo& info) const;
    [[nodiscard]] bool Write(CMmioFile& file, const ProjectInfo& info) const;

private:
    friend StoredFields;
    template <class Io, class Info>
    static bool fields(Io& io, Info& info);
};
extern template class StoredFields<ProjectInfoMmioReaderWriter, ProjectInfo>;

} // namespace ZelmResult
