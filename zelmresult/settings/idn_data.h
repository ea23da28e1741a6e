#pragma once

#include "zelmresult/settings/reglage_data.h"

namespace ZelmResult {

// Settings whose values are identifiers of channels and other sources.

// A setting that names one place of the analyzer.
class CReglageIdnData : public StoredReglage<CReglageIdnData> {
public:
    static constexpr const char* kRecordName = "CReglageIdnData";
    static constexpr std::uint32_t kType = 32769;
    using StoredReglage::StoredReglage;

    [[nodiscard]] const idn::Idn& getIdnValue() const { return m_value; }
    void setIdnValue(const idn::Idn& value) { m_value = value; }

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& setting);

    idn::Idn m_value;
};
extern template class StoredRecord<CReglageIdnData, CReglageData>;

// The pairs of response and reference that a process is run for.
class CMatriceData : public StoredReglage<CMatriceData> {
public:
    static constexpr const char* kRecordName = "CMatriceData";
    static constexpr std::uint32_t kType = 9;
    using StoredReglage::StoredReglage;

    void AddResponseReference(const idn::Idn& response, const idn::Idn& reference);
    [[nodiscard]] std::int32_t GetCount() const { return static_cast<std::int32_t>(m_pairs.size()); }
    // Null identifiers out of range.
    [[nodiscard]] idn::Idn GetResponse(std::int32_t i) const { return At(i).response; }
    [[nodiscard]] idn::Idn GetReference(std::int32_t i) const { return At(i).reference; }
    [[nodiscard]] std::int32_t GetInputProcessType() const { return m_inputProcessType; }
    void SetInputProcessType(std::int32_t process) { m_inputProcessType = process; }

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& setting);

    struct Pair {
        idn::Idn response;
        idn::Idn reference;
    };

    [[nodiscard]] Pair At(std::int32_t i) const;

    std::int32_t m_inputProcessType = 0;
    std::vector<Pair> m_pairs;
};
extern template class StoredRecord<CMatriceData, CReglageData>;

// Several sources, and the list that they are associated with.
class CMultiSourcesData : public StoredReglage<CMultiSourcesData> {
public:
    static constexpr const char* kRecordName = "CMultiSourcesData";
    static constexpr std::uint32_t kType = 16385;
    using StoredReglage::StoredReglage;

    void AddSource(const idn::Idn& source) { m_sources.push_back(source); }
    void AddSources(const std::vector<idn::Idn>& sources);
    [[nodiscard]] const std::vector<idn::Idn>& GetSources() const { return m_sources; }
    [[nodiscard]] const idn::Idn& GetAssociatedList() const { return m_associatedList; }
    void SetAssociatedList(const idn::Idn& list) { m_associatedList = list; }

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& setting);

    idn::Idn m_associatedList;
    std::vector<idn::Idn> m_sources;
};
extern template class StoredRecord<CMultiSourcesData, CReglageData>;

// What a waterfall is made of.
class CWtfSourceData : public StoredReglage<CWtfSourceData> {
public:
    static constexpr const char* kRecordName = "CWtfSourceData";
    static constexpr std::uint32_t kType = 2049;
    using StoredReglage::StoredReglage;

    [[nodiscard]] const idn::Idn& GetIdnSource() const { return m_idnSource; }
    void SetIdnSource(const idn::Idn& idn) { m_idnSource = idn; }
    [[nodiscard]] const idn::Idn& GetIdnResponse() const { return m_idnResponse; }
    void SetIdnResponse(const idn::Idn& idn) { m_idnResponse = idn; }
    [[nodiscard]] const idn::Idn& GetIdnReference() const { return m_idnReference; }
    void SetIdnReference(const idn::Idn& idn) { m_idnReference = idn; }
    [[nodiscard]] std::int32_t GetSourceProcess() const { return m_sourceProcess; }
    void SetSourceProcess(std::int32_t process) { m_sourceProcess = process; }
    [[nodiscard]] const wstring& caption() const { return m_caption; }
    void setCaption(const wstring& caption) { m_caption = caption; }

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& setting);

    idn::Idn m_idnSource;
    idn::Idn m_idnResponse;
    idn::Idn m_idnReference;
    std::int32_t m_sourceProcess = 0;
    wstring m_caption;
};
extern template class StoredRecord<CWtfSourceData, CReglageData>;

} // namespace ZelmResult
