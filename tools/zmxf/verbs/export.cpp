#include "tools/zmxf/exporting/export_formats.h"
#include "tools/zmxf/exporting/export_job.h"
#include "tools/zmxf/verbs/selection_options.h"
#include "tools/zmxf/verbs/verbs.h"

#include <fmt/format.h>
#include <memory>

namespace zmxf {

namespace {

std::vector<std::string> FormatNames()
{
    std::vector<std::string> names;
    for (const ExportFormatEntry& entry : ExportFormats()) names.emplace_back(entry.name);
    return names;
}

// Alternatives as help shows them: "csv|json".
std::string Alternatives(const std::vector<std::string>& names) { return fmt::format("{}", fmt::join(names, "|")); }

void Run(const ExportJob& job)
{
    try {
        Export(job);
    } catch (const ExportRefusal& refusal) {
        throw CLI::ValidationError(refusal.what());
    }
}

} // namespace

void AddExportVerb(CLI::App& program)
{
    auto job = std::make_shared<ExportJob>();
    ExportChoices& choices = job->choices;
    CLI::App* verb = program.add_subcommand("export", "Writes results in formats that other programs read");
    verb->add_option("FILE", job->documents, "Result documents")->required();
    verb->add_option_function<std::string>(
            "--to", [&choices](const std::string& name) { choices.format = FormatNamed(name).format; }, "The format")
        ->required()
        ->check(CLI::IsMember(FormatNames()))
        ->option_text(Alternatives(FormatNames()) + " REQUIRED");
    verb->add_option("-o,--output", job->output, "A file, a folder, or - for standard output");
    verb->add_option_function<std::string>(
            "--units",
            [&choices](const std::string& name) {
                choices.units = name == "si" ? ExportUnits::Si : ExportUnits::Shown;
            },
            "SI units, or those in which documents show their values")
        ->check(CLI::IsMember({"si", "shown"}))
        ->option_text("si|shown");
    verb->add_flag("--db", choices.decibels, "Data in decibels, of quantities that have them");
    verb->add_flag("--compress", choices.isCompressed, "Of hdf5: compressed data");
    AddSelectionOptions(*verb, job->selection);
    verb->footer("Example:\n  zmxf export pump.zmxf --to csv --channel 2 --kind autospectrum");
    verb->callback([job] { Run(*job); });
}

} // namespace zmxf
