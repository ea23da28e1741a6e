#include "tools/zmxf/comparing/difference_report.h"

#include <cmath>

namespace zmxf {

namespace {

Json FiniteJson(double value) { return std::isfinite(value) ? Json(value) : Json(nullptr); }

Json LargestJson(const LargestDifference& largest)
{
    return {{"index", largest.index},
            {"at", largest.at},
            {"a", largest.a},
            {"b", largest.b},
            {"apart", FiniteJson(largest.distance)},
            {"share", FiniteJson(largest.share)}};
}

Json DifferenceOf(const Difference& difference)
{
    Json json{{"what", NameOf(difference.what)}, {"array", difference.array}};
    if (!difference.largest) {
        json["a"] = difference.a;
        json["b"] = difference.b;
        return json;
    }
    json["differing"] = difference.differing;
    json["of"] = difference.count;
    json["largest"] = LargestJson(*difference.largest);
    return json;
}

Json SubjectJson(const NumberedResult& result)
{
    const ZelmResult::CResultHeader& header = *result.listed.header;
    return {{"system", result.listed.system},
            {"processType", header.GetProcessType()},
            {"kind", KindName(header)},
            {"process", JsonText(header.processCaption())},
            {"response", JsonText(header.responseName())},
            {"responseChannel", header.GetNumReponse()},
            {"reference", JsonText(header.referenceName())},
            {"referenceChannel", header.GetNumReference()}};
}

Json ResultJson(const ResultDifference& result)
{
    Json json{{"a", result.a.number}, {"b", result.numberInB}};
    json.update(SubjectJson(result.a));
    json["differences"] = Json::array();
    for (const Difference& difference : result.differences) json["differences"].push_back(DifferenceOf(difference));
    return json;
}

Json OnlyJson(const std::vector<NumberedResult>& results)
{
    Json json = Json::array();
    for (const NumberedResult& result : results) {
        json.push_back({{"number", result.number}});
        json.back().update(SubjectJson(result));
    }
    return json;
}

Json BranchesJson(const std::vector<BranchDifference>& differences)
{
    Json json = Json::array();
    for (const BranchDifference& difference : differences)
        json.push_back({{"place", difference.place}, {"a", difference.a}, {"b", difference.b}});
    return json;
}

} // namespace

Json DifferenceJson(const CompareChoice& choice, const DocumentDifference& found)
{
    Json json{{"a", choice.a},
              {"b", choice.b},
              {"equal", found.IsEmpty() && found.failures.empty()},
              {"compared", found.compared},
              {"largest", nullptr}};
    if (const ResultDifference* result = found.Largest(); result != nullptr) {
        const Difference& largest = *result->Largest();
        json["largest"] = {{"resultOfA", result->a.number}, {"resultOfB", result->numberInB}, {"array", largest.array}};
        json["largest"].update(LargestJson(*largest.largest));
    }
    json["results"] = Json::array();
    for (const ResultDifference& result : found.results) json["results"].push_back(ResultJson(result));
    json["onlyInA"] = OnlyJson(found.onlyInA);
    json["onlyInB"] = OnlyJson(found.onlyInB);
    json["settings"] = BranchesJson(found.settings);
    json["recording"] = BranchesJson(found.recordings);
    return json;
}

} // namespace zmxf
