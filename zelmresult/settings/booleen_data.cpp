#include "zelmresult/settings/booleen_data.h"

#include "zelmresult/storage/record_io.h"

namespace ZelmResult {

template <class Io, class Self>
bool CBooleenData::fields(Io& io, Self& setting)
{
    io.template base<CReglageData>(setting);
    if (!io.record(kRecordName, newest{256}, first{256})) return io.ok();
    io.flag("value", setting.m_value);
    io.dump([&] { return u"Booleen :" + setting.titleString(); });
    return io.ok();
}

template <class Io, class Self>
bool CActionData::fields(Io& io, Self& setting)
{
    io.template base<CReglageData>(setting);
    if (!io.record(kRecordName, newest{256}, first{256})) return io.ok();
    io.flag("ActionFlag", setting.m_actionFlag);
    io.i32("Locked", setting.m_locked);
    io.dump([&] { return Concat(u"Action :", setting.titleString(), u" locked ", setting.m_locked); });
    return io.ok();
}

template class StoredRecord<CBooleenData, CReglageData>;
template class StoredRecord<CActionData, CReglageData>;

} // namespace ZelmResult
