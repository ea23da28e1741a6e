#include "tools/zmxf/base/colour.h"
#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/showing/verification_json.h"
#include "tools/zmxf/verbs/verbs.h"

#include <fmt/format.h>
#include <iostream>
#include <memory>

namespace zmxf {

namespace {

using Verdict = Verification::Verdict;

struct VerifyOptions {
    std::string document;
    bool json = false;
};

int Status(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Whole: return 0;
    case Verdict::Damaged: return 3;
    case Verdict::NoDocument: break;
    }
    return 4;
}

std::string VerdictLine(const std::string& path, const Verification& found)
{
    const Colour colour = found.verdict == Verdict::Whole ? Colour::Green : Colour::Red;
    const std::string line =
        fmt::format("{}: {}", Printable(path), Coloured(NameOf(found.verdict), colour, Stream::Output));
    const std::string results = Counted(found.results, "result");
    if (found.verdict == Verdict::Whole) return fmt::format("{}, {}\n", line, results);
    if (found.verdict == Verdict::NoDocument) return fmt::format("{}\n", line);
    return fmt::format("{}, {} of {} readable{}\n", line, found.readable, results,
                       found.isLoaded ? "" : "; it doesn't load as a whole: zmxf salvage makes a copy that does");
}

void RunVerify(const VerifyOptions& options)
{
    const Verification found = Verify(options.document);
    if (options.json) {
        Json json{{"file", options.document}};
        json.update(VerificationJson(found));
        std::cout << JsonDocument(json);
    } else {
        std::cout << VerdictLine(options.document, found);
        for (const Damage& damage : found.damages)
            std::cout << "  at " << OffsetText(damage.offset) << ": " << damage.text << '\n';
        for (const Damage& note : found.notes)
            std::cout << "  note, at " << OffsetText(note.offset) << ": " << note.text << '\n';
    }
    if (found.verdict != Verdict::Whole) throw ExitStatus{Status(found.verdict)};
}

} // namespace

void AddVerifyVerb(CLI::App& program)
{
    auto options = std::make_shared<VerifyOptions>();
    CLI::App* verb = program.add_subcommand("verify", "Tells whether a document is whole, and what is wrong with it");
    verb->add_option("FILE", options->document, "File to look at")->required();
    verb->add_flag("--json", options->json, "Print JSON");
    verb->footer("Exit status: 0 whole, 3 damaged but readable in part, 4 no result document\nExample:\n  zmxf verify "
                 "pump.zmxf");
    verb->callback([options] { RunVerify(*options); });
}

} // namespace zmxf
