#include "tools/zmxf/verbs/program.h"

#include "tools/signal_processing/recordings/sound_file.h"
#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/program_version.h"
#include "tools/zmxf/base/terminal.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/exporting/export_formats.h"
#include "tools/zmxf/verbs/verbs.h"
#include "zelmresult/quantities/unite.h"
#include "zelmresult/quantities/user_strings.h"

#include <algorithm>
#include <fmt/format.h>
#include <iostream>
#include <memory>
#include <new>
#include <numeric>
#include <string_view>
#include <utility>

namespace zmxf {

namespace {

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

int Report(const std::string& what, int status)
{
    PrintFailure(what);
    return status;
}

// How many letters must be put in, taken out or changed to make one word of another.
std::size_t Distance(std::string_view from, std::string_view to)
{
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t changed = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

// The verb that comes nearest to a word, when one is near; else all of them.
std::string Instead(const CLI::App& program, std::string_view word)
{
    constexpr std::size_t longestWord = 20;
    std::vector<std::string> all;
    std::string nearest;
    std::size_t least = 3; // letters that may differ, and one
    for (const CLI::App* verb : program.get_subcommands({})) {
        const std::string name = verb->get_name();
        all.push_back(name);
        const std::size_t distance = word.size() > longestWord ? least : Distance(word, name);
        if (distance < std::min(least, name.size())) nearest = name;
        least = std::min(least, distance);
    }
    return nearest.empty() ? fmt::format("there are {}", fmt::join(all, ", "))
                           : fmt::format("did you mean {}?", nearest);
}

void CheckVerb(const CLI::App& program, const std::vector<std::string>& arguments)
{
    if (arguments.size() < 2 || arguments[1].starts_with('-')) return;
    const std::string& word = arguments[1];
    const auto verbs = program.get_subcommands({});
    if (std::any_of(verbs.begin(), verbs.end(), [&word](const CLI::App* verb) { return verb->get_name() == word; }))
        return;
    throw CLI::ParseError(fmt::format("there is no verb {}: {}", word.empty() ? "\"\"" : word, Instead(program, word)),
                          CLI::ExitCodes::ExtrasError);
}

std::string VersionText()
{
    const SoundLibrary sounds = DescribeSoundLibrary();
    const auto yesOrNo = [](bool is) { return is ? "yes" : "no"; };
    return fmt::format("{}\n{}\nFLAC: {}\nOgg: {}\nHDF5: {}", ProgramVersion(), sounds.version,
                       yesOrNo(sounds.readsFlac), yesOrNo(sounds.readsOgg),
                       yesOrNo(EntryOf(ExportFormat::Hdf5).IsBuilt()));
}

void RunVerb(CLI::App& program, const std::vector<std::string>& arguments)
{
    CheckVerb(program, arguments);
    std::vector<const char*> texts;
    texts.reserve(arguments.size());
    for (const std::string& argument : arguments) texts.push_back(argument.c_str());
    program.parse(static_cast<int>(texts.size()), texts.data());
    if (!std::cout.flush()) throw Failure("cannot write to standard output");
}

int Help(const CLI::App& program, const CLI::Success& wish)
{
    (void)program.exit(wish, std::cout, std::cerr);
    return std::cout.flush() ? 0 : Report("cannot write to standard output", kFailed);
}

} // namespace

void AddDocumentVerb(CLI::App& program, const DocumentVerb& added)
{
    auto options = std::make_shared<DocumentOptions>();
    CLI::App* verb = program.add_subcommand(added.name, added.help);
    verb->add_option("FILE", options->document, "Result document")->required();
    verb->add_flag("--json", options->json, "Print JSON");
    verb->footer(fmt::format("Example:\n  {}", added.example));
    verb->callback([options, run = added.run] { run(*options); });
}

CLI::Validator CheckWholeNumber(std::uint32_t least)
{
    const auto problem = [least](const std::string& text) {
        const auto value = WholeNumber(text);
        return value && *value >= least ? std::string()
                                        : fmt::format("{} is not a whole number from {} on", text, least);
    };
    return {problem, "NUMBER"};
}

CLI::Validator AsDelimiter()
{
    const auto transform = [](std::string& text) {
        if (text == "tab") text = "\t";
        if (text == "blank") text = " ";
        const bool isMark = text.size() == 1 && std::string_view(",;|: \t").find(text) != std::string_view::npos;
        return isMark ? std::string() : fmt::format("{} is no delimiter", text);
    };
    return {transform, "MARK"};
}

std::unique_ptr<CLI::App> MakeProgram()
{
    auto program = std::make_unique<CLI::App>(
        "Measures recordings into result documents, and shows what such documents hold.", "zmxf");
    program->set_version_flag("--version", VersionText());
    program->allow_windows_style_options(false); // a path may begin with "/"
    program->require_subcommand(1);
    AddDemoVerb(*program);
    AddAnalyzeVerb(*program);
    AddInfoVerb(*program);
    AddLsVerb(*program);
    AddShowVerb(*program);
    AddExportVerb(*program);
    AddDiffVerb(*program);
    AddReportVerb(*program);
    AddSettingsVerb(*program);
    AddTracksVerb(*program);
    AddVerifyVerb(*program);
    AddSalvageVerb(*program);
    AddDumpVerb(*program);
    return program;
}

int RunProgram(const std::vector<std::string>& arguments)
{
    PrepareStandardStreams();
    ZelmResult::ZelmResult_initializeUserStrings();
    ZelmResult::CUnite::setPrefix_micro(u"\u00B5"); // terminals show more than the library's plain "u"
    const auto program = MakeProgram();
    try {
        RunVerb(*program, arguments);
        return 0;
    } catch (const ExitStatus& exit) {
        return std::cout.flush() ? exit.status : Report("cannot write to standard output", kFailed);
    } catch (const CLI::Success& wish) {
        return Help(*program, wish);
    } catch (const CLI::ParseError& error) {
        return Report(fmt::format("{} (see zmxf --help)", error.what()), kWrongUsage);
    } catch (const std::bad_alloc&) {
        return Report("not enough memory", kFailed);
    } catch (const std::exception& error) {
        return Report(error.what(), kFailed);
    }
}

} // namespace zmxf
