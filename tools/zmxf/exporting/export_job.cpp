#include "tools/zmxf/exporting/export_job.h"

#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/open_document.h"
#include "tools/zmxf/base/progress.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/exporting/export_formats.h"
#include "tools/zmxf/exporting/export_output.h"
#include "tools/zmxf/exporting/export_report.h"
#include "tools/zmxf/exporting/export_targets.h"

#include <fmt/format.h>
#include <functional>
#include <iostream>
#include <memory>

namespace zmxf {

namespace {

// A document of the job, and what is selected of it.
struct OpenedDocument {
    std::string path;
    ZelmResult::DocumentReader reader;
    std::vector<std::size_t> numbers;
};

using TakeResult = std::function<void(const ZelmResult::LabelledResult&)>;

// Reads the selected results one by one. Those that can't be read leave the others alone.
void ReadEach(OpenedDocument& document, ExportReport& report, const TakeResult& take)
{
    Progress progress(fmt::format("exporting {}", Printable(document.path)));
    const auto all = ListResults(document.reader, document.path);
    for (std::size_t i = 0; i < document.numbers.size(); ++i) {
        const std::size_t number = document.numbers[i];
        std::optional<ZelmResult::LabelledResult> result;
        try {
            result = CheckRead(document.path, all[number], number, document.reader.ReadLabelled(number));
        } catch (const Failure& failure) {
            report.Fail(failure.what());
            continue;
        }
        take(*result);
        report.CountDone();
        progress(static_cast<std::int64_t>(i + 1), static_cast<std::int64_t>(document.numbers.size()));
    }
}

// To one output.
void ExportDocument(const ExportJob& job, OpenedDocument& opened, const std::string& target, ExportReport& report)
{
    const ExportFormatEntry& format = EntryOf(job.choices.format);
    const ExportedDocument document{BaseName(opened.path)};
    const bool isByName = format.makeOnFile != nullptr;
    ExportOutput output(target, isByName ? ExportOutput::Writer::ByName : ExportOutput::Writer::Stream);
    const auto exporter = isByName ? format.makeOnFile(output.temporary(), document, job.choices, report)
                                   : format.makeOnStream(output.stream(), document, job.choices, report);
    ReadEach(opened, report, [&](const ZelmResult::LabelledResult& result) {
        exporter->Add(result);
        output.CheckSignals();
    });
    report.PrintLeftOut();
    if (report.Exported() == 0) throw Failure("{}: there is nothing to export", Printable(opened.path));
    exporter->Finish();
    output.Commit();
}

} // namespace

void Export(const ExportJob& job)
{
    const ExportFormatEntry& format = EntryOf(job.choices.format);
    if (!format.IsBuilt())
        throw ExportRefusal("this zmxf was built without {}; -D ZELMRESULT_EXPORT_HDF5=ON builds it in", format.name);
    const std::vector<std::string> targets = TargetsOf(job);
    bool isFailed = false;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        ExportReport report(job.documents[i]);
        try {
            OpenedDocument document{job.documents[i], OpenDocument(job.documents[i]), {}};
            document.numbers = job.selection.Require(job.documents[i], ListResults(document.reader, job.documents[i]));
            ExportDocument(job, document, targets[i], report);
            (targets[i] == "-" ? std::cerr : std::cout) << targets[i] << ": " << report.Summary() << '\n';
        } catch (const Failure& failure) {
            report.Fail(failure.what());
        }
        isFailed = isFailed || report.IsFailed();
    }
    if (isFailed) throw ExitStatus{1};
}

} // namespace zmxf
