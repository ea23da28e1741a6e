#include "tools/zmxf/exporting/exported_attributes.h"

#include "tools/zmxf/base/text.h"
#include "tools/zmxf/showing/description.h"
#include "zelmresult/support/text.h"

#include <algorithm>

namespace zmxf {

std::vector<ExportedAttribute> AttributesOf(const ZelmResult::LabelledInformation& information)
{
    const auto whole = [](auto value) { return static_cast<std::int64_t>(value); };
    return {{"number", whole(information.number)},
            {"system", whole(information.system)},
            {"process_type", whole(information.processType)},
            {"process_type_name", information.kind},
            {"kind", information.group},
            {"process", information.process},
            {"channel", information.channel},
            {"channel_number", whole(information.channelNumber)},
            {"reference", information.reference},
            {"reference_number", whole(information.referenceNumber)},
            {"date", IsoDate(information.date)},
            {"caption", information.caption},
            {"comment", information.comment},
            {"analyzer", information.analyzer},
            {"weighting", whole(information.weighting)},
            {"time_weighting", whole(information.timeWeighting)},
            {"window", whole(information.window)}};
}

std::vector<ExportedAttribute> AttributesOf(const ZelmResult::LabelledQuantity& quantity)
{
    std::vector<ExportedAttribute> attributes{{"quantity", quantity.name},
                                              {"quantity_key", quantity.key},
                                              {"quantity_dimension", ZelmResult::FromUtf8(DimensionText(quantity))},
                                              {"si_units", quantity.siSymbol}};
    const auto add = [&attributes](const char* name, auto value) { attributes.push_back({name, value}); };
    // As many as floats have.
    const auto digits = [](auto value) { return ShortestDouble(static_cast<float>(value)); };
    if (quantity.shown) {
        add("shown_units", quantity.shown->label);
        add("shown_per_si", digits(quantity.shown->slope));
        add("shown_offset", digits(quantity.shown->offset));
    }
    if (const auto reference = quantity.ReferenceInSI(); reference) {
        add("decibel_reference_si", digits(*reference));
        add("decibel_factor", digits(quantity.shown->decibelFactor));
    }
    return attributes;
}

ZelmResult::wstring IsoDate(const ZelmResult::OTime& date)
{
    ZelmResult::wstring text = ZelmResult::FromUtf8(DateText(date));
    std::replace(text.begin(), text.end(), u' ', u'T');
    return text;
}

} // namespace zmxf
