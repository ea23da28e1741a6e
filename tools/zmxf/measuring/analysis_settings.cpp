#include "tools/zmxf/measuring/analysis_settings.h"

#include "tools/zmxf/base/process_names.h"
#include "tools/zmxf/base/program_version.h"
#include "zelmresult/settings/chaine_data.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/settings/idn_data.h"
#include "zelmresult/settings/scalaire_data.h"
#include "zelmresult/support/text.h"

namespace zmxf {

namespace {

using ZelmResult::CConfigData;
using ZelmResult::CReglageData;
using ZelmResult::FromUtf8;

// Module 1 is the inputs, with a submodule per channel, module 2 for the analysis.
constexpr std::uint32_t kAnalysis = 2;
constexpr std::uint32_t kSpectra = 1;
constexpr std::uint32_t kOctaves = 2;
constexpr std::uint32_t kRunUp = 3;
constexpr std::uint32_t kSound = 4;

// Settings of one submodule, numbered as they come.
class Group {
public:
    Group(CConfigData& config, const idn::Idn& place, std::string title)
        : m_config(config), m_place(place), m_title(std::move(title))
    {
    }

    void AddText(const std::string& title, const std::string& text)
    {
        auto setting = std::make_unique<ZelmResult::CChaineData>();
        setting->setValue(FromUtf8(text));
        Add(title, std::move(setting));
    }
    void AddNumber(const std::string& title, double number)
    {
        auto setting = std::make_unique<ZelmResult::CScalaireData>();
        setting->setValue(static_cast<float>(number));
        Add(title, std::move(setting));
    }
    void AddInteger(const std::string& title, std::size_t value, std::size_t min, std::size_t max)
    {
        Add(title, std::make_unique<ZelmResult::CIntegerScalarData>(static_cast<std::uint32_t>(value),
                                                                    static_cast<std::uint32_t>(min),
                                                                    static_cast<std::uint32_t>(max), false));
    }
    void AddPlace(const std::string& title, const idn::Idn& place)
    {
        auto setting = std::make_unique<ZelmResult::CReglageIdnData>();
        setting->setIdnValue(place);
        Add(title, std::move(setting));
    }

private:
    void Add(const std::string& title, std::unique_ptr<CReglageData> setting)
    {
        setting->info().SetIDN(m_place.settingIdn(static_cast<idn::ESetting>(++m_count)));
        setting->setTitleString(FromUtf8(title));
        setting->setVisible(true);
        m_config.AddReglage(setting.release());
        ZelmResult::CSousModuleData* submodule = m_config.GetSousModule(m_place);
        submodule->setTitleString(FromUtf8(m_title));
        submodule->setVisible(true);
    }

    CConfigData& m_config;
    idn::Idn m_place;
    std::string m_title;
    std::uint32_t m_count = 0;
};

idn::Idn AnalysisIdn(std::uint32_t submodule)
{
    return idn::Idn::generateSubmoduleIdn(idn::Analyzer(0), idn::Module(kAnalysis, 1), idn::Submodule(submodule, 1));
}

void AddInputs(CConfigData& config, const CalibratedRecording& recording)
{
    for (std::size_t channel = 0; channel < recording.calibrations.size(); ++channel) {
        const Calibration& calibration = recording.calibrations[channel];
        Group input(config, ChannelIdn(channel), ChannelName(recording, channel));
        input.AddText("Unit", calibration.IsKnown() ? calibration.unit : "FS");
        input.AddNumber("Range", calibration.fullScale);
    }
}

void AddAnalysis(CConfigData& config, const CalibratedRecording& recording)
{
    const Spectra& spectra = recording.measured.spectra;
    Group group(config, AnalysisIdn(kSpectra), "Autospectra");
    group.AddText("Window", WindowName(spectra.window));
    group.AddInteger("Block size", spectra.blockSize, kSmallestBlock, kLargestBlock);
    group.AddNumber("Overlap (%)", 50.0);
    group.AddInteger("Averages", static_cast<std::size_t>(spectra.blocks), 1, UINT32_MAX);
    if (!spectra.cross.empty()) group.AddPlace("Reference", ChannelIdn(spectra.reference));
    Group octaves(config, AnalysisIdn(kOctaves), "1/3-octave spectra");
    octaves.AddText("Window", WindowName(OctaveWindow(spectra.window)));
    octaves.AddInteger("Block size", recording.measured.octaveBlockSize, kSmallestBlock, kLargestBlock);
    octaves.AddText("Weighting of the global level", "A");
    Group sound(config, AnalysisIdn(kSound), "Sound levels");
    sound.AddText("Weightings", "A, C, Z");
    sound.AddNumber("Short interval (s)", SoundLevels::kShortInterval);
    sound.AddNumber("Instant interval (s)", SoundLevels::kInstantInterval);
    const RunUp& runUp = recording.measured.runUp;
    if (runUp.slices.empty()) return;
    Group tacho(config, AnalysisIdn(kRunUp), "Run-up");
    tacho.AddPlace("Tacho", ChannelIdn(runUp.tacho));
    tacho.AddNumber("Pulses per revolution", runUp.pulses);
    tacho.AddInteger("Slices", runUp.slices.size(), 1, UINT32_MAX);
    tacho.AddText("Orders", OrdersName(runUp.orders));
}

} // namespace

void AddSettings(MeasuredDocument& document)
{
    const CalibratedRecording& recording = document.recording();
    auto config = std::make_unique<CConfigData>();
    // Numbers that no version of the analyzer's application has: those of this program are in the text.
    config->setVersionTavide({100, 0, FromUtf8(ProgramVersion())});
    AddInputs(*config, recording);
    if (!recording.measured.octaves.empty()) AddAnalysis(*config, recording);
    for (ZelmResult::CModuleData* module : config->modules()) {
        module->setDebugString(module->GetIdn().module().kind == kAnalysis ? u"Analysis" : u"Inputs");
        module->setVisible(true);
    }
    (void)document.document().SetConfig(config.release(), 0);
}

} // namespace zmxf
