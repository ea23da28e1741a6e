#pragma once

#include "zelmresult/settings/reglage_data.h"

namespace ZelmResult {

// A setting that is a text. The kinds 17, 49 and 113 are all of this class.
class CChaineData : public StoredReglage<CChaineData> {
public:
    static constexpr const char* kRecordName = "CChaineData";
    static constexpr std::uint32_t kType = 17;
    static constexpr std::uint32_t kType49 = 49;
    static constexpr std::uint32_t kType113 = 113;
    using StoredReglage::StoredReglage;
    static bool IsKind(std::uint32_t type) { return type == kType || type == kType49 || type == kType113; }

    [[nodiscard]] const wstring& value() const { return m_value; }
    void setValue(const wstring& value) { m_value = value; }
    [[nodiscard]] bool valueContains(const wstring& text) const { return m_value.find(text) != wstring::npos; }
    // Whether the value is the text of an identifier; out is set only then.
    bool ConvertToIdn(idn::Idn& out) const { return idn::IdnString::stringToIdn(m_value, out); }

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& setting);

    wstring m_value;
};
extern template class StoredRecord<CChaineData, CReglageData>;

// A signal that is played back from a file: of a project and measurement, or of a model that it is linked to. Only the
// names of the one that counts are stored.
class CSelectionSignalFileData : public StoredReglage<CSelectionSignalFileData, CChaineData> {
public:
    static constexpr const char* kRecordName = "CSelectionSignalFileData";
    static constexpr std::uint32_t kType = 273;
    using StoredReglage::StoredReglage;
    using StoredReglage<CSelectionSignalFileData, CChaineData>::IsKind;

    [[nodiscard]] const wstring& project() const { return m_project; }
    void setProject(const wstring& name) { m_project = name; }
    [[nodiscard]] const wstring& measurement() const { return m_measurement; }
    void setMeasurement(const wstring& name) { m_measurement = name; }
    [[nodiscard]] const wstring& projectPath() const { return m_projectPath; }
    void setProjectPath(const wstring& path) { m_projectPath = path; }
    [[nodiscard]] const wstring& signal() const { return m_signal; }
    void setSignal(const wstring& name) { m_signal = name; }
    [[nodiscard]] bool signalLinkedToModel() const { return m_signalLinkedToModel; }
    void setSignalLinkedToModel(bool linked) { m_signalLinkedToModel = linked; }
    [[nodiscard]] const wstring& model() const { return m_model; }
    void setModel(const wstring& name) { m_model = name; }
    [[nodiscard]] const wstring& modelPath() const { return m_modelPath; }
    void setModelPath(const wstring& path) { m_modelPath = path; }

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& setting);

    wstring m_project;
    wstring m_measurement;
    wstring m_projectPath;
    wstring m_signal;
    bool m_signalLinkedToModel = false;
    wstring m_model;
    wstring m_modelPath;
};
extern template class StoredRecord<CSelectionSignalFileData, CChaineData>;

} // namespace ZelmResult
