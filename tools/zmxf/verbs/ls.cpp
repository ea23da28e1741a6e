#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/file_search.h"
#include "tools/zmxf/base/open_document.h"
#include "tools/zmxf/base/selection.h"
#include "tools/zmxf/showing/json_list.h"
#include "tools/zmxf/showing/listing.h"
#include "tools/zmxf/verbs/selection_options.h"
#include "tools/zmxf/verbs/verbs.h"

#include <iostream>
#include <memory>
#include <optional>

namespace zmxf {

namespace {

struct LsOptions {
    std::vector<std::string> places;
    Selection selection;
    bool isRecursive = false;
    bool isLong = false;
    bool isJson = false;
    bool isCsv = false;
};

class Ls {
public:
    explicit Ls(const LsOptions& options) : m_options(options), m_selectable(options.selection) {}

    void Run()
    {
        if (m_options.isJson) m_json.emplace(std::cout, Json::object(), "files");
        if (m_options.isCsv) std::cout << CsvTitles(m_options.isLong);
        for (const FoundFile& file : FindFiles(m_options.places, m_options.isRecursive)) {
            try {
                List(file);
            } catch (const Failure& failure) {
                Complain(failure.what());
            }
        }
        if (m_json) m_json->End();
        if (m_documents == 0 && !m_isFailed) Complain("there are no result documents");
        if (m_documents != 0 && m_options.selection.IsMade() && m_listed == 0)
            Complain("no document has such a result; " + m_selectable.Text());
        if (m_isFailed) throw ExitStatus{1};
    }

private:
    void Complain(const std::string& what)
    {
        PrintFailure(what);
        m_isFailed = true;
    }

    void List(const FoundFile& file)
    {
        if (!file.failure.empty()) throw Failure(file.failure);
        auto reader = file.isNamed ? OpenDocument(file.path) : OpenIfDocument(file.path);
        if (!reader) return;
        const auto all = ListResults(*reader, file.path);
        ++m_documents;
        DocumentList list{file.path, {}, m_options.isLong};
        for (const std::size_t number : m_options.selection.Of(all)) list.entries.push_back({number, all[number]});
        if (m_options.selection.IsMade()) m_selectable.Add(all);
        if (m_options.selection.IsMade() && list.entries.empty()) return;
        m_listed += list.entries.size();
        if (m_options.isLong) AddShapes(*reader, list);
        Print(list);
    }

    void AddShapes(ZelmResult::DocumentReader& reader, DocumentList& list)
    {
        for (ListEntry& entry : list.entries) {
            try {
                entry.shape = ReadShape(reader, list.path, entry.number);
            } catch (const Failure& failure) {
                Complain(failure.what());
            }
        }
    }

    void Print(const DocumentList& list)
    {
        if (m_json)
            m_json->Add(ListJson(list));
        else
            std::cout << (m_options.isCsv ? ListCsv(list) : ListText(list));
    }

    const LsOptions& m_options;
    Selectable m_selectable;
    std::optional<JsonList> m_json;
    std::size_t m_documents = 0;
    std::size_t m_listed = 0; // results
    bool m_isFailed = false;
};

} // namespace

void AddLsVerb(CLI::App& program)
{
    auto options = std::make_shared<LsOptions>();
    CLI::App* verb = program.add_subcommand("ls", "Lists the results of documents, and of the documents in folders");
    verb->add_option("FILE|DIR", options->places, "Result documents, and folders of them")->required();
    verb->add_flag("-r,--recursive", options->isRecursive, "Look into the folders of folders too");
    verb->add_flag("-l,--long", options->isLong,
                   "With the shape and the unit of each result, for which its data is read");
    CLI::Option* json = verb->add_flag("--json", options->isJson, "Print JSON");
    verb->add_flag("--csv", options->isCsv, "Print comma-separated values, a line per result")->excludes(json);
    AddSelectionOptions(*verb, options->selection);
    verb->footer("Example:\n  zmxf ls -r measurements --channel \"Bearing*\" --kind autospectrum");
    verb->callback([options] { Ls(*options).Run(); });
}

} // namespace zmxf
