#pragma once

#include "zelmresult/settings/reglage_data.h"

namespace ZelmResult {

// A setting that is on or off.
class CBooleenData : public StoredReglage<CBooleenData> {
public:
    static constexpr const char* kRecordName = "CBooleenData";
    static constexpr std::uint32_t kType = 3;
    using StoredReglage::StoredReglage;

    [[nodiscard]] bool value() const { return m_value; }
    void setValue(bool value) { m_value = value; }

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& setting);

    bool m_value = false;
};
extern template class StoredRecord<CBooleenData, CReglageData>;

// A setting that asks for an action. The host defines what the flag and the number mean.
class CActionData : public StoredReglage<CActionData> {
public:
    static constexpr const char* kRecordName = "CActionData";
    static constexpr std::uint32_t kType = 8193;
    using StoredReglage::StoredReglage;

    [[nodiscard]] bool ActionFlag() const { return m_actionFlag; }
    void SetActionFlag(bool flag) { m_actionFlag = flag; }
    [[nodiscard]] std::int32_t Locked() const { return m_locked; }
    void SetLocked(std::int32_t locked) { m_locked = locked; }

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& setting);

    bool m_actionFlag = false;
    std::int32_t m_locked = 0;
};
extern template class StoredRecord<CActionData, CReglageData>;

} // namespace ZelmResult
