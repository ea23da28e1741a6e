#include "tools/signal_processing/machine.h"
#include "tools/signal_processing/recordings/sound_file.h"
#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/showing/report.h"
#include "tools/zmxf/verbs/analyze.h"
#include "tools/zmxf/verbs/verbs.h"

#include <fmt/format.h>
#include <iostream>
#include <memory>

namespace zmxf {

namespace {

std::vector<Calibration> MachineCalibrations()
{
    const Calibration vibration{"m/s2", MachineRecording::kVibrationFullScale, true};
    return {vibration, vibration, {"V", MachineRecording::kTachoFullScale, true}};
}

std::string MachineStory()
{
    using Machine = MachineRecording;
    return fmt::format("A synthesised machine that runs up from {} to {} rpm in {} s: two orders,\n"
                       "a gear mesh of order {}, a resonance at {} Hz and noise on two vibration channels,\n"
                       "and a tacho with one pulse per revolution.\n",
                       NumberText(Machine::kFirstSpeed * 60.0), NumberText(Machine::kLastSpeed * 60.0),
                       NumberText(Machine::kSeconds), NumberText(Machine::kGearTeeth), NumberText(Machine::kResonance));
}

// The options of analyze that say the same.
std::string AsOptions(const std::vector<Calibration>& calibrations)
{
    std::vector<std::string> units;
    std::vector<std::string> fullScales;
    for (const Calibration& calibration : calibrations) {
        units.push_back(calibration.unit);
        fullScales.push_back(ExactText(calibration.fullScale));
    }
    return fmt::format(" --unit {} --full-scale {} --block-size {} --tacho {}", fmt::join(units, ","),
                       fmt::join(fullScales, ","), MachineRecording::kBlockSize, MachineRecording::kTachoChannel + 1);
}

void WriteMachine(const std::string& path)
{
    OutputFile output(path);
    WriteRecording(output.file(), path, SynthesizeMachine().samples, MachineRecording::kChannels,
                   MachineRecording::kSampleRate);
    output.Commit();
}

void RunDemo(const std::string& folder)
{
    const std::string recording = InFolder(folder, "demo.wav");
    const std::string document = InFolder(folder, "demo.zmxf");
    const auto calibrations = MachineCalibrations();
    MakeFolder(folder);
    CheckOutput(recording, "");
    WriteMachine(recording);
    SpectrumSettings settings;
    settings.blockSize = MachineRecording::kBlockSize;
    settings.tacho = TachoSettings{MachineRecording::kTachoChannel, 1.0};
    const std::string report =
        MeasurementReport(Analyze({std::make_shared<RecordingReader>(RecordingSource{recording}), calibrations},
                                  settings, document, SliceStorage::Memory));
    std::cout << MachineStory() << report << "The same as: zmxf analyze " << Printable(recording)
              << AsOptions(calibrations) << " -o " << Printable(document) << '\n'
              << document << '\n';
}

} // namespace

void AddDemoVerb(CLI::App& program)
{
    auto folder = std::make_shared<std::string>("./zmxf-demo");
    CLI::App* verb = program.add_subcommand("demo", "Synthesises the recording of a machine and analyses it");
    verb->add_option("DIR", *folder, "Folder for demo.wav and demo.zmxf, made when it is missing")
        ->capture_default_str();
    verb->footer("Example:\n  zmxf demo /tmp/machine");
    verb->callback([folder] { RunDemo(*folder); });
}

} // namespace zmxf
