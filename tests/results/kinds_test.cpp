// What the kinds of results are: classes, classification, masks, export. The lists stand as texts, to be compared by
// eye.

#include "zelmresult/document/result_export_policy.h"
#include "zelmresult/document/result_header.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/result_factory.h"
#include "zelmresult/results/result_mask.h"
#include "zelmresult/results/rr_index.h"
#include "zelmresult/results/scalar.h"
#include "zelmresult/waterfalls/ref_waterfall.h"

#include <cxxabi.h>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <typeinfo>

namespace ZelmResult {
namespace {

using Process = otype::ElementaryResultProcess;

// The numbers of "1 2 9-15".
std::set<int> Kinds(const char* text)
{
    std::set<int> kinds;
    std::istringstream in(text);
    for (int first = 0; in >> first;) {
        int last = first;
        if (in.peek() == '-') in.ignore() >> last;
        for (int kind = first; kind <= last; ++kind) kinds.insert(kind);
    }
    return kinds;
}

std::string ClassOf(const CResult& result)
{
    const std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(typeid(result).name(), nullptr, nullptr, nullptr), std::free);
    return std::string(name.get()).substr(std::string("ZelmResult::").size());
}

// Class, size and type, and whether it may have a phase.
std::string Description(const CResult& result)
{
    if (const auto* pair = dynamic_cast<const CDoubleResult*>(&result); pair != nullptr) {
        EXPECT_EQ(Description(*pair->GetMinVector()), Description(*pair->GetMaxVector()));
        EXPECT_EQ(pair->GetSize(), pair->GetMinVector()->GetSize());
        return "pair of " + Description(*pair->GetMinVector());
    }
    std::ostringstream text;
    text << ClassOf(result) << ' ' << result.GetSize() << ' ' << static_cast<int>(result.GetComplexType());
    const auto* scalar = dynamic_cast<const CScalar*>(&result);
    return text.str() + (scalar != nullptr && scalar->IsPhasePossible() ? " phase" : "");
}

TEST(ResultFactory, MakesTheClassOfEachKind)
{
    const std::pair<const char*, const char*> withoutWaterfall[] = {
        {"1 19 130 135 141 175 176 279", "CRegVector 256 0"},
        {"2 33 81 91 144 146 159 162 174 177 179 181 198 221 222 286 287 300", "CRegVector 401 0"},
        {"3 20 21 83 86 87 147 197 200 223-230 274 275 288-295 301-306", "CRegVector 1024 0"},
        {"4 5 6 17 31 32 80 82 90 118 124 127 143 145 170-173 178 180 282-285 310", "CRegVector 401 1"},
        {"18 24 38 137 138 183", "CRegVector 31 2"},
        {"131", "CRegVector 31 3"},
        {"132 139", "CRegVector 31 4"},
        {"133 140", "CRegVector 31 5"},
        {"9-15 42 47-56 75 84 85 88 108 134 136 182 193 194 201-208 219 220 250-253 255 267 271 272 273 276 278 280 "
         "311",
         "CScalar 1 0"},
        {"100-107", "CScalar 1 0 phase"},
        {"16 37 122 126 129 257 259-266 307 308", "CRefVector 401 0"},
        {"43 76 77 79 89 117 128 185 254 256 268 277 281 309 312", "CRefVector 256 0"},
        {"109-116 186", "CRefVector 256 1"},
        {"40 123", "pair of CRefVector 401 0"},
        {"119 125", "pair of CRegVector 401 0"},
        {"22", "CRefOrderTrack 256 1"},
        {"25 30 191 313", "CCompressedVector 3200 6"},
        {"270", "CCompressedScalar 3200 6"},
        {"29", "CGlobalLevel 1 0"},
        {"44", "CSuiviOrdre 9 0"},
        {"46", "CBroadBand 54 0"},
        {"187", "CWaterfall 0 0"}};
    std::map<int, std::string> plain;
    for (const auto& [kinds, made] : withoutWaterfall)
        for (const int kind : Kinds(kinds)) ASSERT_TRUE(plain.emplace(kind, made).second) << kind << " twice";
    const std::set<int> octaves = Kinds("18 24 131-133"), bare = Kinds("141 144 146-158 160 161 163 164");
    const std::map<int, int> singles = {{40, 37}, {119, 118}, {123, 122}, {125, 124}};
    for (int kind = -5; kind <= 320; ++kind) {
        SCOPED_TRACE(kind);
        const auto made = [kind](int dimension) {
            return ResultFactory::create(Process::fromInteger(kind), dimension, u"Time");
        };
        const auto result = made(0);
        EXPECT_EQ(result == nullptr ? "" : Description(*result), plain.contains(kind) ? plain[kind] : "");
        if (const auto* pair = dynamic_cast<const CDoubleResult*>(result.get()); pair != nullptr) {
            EXPECT_EQ(static_cast<int>(pair->GetMaxVector()->GetProcessType()), singles.at(kind)) << "not its own kind";
        } else if (result != nullptr && kind != 187) {
            EXPECT_EQ(static_cast<int>(result->GetProcessType()), kind);
        }
        EXPECT_EQ(ClassOf(*made(2)), octaves.contains(kind) ? "CWtfOctave" : "CWaterfall");
        for (const int dimension : {-1, 3, 4, 6}) EXPECT_EQ(made(dimension), nullptr);
        for (const int dimension : {1, 5}) {
            const auto series = made(dimension);
            const std::unique_ptr<CWaterfallRef> reference(
                dynamic_cast<const CRefWaterfall&>(*series).GetMyVecteurReference());
            ASSERT_EQ(reference != nullptr, dimension == 1 && !bare.contains(kind));
            if (reference == nullptr) continue;
            EXPECT_TRUE(reference->GetMyRefVect() == series.get() && reference->GetSize() == 100);
            EXPECT_EQ(reference->IsTacho(), ResultFactory::IsTachoProcessType(static_cast<std::uint32_t>(kind)));
        }
    }
}

TEST(ResultKinds, Classification)
{
    const auto of = [](bool (*classify)(Process)) {
        return [classify](int kind) { return classify(Process::fromInteger(kind)); };
    };
    const auto generator = [](int second) {
        return [second](int kind) {
            return ResultMask::isMaskGenerator(
                otype::ResultProcess::fromElementaryCouple(Process::fromInteger(kind), Process::fromInteger(second)));
        };
    };
    const auto octave = [](int target) {
        return [target](unsigned kind) { return CResult::GetOctaveTarget(kind) == AvgOctaveTarget(target); };
    };
    const char* const generators =
        "9-15 42 47-56 75 88 100-107 134 136 150-153 155-158 193 194 253 255 267 271-273 278";
    const std::pair<const char*, std::function<bool(int)>> rows[] = {
        {"24 131 138", octave(1)},
        {"18 38 137 183", octave(2)},
        {"132 139", octave(3)},
        {"133 140", octave(4)},
        {"257 259-266", CResult::IsProcessOrbit},
        {"5 6 31 32 170-173 282-285", CResult::IsXSpectrum},
        {"2 4-6 17 18 24 31 32 37 38 80-82 90 91 118 122 124 131-133 137-140 143-146 170-173 177-180 183 198 199 "
         "282-285 310",
         CResult::IsSpectral},
        {"2 4 17 37 40 80-82 90 91 100-116 118 119 143-146 151-153 155-158 177-180 186 198 310",
         CResult::IsRmsPeakPossible},
        {"42 75 88 253 267 278 296 297", ResultFactory::IsTachoProcessType},
        {"37-41 118 119 122-127 129", of(ResultMask::isMask)},
        {"37 38 118 122 124 126 127 129", of(ResultMask::isMaskSingle)},
        {"40 119 123 125", of(ResultMask::isMaskDouble)},
        {"118 119 124 125 127", of(ResultMask::isMaskInterpolated)},
        {"37 40 118 119 122-125", of(ResultMask::isMaskNarrowBands)},
        {"126 127 129", of(ResultMask::isMaskProfile)},
        {"38", of(ResultMask::isMaskNOctave)},
        {generators, generator(1)},
        {generators, generator(-1)},
        {"2 4 17 18 24 37-41 80-82 90 91 118 119 122-127 129 131-133 137-140 143-146 198 221-228 287-293 310",
         generator(0)}};
    for (const auto& [kinds, classify] : rows)
        for (int kind = 0; kind <= 400; ++kind)
            EXPECT_EQ(classify(kind), Kinds(kinds).contains(kind)) << kind << " in " << kinds;
}

TEST(ResultKinds, MaskForms)
{
    const auto maps = [](Process (*map)(Process), const std::map<int, int>& pairs, bool keepsOthers) {
        for (int kind = 0; kind <= 400; ++kind) {
            const int other = keepsOthers ? kind : 37;
            EXPECT_EQ(map(Process::fromInteger(kind)).toInteger(), pairs.contains(kind) ? pairs.at(kind) : other);
        }
    };
    maps(ResultMask::maskSingle, {{119, 118}, {123, 122}, {125, 124}}, false);
    maps(ResultMask::maskDouble, {{37, 40}, {118, 119}, {122, 123}, {124, 125}}, false);
    maps(ResultMask::maskInterpolated, {{37, 118}, {40, 119}, {122, 124}, {123, 125}, {126, 127}, {129, 127}}, true);
    maps(ResultMask::maskNotInterpolated, {{118, 37}, {119, 40}, {124, 122}, {125, 123}, {127, 126}}, true);
    EXPECT_TRUE(RRIndex::generateMinusOne() < RRIndex::generateIndex(0)) << "signed";
}

TEST(ResultExportPolicy, EveryBranch)
{
    const auto at = [](unsigned short module, unsigned short submodule) {
        return idn::Legacy(module, submodule, 3).toIdn();
    };
    const idn::Idn nowhere = at(0, 0), input = at(5, 0), generator = at(400, 2), submodule = at(0, 400);
    const struct {
        unsigned opere, typeOpere;
        bool displayed;
        idn::Idn response;
        unsigned type, process;
        int context, preference, policy;
    } rows[] = {{0, 0, false, nowhere, 0, 1, 0, 0, 2}, // no candidate
                {0, 0, true, input, 0, 1, 0, 0, 1},      {1, 0, true, input, 0, 1, 0, 0, 2},
                {1, 0, true, submodule, 0, 1, 0, 0, 2},  {1, 0, false, nowhere, 0, 1, 0, 0, 1},
                {1, 0, false, generator, 0, 1, 0, 0, 1}, {3, 0, true, nowhere, 0, 1, 0, 0, 2},
                {2, 2, false, input, 2, 1, 1, 1, 1}, // not complex
                {2, 1, false, input, 1, 1, 2, 1, 1},     {2, 2, false, input, 1, 1, 0, 0, 2},
                {2, 2, false, input, 1, 186, 0, 1, 1}, // the toolkit, whatever is preferred
                {2, 2, false, input, 1, 1, 1, 2, 1},     {2, 2, false, input, 1, 1, 1, 1, 2},
                {2, 1, false, input, 1, 1, 1, 1, 1},     {2, 1, false, input, 1, 1, 1, 0, 2},
                {2, 1, false, input, 1, 186, 1, 0, 1}}; // the host application
    ResultExportPolicy policy;
    for (const auto& row : rows) {
        CResultHeader header;
        header.SetOpere(row.opere), header.SetTypeResultatOpere(row.typeOpere);
        header.SetToBeDisplayed(row.displayed), header.SetIdnResponse(row.response);
        policy.setContext(ResultExportPolicy::Context(row.context));
        policy.setComplexPreference(ResultExportPolicy::ComplexPreference(row.preference));
        const CScalar result(row.process, 1, SignalType(row.type), false);
        EXPECT_EQ(static_cast<int>(policy.policy(&header, &result)), row.policy) << "row " << &row - rows;
        EXPECT_EQ(policy.policy(nullptr, &result), ResultExportPolicy::Policy::Missing);
        EXPECT_EQ(policy.policy(&header, nullptr), ResultExportPolicy::Policy::Missing);
    }
}

} // namespace
} // namespace ZelmResult
