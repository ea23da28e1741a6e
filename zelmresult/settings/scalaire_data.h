#pragma once

#include "zelmresult/settings/reglage_data.h"

#include <array>

namespace ZelmResult {

// A setting that is a number, with four words and a flag that are kept for the host.
class CScalaireData : public StoredReglage<CScalaireData> {
public:
    static constexpr const char* kRecordName = "CScalaireData";
    static constexpr std::uint32_t kType = 129;
    using StoredReglage::StoredReglage;

    [[nodiscard]] float value() const { return m_value; }
    void setValue(float value) { m_value = value; }
    [[nodiscard]] const std::array<std::uint32_t, 4>& words() const { return m_words; }
    void setWords(const std::array<std::uint32_t, 4>& words) { m_words = words; }
    [[nodiscard]] bool flag() const { return m_flag; }
    void setFlag(bool flag) { m_flag = flag; }

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& setting);

    float m_value = 0.0F;
    std::array<std::uint32_t, 4> m_words = {};
    bool m_flag = false;
};
extern template class StoredRecord<CScalaireData, CReglageData>;

// A number that tunes an analysis window, with the eight parameters of the window and its type.
class CWinTuningData : public StoredReglage<CWinTuningData, CScalaireData> {
public:
    static constexpr const char* kRecordName = "CWinTuningData";
    static constexpr std::uint32_t kType = 641;
    using StoredReglage::StoredReglage;
    using StoredReglage<CWinTuningData, CScalaireData>::IsKind;

    [[nodiscard]] const std::array<float, 8>& V() const { return m_v; }
    void SetV(const std::array<float, 8>& parameters) { m_v = parameters; }
    [[nodiscard]] std::int32_t WinType() const { return m_winType; }
    void SetWinType(std::int32_t type) { m_winType = type; }

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& setting);

    std::array<float, 8> m_v = {};
    std::int32_t m_winType = 0;
};
extern template class StoredRecord<CWinTuningData, CScalaireData>;

// A whole number between limits.
class CIntegerScalarData : public StoredReglage<CIntegerScalarData> {
public:
    static constexpr const char* kRecordName = "CIntegerScalarData";
    static constexpr std::uint32_t kType = 65537;

    CIntegerScalarData() = default;
    CIntegerScalarData(std::uint32_t value, std::uint32_t min, std::uint32_t max, bool inHexa);
    explicit CIntegerScalarData(const CReglageInfoData* info); // always of this class's kind

    [[nodiscard]] std::uint32_t Value() const { return m_value; }
    void SetValue(std::uint32_t value) { m_value = value; }
    [[nodiscard]] std::uint32_t Min() const { return m_min; }
    [[nodiscard]] std::uint32_t Max() const { return m_max; }
    void SetLimits(std::uint32_t min, std::uint32_t max) { m_min = min, m_max = max; }
    [[nodiscard]] bool InHexa() const { return m_inHexa; } // shown in hexadecimal
    void SetInHexa(bool inHexa) { m_inHexa = inHexa; }

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& setting);

    std::uint32_t m_value = 0;
    std::uint32_t m_min = 0;
    std::uint32_t m_max = 0;
    bool m_inHexa = false;
};
extern template class StoredRecord<CIntegerScalarData, CReglageData>;

} // namespace ZelmResult
