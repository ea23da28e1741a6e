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

void AddFormatOptions(CLI::App& verb, ExportJob& job)
{
    ExportChoices& choices = job.choices;
    verb.add_option_function<std::string>(
            "--to", [&choices](const std::string& name) { choices.format = FormatNamed(name).format; }, "The format")
        ->required()
        ->check(CLI::IsMember(FormatNames()))
        ->option_text(fmt::format("{} REQUIRED", fmt::join(FormatNames(), "|")));
    verb.add_option("-o,--output", job.output,
                    "A file, a folder, or - for standard output; named after the document when not given")
        ->option_text("OUT");
    verb.add_option_function<std::string>(
            "--units",
            [&choices](const std::string& name) {
                choices.units = name == "si" ? ExportUnits::Si : ExportUnits::Shown;
            },
            "SI units, or those in which documents show their values; si when not given")
        ->check(CLI::IsMember({"si", "shown"}))
        ->option_text("si|shown");
    verb.add_flag("--db", choices.decibels,
                  "Data in decibels, where the quantity has them; complex data as magnitude and phase");
}

void AddTableOptions(CLI::App& verb, ExportChoices& choices)
{
    CLI::Option* isLong = verb.add_flag("--long", choices.isLong, "Of csv: a row per value, with its coordinates");
    CLI::Option* isJoined =
        verb.add_flag("--join", choices.isJoined, "Of csv: one table of all results, which must have equal axes");
    verb.add_flag("--levels", choices.levelsOnly, "Of csv: one table of all levels of all documents")
        ->excludes(isLong)
        ->excludes(isJoined);
    isJoined->excludes(isLong);
    CLI::Option* delimiter =
        verb.add_option("--delimiter", choices.delimiter,
                        "Of csv: what is between cells, one of , ; | : tab blank; a comma when not given")
            ->transform(AsDelimiter());
    CLI::Option* decimal =
        verb.add_option("--decimal", choices.decimalMark, "Of csv: the decimal mark, a point when not given")
            ->check(CLI::IsMember({".", ","}))
            ->option_text(".|,");
    verb.add_flag("--excel", choices.isForExcel, "Of csv: a byte-order mark, semicolons between cells, decimal commas")
        ->excludes(delimiter)
        ->excludes(decimal);
}

// Throws for an option of another format.
void CheckSuits(const CLI::App& verb, ExportFormat format)
{
    const auto check = [&](bool suits, std::initializer_list<const char*> options, const char* formats) {
        for (const char* option : options)
            if (!suits && verb.get_option(option)->count() != 0)
                throw CLI::ValidationError(option, fmt::format("is an option of --to {}", formats));
    };
    check(format == ExportFormat::Csv, {"--long", "--join", "--levels", "--delimiter", "--decimal", "--excel"}, "csv");
    check(format == ExportFormat::Csv || format == ExportFormat::Json, {"--polar"}, "csv and json");
    check(format == ExportFormat::Hdf5, {"--compress"}, "hdf5");
    const bool isUff = format == ExportFormat::Uff || format == ExportFormat::UffBinary; // SI units, whatever one asks
    check(!isUff, {"--units", "--db"}, "csv, json, hdf5 and mat");
}

void Run(const CLI::App& verb, ExportJob& job)
{
    ExportChoices& choices = job.choices;
    CheckSuits(verb, choices.format);
    if (choices.isForExcel) {
        choices.delimiter = ';';
        choices.decimalMark = ',';
    }
    if (choices.delimiter == choices.decimalMark)
        throw CLI::ValidationError("--decimal", "is the delimiter too: choose another one, such as --delimiter \";\"");
    try {
        Export(job);
    } catch (const ExportRefusal& refusal) {
        throw CLI::ParseError(refusal.what(), CLI::ExitCodes::ValidationError);
    }
}

} // namespace

void AddExportVerb(CLI::App& program)
{
    auto job = std::make_shared<ExportJob>();
    CLI::App* verb = program.add_subcommand("export", "Writes results in formats that other programs read");
    verb->add_option("FILE", job->documents, "Result documents")->required();
    AddFormatOptions(*verb, *job);
    verb->add_flag("--polar", job->choices.isPolar, "Of csv and json: complex data as magnitude and phase");
    verb->add_flag("--compress", job->choices.isCompressed, "Of hdf5: compressed data");
    AddTableOptions(*verb, job->choices);
    AddSelectionOptions(*verb, job->selection);
    verb->footer("Example:\n  zmxf export pump.zmxf --to csv --channel 2 --kind autospectrum -o spectrum.csv");
    verb->callback([job, verb] { Run(*verb, *job); });
}

} // namespace zmxf
