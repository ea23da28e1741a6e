#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/files.h"
#include "tools/zmxf/exporting/export_output.h"
#include "tools/zmxf/verbs/verbs.h"
#include "tools/zmxf/viewer/page_writing.h"
#include "tools/zmxf/viewer/viewer_page.h"

#include <memory>

namespace zmxf {

namespace {

struct ReportOptions {
    std::vector<std::string> documents;
    std::string output;
};

void RunReport(const ReportOptions& options)
{
    if (ViewerPage().empty())
        throw Failure("this zmxf was built without the page: scripts/web makes it, and a build of zmxf with "
                      "-DZELMRESULT_VIEWER=build/zmxf-viewer.html takes it in");
    if (options.output != "-")
        for (const std::string& document : options.documents) CheckOutput(options.output, document);
    const auto documents = CarryDocuments(options.documents);
    for (const CarriedDocument& document : documents)
        if (!document.note.empty()) PrintWarning(document.name + ": " + document.note);
    ExportOutput output(options.output, ExportOutput::Writer::Stream);
    WritePage(output.stream(), ViewerPage(), documents);
    output.Commit();
}

} // namespace

void AddReportVerb(CLI::App& program)
{
    auto options = std::make_shared<ReportOptions>();
    CLI::App* verb = program.add_subcommand("report", "Writes a page for browsers that holds documents and shows them");
    verb->add_option("FILE", options->documents, "Result documents, damaged or not")->required();
    verb->add_option("-o,--output", options->output, "Page to write; - for standard output")->required();
    verb->footer("Example:\n  zmxf report pump.zmxf fan.zmxf -o machines.html");
    verb->callback([options] { RunReport(*options); });
}

} // namespace zmxf
