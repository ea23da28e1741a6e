#include "tools/zmxf/exporting/export_job.h"

#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/open_document.h"
#include "tools/zmxf/base/progress.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/exporting/csv_tables.h"
#include "tools/zmxf/exporting/export_formats.h"
#include "tools/zmxf/exporting/export_output.h"
#include "tools/zmxf/exporting/export_report.h"
#include "tools/zmxf/exporting/export_targets.h"

#include <fmt/format.h>
#include <functional>
#include <iostream>
#include <memory>
#include <new>

namespace zmxf {

namespace {

using ZelmResult::LabelledResult;
using ZelmResult::ResultGroup;
using Writer = ExportOutput::Writer;

// A document of the job, and what of it is exported.
struct OpenedDocument {
    std::string path;
    ZelmResult::DocumentReader reader;
    std::vector<std::size_t> numbers;
};

class ExportRun {
public:
    explicit ExportRun(const ExportJob& job) : m_job(job), m_selectable(job.selection), m_plan(PlanOf(job)) {}

    void Run()
    {
        if (m_plan.layout == ExportPlan::Layout::OneFile)
            ToOneFile();
        else
            ForEachDocument([this](std::size_t i, OpenedDocument& document, ExportReport& report) {
                Try(document.path, [&] { ToTarget(document, m_plan.targets[i], report); });
            });
        if (m_found == 0 && !m_isFailed) Complain(Nothing());
        if (m_isFailed) throw ExitStatus{1};
    }

private:
    using Work = std::function<void(std::size_t, OpenedDocument&, ExportReport&)>;

    void Complain(const std::string& what)
    {
        PrintFailure(what);
        m_isFailed = true;
    }

    [[nodiscard]] std::string Nothing() const
    {
        if (m_job.choices.levelsOnly) return "there are no levels to export";
        return m_job.selection.IsMade() ? "no document has such a result; " + m_selectable.Text()
                                        : "there are no results to export";
    }

    // What fails for one document leaves the others alone.
    template <class Do>
    void Try(const std::string& document, const Do& work)
    {
        try {
            work();
        } catch (const std::bad_alloc&) {
            Complain(fmt::format("{}: not enough memory", document));
        } catch (const Failure& failure) {
            Complain(failure.what());
        }
    }

    // Those that can be opened and hold something for the job.
    void ForEachDocument(const Work& work)
    {
        for (std::size_t i = 0; i < m_job.documents.size(); ++i) {
            const std::string& path = m_job.documents[i];
            std::optional<OpenedDocument> document;
            Try(path, [&] {
                document.emplace(OpenedDocument{path, OpenDocument(path), {}});
                document->numbers = NumbersOf(*document);
                m_selectable.Add(ListResults(document->reader, path));
                m_found += document->numbers.size();
            });
            if (!document || document->numbers.empty()) continue;
            ExportReport report(path);
            work(i, *document, report);
            m_isFailed = m_isFailed || report.IsFailed();
        }
    }

    std::vector<std::size_t> NumbersOf(OpenedDocument& document) const
    {
        const auto all = ListResults(document.reader, document.path);
        const bool isAlone = m_job.documents.size() == 1 && m_job.selection.IsMade();
        std::vector<std::size_t> numbers =
            isAlone ? m_job.selection.Require(document.path, all) : m_job.selection.Of(all);
        if (m_job.choices.levelsOnly)
            std::erase_if(numbers, [all](std::size_t number) {
                const ResultGroup group = GroupOf(*all[number].header);
                return group != ResultGroup::Level && group != ResultGroup::Octave;
            });
        return numbers;
    }

    // Reads what is exported, one by one. Those that can't be read leave the others alone.
    template <class Take>
    static void ReadEach(OpenedDocument& document, ExportReport& report, const Take& take)
    {
        Progress progress(fmt::format("exporting {}", Printable(document.path)));
        const auto all = ListResults(document.reader, document.path);
        for (std::size_t i = 0; i < document.numbers.size(); ++i) {
            const std::size_t number = document.numbers[i];
            std::optional<LabelledResult> result;
            try {
                result = CheckRead(document.path, all[number], number, document.reader.ReadLabelled(number));
            } catch (const Failure& failure) {
                report.Fail(failure.what());
                continue;
            }
            take(*std::move(result));
            report.CountDone();
            progress(static_cast<std::int64_t>(i + 1), static_cast<std::int64_t>(document.numbers.size()));
        }
    }

