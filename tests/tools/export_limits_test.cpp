#include "tools/zmxf/exporting/exporter.h"
#include "tools/zmxf/exporting/mat_value.h"
#include "tools/zmxf/exporting/uff_axis.h"

#include <gmock/gmock.h>
#include <sstream>

// What formats of exports can't hold.

namespace zmxf::test {

namespace {

using ::testing::ElementsAreArray;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ZelmResult::LabelledQuantity;

class Notes : public ExportNotes {
public:
    void LeaveOut(const ZelmResult::LabelledResult& /*result*/, const std::string& why) override { leftOut = why; }
    void Warn(const ZelmResult::LabelledResult& /*result*/, const std::string& /*what*/) override {}

    std::string leftOut;
};

} // namespace

TEST(ExportLimits, UnitsOfUniversalFilesAreOfLengthForceAndTemperature)
{
    struct Row {
        std::uint16_t type;
        std::array<double, LabelledQuantity::kBaseUnits> exponents; // rad sr m kg s A K mol cd
        std::array<int, 4> expected;                                // type, exponents of length, force, temperature
        const char* leftOver;
    };
    for (const Row& row : {Row{15, {0, 0, -1, 1, -2, 0, 0, 0, 0}, {15, -2, 1, 0}, ""},
                           Row{1, {0, 0, -1, 1, -2, 0, 0, 0, 0}, {1, -2, 1, 0}, ""},
                           Row{4, {0, 0, 1, 0, -2, 0, 1, 0, 0}, {1, 1, 0, 1}, ": s^-2 is left over"},
                           Row{0, {0, 0, 0.5, 0, 0, 0, 0, 0, 0}, {1, 0, 0, 0}, ": m^0.5 is left over"},
                           Row{0, {0, 0, 0, 0, 1, 0, 0, 0, 0}, {17, 0, 0, 0}, ""}, Row{0, {}, {0, 0, 0, 0}, ""},
                           Row{19, {1, 0, 0, 0, -1, 0, 0, 0, 0}, {19, 0, 0, 0}, ""},
                           Row{19, {0, 0, 1, 0, -1, 0, 0, 0, 0}, {1, 1, 0, 0}, ": s^-1 is left over"}}) {
        LabelledQuantity quantity;
        quantity.uffType = row.type;
        quantity.exponents = row.exponents;
        std::string warnings;
        const UffAxis axis = UffAxisOf(quantity, u"", [&](const std::string& what) { warnings += what; });
        EXPECT_THAT((std::array{axis.type, axis.length, axis.force, axis.temperature}), ElementsAreArray(row.expected))
            << row.type;
        EXPECT_THAT(warnings, EndsWith(row.leftOver));
        EXPECT_EQ(warnings.empty(), *row.leftOver == '\0') << warnings;
        EXPECT_FLOAT_EQ(axis(1.0F), axis.type == UffAxis::kSpeed ? 9.5492966F : 1.0F);
    }
}

TEST(ExportLimits, QuotientsAreToldFromProducts)
{
    LabelledQuantity length;
    length.exponents[LabelledQuantity::Meter] = 1.0;
    LabelledQuantity both;
    both.operands = {length, length};
    EXPECT_TRUE(both.IsQuotient());
    both.exponents[LabelledQuantity::Meter] = 2.0;
    EXPECT_FALSE(both.IsQuotient());
}

TEST(ExportLimits, FieldsOfMatFilesHaveNamesOfTheirOwn)
{
    MatNames names;
    const ZelmResult::wstring manyLetters(40, u'a');
    EXPECT_EQ(names.Take(u"1/\u00E9 t"), "x_1_e_t");
    EXPECT_EQ(names.Take(u"end"), "x_end");
    EXPECT_EQ(names.Take(u""), "x_");
    EXPECT_EQ(names.Take(u"a b"), "a_b");
    EXPECT_EQ(names.Take(u"a_b"), "a_b_2");
    EXPECT_EQ(names.Take(manyLetters), std::string(31, 'a'));
    EXPECT_EQ(names.Take(manyLetters), std::string(29, 'a') + "_2");
}

TEST(ExportLimits, MatFilesHaveVariablesBelow2GiB)
{
    // Its values are never looked at.
    const auto sizeOf = [](std::size_t slices) {
        ZelmResult::LabelledResult waterfall;
        ZelmResult::LabelledArray values;
        values.name = u"value";
        values.dimensions = {u"slice", u"frequency"};
        values.shape = {slices, 32768};
        waterfall.data = {values};
        return waterfall;
    };
    std::ostringstream output;
    Notes notes;
    const ExportedDocument document;
    const ExportChoices choices;
    const auto exporter = MakeMatExporter(output, document, choices, notes);
    const auto start = output.tellp();
    exporter->Add(sizeOf(16384));
    EXPECT_EQ(output.tellp(), start);
    EXPECT_THAT(notes.leftOut, HasSubstr("hdf5"));
    notes.leftOut.clear();
    exporter->Add(sizeOf(0));
    EXPECT_THAT(notes.leftOut, IsEmpty());
}

} // namespace zmxf::test
