#include "tools/zmxf/damage/salvage.h"
#include "tools/zmxf/base/colour.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/verbs/verbs.h"

#include <iostream>
#include <memory>

namespace zmxf {

namespace {

struct SalvageOptions {
    std::string bad;
    std::string good;
};

void RunSalvage(const SalvageOptions& options)
{
    const Salvaged salvaged = Salvage(options.bad, options.good);
    for (const Salvaged::Count& count : salvaged.counts)
        std::cout << "Kept " << count.kept << " of " << count.found << ' ' << count.what << '\n';
    if (salvaged.counts.empty()) std::cout << "Kept nothing: the document is empty\n";
    for (const std::string& lost : salvaged.lost)
        std::cout << Coloured("Lost", Colour::Red, Stream::Output) << ' ' << lost << '\n';
    std::cout << "Written to " << Printable(options.good) << '\n';
}

} // namespace

void AddSalvageVerb(CLI::App& program)
{
    auto options = std::make_shared<SalvageOptions>();
    CLI::App* verb = program.add_subcommand("salvage", "Makes a document of all that is whole in a damaged one");
    verb->add_option("BAD", options->bad, "Damaged document, or what a save left that died; it stays as it is")
        ->required();
    verb->add_option("GOOD", options->good, "Document to write")->required();
    verb->footer("Example:\n  zmxf salvage broken.zmxf mended.zmxf");
    verb->callback([options] { RunSalvage(*options); });
}

} // namespace zmxf
