#include "fuzz/documents.h"
#include "tests/tools/program.h"
#include "tools/zmxf/comparing/result_difference.h"
#include "tools/zmxf/comparing/result_pairs.h"
#include "zelmresult/document/zmxf_file.h"
#include "zelmresult/reading/document_reader.h"
#include "zelmresult/support/text.h"

#include <limits>
#include <set>

namespace zmxf::test {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;
using ZelmResult::LabelledArray;
using ZelmResult::LabelledResult;
using ZelmResult::test::readDiskFile;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

std::vector<LabelledResult> resultsOf(const std::vector<char>& bytes)
{
    auto reader = ZelmResult::DocumentReader::OpenBytes(bytes);
    std::vector<LabelledResult> results;
    for (std::size_t i = 0; i < reader->Results().items.size(); ++i)
        if (auto read = reader->ReadLabelled(i); read) results.push_back(*std::move(read));
    return results;
}

void change(float& value) { value = std::isfinite(value) ? kNan : 0.0F; }
void change(std::complex<float>& value) { value += std::complex<float>(0.0F, 1.0F); }
void change(std::int32_t& value) { ++value; }
void change(ZelmResult::wstring& value) { value += u"'"; }

// The differences of a vector of one value.
std::vector<Difference> compare(float a, float b, const Tolerance& tolerance)
{
    LabelledArray array;
    array.name = u"value";
    array.quantity = ZelmResult::LabelledQuantity();
    array.quantity->shown = ZelmResult::LabelledUnit{u"Pa", 1.0, 0.0, 2e-5F, 20.0F};
    LabelledResult first;
    array.values = std::vector{a};
    first.data = {array};
    LabelledResult second;
    array.values = std::vector{b};
    second.data = {array};
    return CompareResults(first, second, tolerance);
}

class Diff : public Program {
protected:
    // Two channels, and a copy whose second channel is louder by 1 %.
    void SetUp() override
    {
        std::vector<double> samples = sineAndConstant();
        ASSERT_EQ(Analyze({"--block-size", "4096"}, samples, 2).status, 0);
        for (std::size_t i = 1; i < samples.size(); i += 2) samples[i] *= 1.01;
        writeSound(recording, samples, 2, kWavDouble);
        ASSERT_EQ(zmxf({"analyze", recording, "-o", louder, "--block-size", "4096"}).status, 0);
    }

    const std::string louder = folder.file("louder.zmxf");
};

} // namespace

TEST(Compared, OneChangedValueOfAnyArrayIsFound)
{
    const ZelmResult::test::UseBackend back(ZelmResult::CMmioFile::DefaultBackend()); // the samples change it
    std::set<ZelmResult::LabelledForm> forms;
    for (const auto& bytes : ZelmResult::fuzz::WholeDocuments())
        for (const LabelledResult& result : resultsOf(bytes)) {
            EXPECT_THAT(CompareResults(result, result, {}), IsEmpty());
            LabelledResult other = result;
            for (auto* arrays : {&other.coordinates, &other.data})
                for (LabelledArray& array : *arrays) {
                    const LabelledArray former = array;
                    if (former.Size() == 0) continue;
                    std::visit([](auto& values) { change(values.back()); }, array.values);
                    const auto found = CompareResults(result, other, {.relative = 1e-3});
                    ASSERT_FALSE(found.empty()) << ZelmResult::ToUtf8(array.name);
                    EXPECT_EQ(found.front().array, ZelmResult::ToUtf8(array.name));
                    EXPECT_EQ(found.front().differing, 1U);
                    for (std::size_t i = 0; i < array.shape.size(); ++i)
                        EXPECT_EQ(found.front().largest->index.at(i), array.shape[i] - 1);
                    array = former;
                    forms.insert(result.form);
                }
        }
    EXPECT_GE(forms.size(), 8U) << "order tracks and overviews are empty there";
}

TEST(Compared, TolerancesAddUpAndKnowSigns)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    EXPECT_THAT(compare(kNan, kNan, {}), IsEmpty());
    EXPECT_THAT(compare(infinity, infinity, {}), IsEmpty());
    EXPECT_THAT(compare(0.0F, -0.0F, {}), IsEmpty());
    for (const float other : {kNan, infinity, -infinity})
        EXPECT_THAT(compare(1, other, {.relative = 1e9, .absolute = 1e9, .decibels = 1e9}), Not(IsEmpty())) << other;
    EXPECT_THAT(compare(100, 90, {.relative = 0.09}), Not(IsEmpty()));
    EXPECT_THAT(compare(100, 90, {.absolute = 9}), Not(IsEmpty()));
    EXPECT_THAT(compare(90, 100, {.relative = 0.05, .absolute = 5}), IsEmpty());
    EXPECT_THAT(compare(1, 2, {.decibels = 6.03}), IsEmpty());
    EXPECT_THAT(compare(2, 1, {.decibels = 6.02}), Not(IsEmpty())) << "6.0206 dB";
    EXPECT_THAT(compare(-1, -2, {.decibels = 6.03}), IsEmpty());
    EXPECT_THAT(compare(1, -1, {.decibels = 6.03}), Not(IsEmpty()));
    const auto found = compare(2, 1, {});
    EXPECT_EQ(found.front().largest->share, 0.5);
}