    void ToTarget(OpenedDocument& document, const std::string& target, ExportReport& report) const
    {
        if (m_plan.layout == ExportPlan::Layout::FilePerDocument)
            ToFile(document, target, report);
        else
            ToFolder(document, target, report);
        Say(target, report.Totals());
    }

    void ToFile(OpenedDocument& opened, const std::string& target, ExportReport& report) const
    {
        const ExportFormatEntry& format = EntryOf(m_job.choices.format);
        const ExportedDocument document{BaseName(opened.path)};
        const bool isByName = format.makeOnFile != nullptr;
        ExportOutput output(target, isByName ? Writer::ByName : Writer::Stream);
        const auto exporter = isByName ? format.makeOnFile(output.temporary(), document, m_job.choices, report)
                                       : format.makeOnStream(output.stream(), document, m_job.choices, report);
        ReadEach(opened, report, [&](const LabelledResult& result) {
            exporter->Add(result);
            output.Check();
        });
        report.PrintNotes();
        if (report.Totals().exported == 0) throw Failure("{}: there is nothing to export", Printable(opened.path));
        exporter->Finish();
        output.Commit();
    }

    void ToFolder(OpenedDocument& opened, const std::string& target, ExportReport& report) const
    {
        MakeFolder(target);
        ReadEach(opened, report, [&](LabelledResult&& result) {
            TabledResult tabled{opened.path, std::move(result)};
            const std::string path = InFolder(target, TableName(tabled.result.information));
            CheckOutput(path, opened.path);
            ExportOutput output(path, Writer::Stream);
            const auto table = MakeCsvTable(output.stream(), m_job.choices);
            table->Announce(tabled);
            table->Add(std::move(tabled));
            table->Finish();
            output.Commit();
        });
    }

    void ToOneFile()
    {
        const std::string& target = m_plan.targets.front();
        ExportOutput output(target, Writer::Stream);
        const auto table = MakeCsvTable(output.stream(), m_job.choices);
        if (table->WantsAnnouncements()) Announce(*table);
        ExportTotals totals;
        ForEachDocument([&](std::size_t, OpenedDocument& document, ExportReport& report) {
            CheckFitsOneTable();
            ReadEach(document, report, [&](LabelledResult&& result) {
                table->Add({document.path, std::move(result)});
                output.Check();
            });
            totals += report.Totals();
        });
        if (totals.exported == 0) return;
        table->Finish();
        output.Commit();
        Say(target, totals);
    }

    // What can't be read is reported when it is to be added.
    void Announce(CsvTable& table) const
    {
        for (const std::string& path : m_job.documents) {
            try {
                OpenedDocument document{path, OpenDocument(path), {}};
                for (const std::size_t number : NumbersOf(document))
                    if (auto read = document.reader.ReadLabelled(number); read)
                        table.Announce({document.path, *std::move(read)});
            } catch (const Failure&) {
                continue;
            }
        }
    }

    void CheckFitsOneTable() const
    {
        const ExportChoices& choices = m_job.choices;
        if (m_found > 1 && !choices.isLong && !choices.isJoined && !choices.levelsOnly)
            throw ExportRefusal("{} don't fit into one table: -o must name a folder, or use --join, --levels or --long",
                                Counted(m_found, "result"));
    }

    void Say(const std::string& target, const ExportTotals& totals) const
    {
        if (target != "-")
            std::cout << fmt::format("Exported {} to {}{}\n", Counted(totals.exported, "result"), Printable(target),
                                     totals.leftOut == 0 ? "" : fmt::format(", {} left out", totals.leftOut));
        else if (totals.leftOut != 0)
            PrintFailure(fmt::format("exported {}, {} left out", Counted(totals.exported, "result"), totals.leftOut));
    }

    const ExportJob& m_job;
    Selectable m_selectable;
    ExportPlan m_plan;
    std::size_t m_found = 0; // results that are to be exported
    bool m_isFailed = false;
};

} // namespace

void Export(const ExportJob& job)
{
    const ExportFormatEntry& format = EntryOf(job.choices.format);
    if (!format.IsBuilt())
        throw ExportRefusal("this zmxf was built without {}; -D ZELMRESULT_EXPORT_HDF5=ON builds it in", format.name);
    ExportRun(job).Run();
}

} // namespace zmxf
