#include "tools/zmxf/comparing/document_difference.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/open_document.h"
#include "tools/zmxf/base/progress.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/comparing/result_pairs.h"
#include "tools/zmxf/showing/recording_json.h"
#include "tools/zmxf/showing/settings_json.h"

#include <algorithm>
#include <fmt/format.h>
#include <functional>
#include <span>

namespace zmxf {

namespace {

using ZelmResult::DocumentReader;
using ZelmResult::ListedResult;
using Listed = std::span<const ListedResult>;

bool IsFurther(const Difference* difference, const Difference* than)
{
    return difference != nullptr && (than == nullptr || difference->largest->share > than->largest->share);
}

// One of the two.
struct Side {
    explicit Side(const std::string& opened)
        : path(opened), reader(OpenDocument(opened)), all(ListResults(reader, opened))
    {
    }

    const std::string& path;
    DocumentReader reader;
    Listed all;

    [[nodiscard]] ZelmResult::LabelledResult Read(std::size_t number)
    {
        return CheckRead(path, all[number], number, reader.ReadLabelled(number));
    }
    [[nodiscard]] std::vector<NumberedResult> At(const std::vector<std::size_t>& numbers) const
    {
        std::vector<NumberedResult> results;
        results.reserve(numbers.size());
        for (const std::size_t number : numbers) results.push_back({number, all[number]});
        return results;
    }
};

void ComparePairs(Side& a, Side& b, const ResultPairs& paired, const Tolerance& tolerance, DocumentDifference& found)
{
    Progress progress(fmt::format("comparing {} and {}", Printable(a.path), Printable(b.path)));
    for (const auto& [ofA, ofB] : paired.pairs) {
        try {
            auto differences = CompareResults(a.Read(ofA), b.Read(ofB), tolerance);
            if (!differences.empty()) found.results.push_back({{ofA, a.all[ofA]}, ofB, std::move(differences)});
        } catch (const Failure& failure) {
            found.failures.emplace_back(failure.what());
        }
        progress(static_cast<std::int64_t>(++found.compared), static_cast<std::int64_t>(paired.pairs.size()));
    }
}

// Systems belong together by their numbers.
void Name(Json& system)
{
    const std::string number = system["system"].dump();
    system["id"] = number;
    system["title"] = fmt::format("System {}", number);
}

// Those of all systems. The version of the application is no setting, and where a file lies none of its content.
Json SettingsOf(Side& side)
{
    const std::function<void(Json&)> clean = [&clean](Json& json) {
        if (json.is_object())
            for (const char* key : {"application", "projectPath", "modelPath"}) json.erase(key);
        for (Json& below : json)
            if (below.is_structured()) clean(below);
    };
    Json json = Json::array();
    for (const auto& stored : side.reader.ReadSettings()) {
        CheckWhole(side.path, stored.damage);
        json.push_back(SettingsJson(stored));
        Name(json.back());
    }
    clean(json);
    return json;
}

// The name of a recording is that of its file.
Json RecordingsOf(Side& side)
{
    Json json = Json::array();
    for (const auto& stored : side.reader.ReadRecordings()) {
        CheckWhole(side.path, stored.damage());
        Json system = RecordingJson(stored);
        for (const char* key : {"name", "date"})
            if (system["recording"].is_object()) system["recording"].erase(key);
        Name(system);
        json.push_back(std::move(system));
    }
    return json;
}

} // namespace

const Difference* ResultDifference::Largest() const
{
    const Difference* largest = nullptr;
    for (const Difference& difference : differences)
        if (difference.largest && difference.isOfData && IsFurther(&difference, largest)) largest = &difference;
    return largest;
}

bool DocumentDifference::IsEmpty() const
{
    return onlyInA.empty() && onlyInB.empty() && results.empty() && settings.empty() && recordings.empty();
}

const ResultDifference* DocumentDifference::Largest() const
{
    const ResultDifference* largest = nullptr;
    for (const ResultDifference& result : results)
        if (IsFurther(result.Largest(), largest != nullptr ? largest->Largest() : nullptr)) largest = &result;
    return largest;
}

DocumentDifference CompareDocuments(const CompareChoice& choice)
{
    Side a(choice.a);
    Side b(choice.b);
    const auto ofA = choice.selection.Of(a.all);
    const auto ofB = choice.selection.Of(b.all);
    if (choice.selection.IsMade() && ofA.empty() && ofB.empty()) {
        Selectable selectable(choice.selection);
        selectable.Add(a.all);
        selectable.Add(b.all);
        throw Failure("neither document has such a result; {}", selectable.Text());
    }
    DocumentDifference found;
    const ResultPairs paired = PairResults(a.all, ofA, b.all, ofB);
    found.onlyInA = a.At(paired.onlyInA);
    found.onlyInB = b.At(paired.onlyInB);
    if (!choice.selection.IsMade()) {
        found.settings = CompareTrees(SettingsOf(a), SettingsOf(b), choice.tolerance);
        found.recordings = CompareTrees(RecordingsOf(a), RecordingsOf(b), choice.tolerance);
    }
    ComparePairs(a, b, paired, choice.tolerance, found);
    return found;
}

} // namespace zmxf