TEST(Compared, ResultsPairBySubjectAndOccurrence)
{
    const auto listed = [](std::uint32_t type, const char16_t* channel, std::int32_t number, std::int32_t system = 0) {
        auto header = std::make_shared<ZelmResult::CResultHeader>();
        header->SetProcessType(type);
        header->setResponseName(channel);
        header->SetNumReponse(number);
        return ZelmResult::ListedResult{system, header, {}, {}};
    };
    const std::vector a{listed(10, u"x", 1), listed(10, u"x", 2), listed(2, u"", 1), listed(2, u"", 2),
                        listed(9, u"y", 1, 1)};
    const std::vector b{listed(2, u"", 2), listed(10, u"x", 7), listed(10, u"x", 8), listed(10, u"x", 9),
                        listed(9, u"y", 1)};
    const std::vector<std::size_t> all{0, 1, 2, 3, 4};
    const ResultPairs paired = PairResults(a, all, b, all);
    EXPECT_THAT(paired.pairs, ElementsAre(Pair(0, 1), Pair(1, 2), Pair(3, 0)));
    EXPECT_THAT(paired.onlyInA, ElementsAre(2, 4));
    EXPECT_THAT(paired.onlyInB, ElementsAre(3, 4));
}

TEST_F(Diff, OfADocumentAndItsCopySaysThatTheyAreEqual)
{
    ZelmResult::CZMXFFile file(true, false);
    ASSERT_TRUE(file.Load(ZelmResult::FromUtf8(document).c_str(), ZelmResult::ZMXFFileLoadScope::all()));
    file.NeedToRemoveEverything(true);
    const std::string copy = folder.file("copy.zmxf");
    ASSERT_TRUE(file.Save(ZelmResult::FromUtf8(copy).c_str()));
    const Outcome equal = zmxf({"diff", document, copy});
    EXPECT_EQ(equal.status, 0) << equal.out << equal.err;
    EXPECT_THAT(equal.out, HasSubstr("are equal: 28 results"));
    for (const char* name : {"whole", "whole_references", "whole_branches", "whole_lxf"}) {
        const std::string path = std::string(ZELMRESULT_TEST_DATA_DIR) + "/" + name + ".zmxf";
        EXPECT_EQ(zmxf({"diff", path, path}).status, 0) << name;
    }
}

TEST_F(Diff, NamesWhatDiffersMostAndWhere)
{
    const Outcome run = zmxf({"diff", document, louder, "--json"});
    EXPECT_EQ(run.status, 5);
    const nlohmann::json found = run.json();
    EXPECT_FALSE(found["equal"]);
    for (const auto& result : found["results"]) EXPECT_NE(result["response"], "Channel 1") << result;
    EXPECT_EQ(found["largest"]["array"], "energy");
    EXPECT_NEAR(found["largest"]["share"], 1.0 - 1.0 / (1.01 * 1.01), 1e-6);
    EXPECT_EQ(found["recording"][0]["place"], "System 0, Channel 2, minimum");

    const std::vector<std::string> rms{"diff", document, louder, "--channel", "2", "--name", "RMS"};
    const Outcome text = zmxf(rms);
    EXPECT_EQ(text.status, 5);
    EXPECT_THAT(text.out, AllOf(HasSubstr("1 of 1 common result differ"), HasSubstr("Channel 2: "),
                                HasSubstr("250 mFS in A"), HasSubstr("0.99 %")));
    const auto with = [&rms](const char* option, const char* value) {
        std::vector<std::string> arguments = rms;
        arguments.insert(arguments.end(), {option, value});
        return zmxf(arguments).status;
    };
    EXPECT_EQ(with("--rtol", "0.0099"), 5);
    EXPECT_EQ(with("--rtol", "0.00991"), 0);
    EXPECT_EQ(with("--atol", "0.00251"), 0);
    EXPECT_EQ(with("--db-tolerance", "0.087"), 0);
    EXPECT_EQ(with("--db-tolerance", "0.086"), 5);
    EXPECT_EQ(with("--rtol", "-1"), 2);
    expectFailure(zmxf({"diff", document, louder, "--channel", "none"}), 1, "there are channels Channel 1, Channel 2");
}

TEST_F(Diff, NamesWhatOneOfThemLacks)
{
    const std::string other = folder.file("other.zmxf");
    ASSERT_EQ(zmxf({"analyze", recording, "-o", other, "--block-size", "2048", "--reference", "2"}).status, 0);
    const nlohmann::json found = zmxf({"diff", louder, other, "--json"}).json();
    EXPECT_EQ(found["onlyInA"][0]["kind"], "coherence");
    EXPECT_EQ(found["onlyInB"][0]["reference"], "Channel 2");
    EXPECT_EQ(found["results"][0]["differences"][0]["array"], "frequency");
    EXPECT_EQ(found["results"][0]["differences"][0]["what"], "shape");
    EXPECT_EQ(found["settings"][0]["place"], "System 0, Analysis, Autospectra, Block size");
    EXPECT_EQ(found["settings"][0]["a"], 4096);
    EXPECT_THAT(found["recording"], IsEmpty());
}

TEST_F(Diff, OfADamagedDocumentFails)
{
    const std::string whole = readDiskFile(document);
    write(louder, whole.substr(0, whole.size() - 100));
    expectFailure(zmxf({"diff", document, louder}), 1, "louder.zmxf: it ends after");
    const int number = zmxf({"ls", document, "--json", "--kind", "frf"}).json()["files"][0]["results"][0]["number"];
    auto reader = ZelmResult::DocumentReader::OpenBytes(std::span(whole.data(), whole.size()));
    std::string damaged = whole;
    const auto data = static_cast<std::size_t>(reader->Results().items[static_cast<std::size_t>(number)].data.offset);
    damaged.replace(data + 8, 60, 60, '\xFF');
    write(louder, damaged);
    const Outcome run = zmxf({"diff", document, louder});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("louder.zmxf: the data of result"));
    EXPECT_THAT(run.out, Not(HasSubstr("equal")));
}

} // namespace zmxf::test
