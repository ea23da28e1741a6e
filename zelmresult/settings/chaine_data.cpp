#include "zelmresult/settings/chaine_data.h"

#include "zelmresult/storage/record_io.h"

namespace ZelmResult {

template <class Io, class Self>
bool CChaineData::fields(Io& io, Self& setting)
{
    io.template base<CReglageData>(setting);
    if (!io.record(kRecordName, newest{256}, first{256})) return io.ok();
    io.text("value", setting.m_value);
    io.dump([&] { return Concat(u"Chaine : ", setting.titleString(), u", szValue : ", setting.m_value); });
    return io.ok();
}

template <class Io, class Self>
bool CSelectionSignalFileData::fields(Io& io, Self& setting)
{
    constexpr std::uint16_t former = 256;
    constexpr std::uint16_t withLink = 512;
    io.template base<CChaineData>(setting);
    if (!io.record(kRecordName, newest{withLink}, first{former})) return io.ok();
    if (io.version() > former && io.version() < withLink) return io.ok(); // versions that no writer used hold nothing
    io.flag("signalLinkedToModel", setting.m_signalLinkedToModel, since{withLink}, absent{false});
    const only toModel{"signalLinkedToModel is true", setting.m_signalLinkedToModel};
    const only toProject{"signalLinkedToModel is false", !setting.m_signalLinkedToModel};
    io.text("modelPath", setting.m_modelPath, toModel);
    io.text("model", setting.m_model, toModel);
    io.text("projectPath", setting.m_projectPath, toProject);
    io.text("project", setting.m_project, toProject);
    io.text("measurement", setting.m_measurement, toProject);
    io.text("signal", setting.m_signal);
    io.dump([&] { return u"SelectionSignalFile :" + setting.titleString(); });
    return io.ok();
}

template class StoredRecord<CChaineData, CReglageData>;
template class StoredRecord<CSelectionSignalFileData, CChaineData>;

} // namespace ZelmResult
