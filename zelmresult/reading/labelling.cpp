#include "zelmresult/reading/labelling.h"

#include "zelmresult/document/result_header.h"
#include "zelmresult/reading/labelled_parts.h"
#include "zelmresult/reading/stored_result.h"
#include "zelmresult/results/kinds.h"
#include "zelmresult/results/vector.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/waterfall.h"

#include <algorithm>

namespace ZelmResult {

namespace {

LabelledInformation InformationOf(const StoredResult& stored, std::size_t number)
{
    const CResultHeader& header = stored.header();
    LabelledInformation information;
    information.number = number;
    information.system = stored.system();
    information.processType = header.GetProcessType();
    const ResultKind& kind = ResultKind::Of(header.GetProcessType());
    information.group = FromUtf8(ResultKind::NameOf(kind.GroupAt(static_cast<int>(header.GetWaterfallDimension()))));
    information.kind = FromUtf8(kind.name);
    information.process = header.processCaption();
    information.channel = header.responseName();
    information.channelNumber = header.GetNumReponse();
    information.reference = header.referenceName();
    information.referenceNumber = header.GetNumReference();
    information.date = header.date();
    information.caption = header.caption();
    information.comment = header.comment();
    information.analyzer = header.analyzerCaption();
    information.weighting = header.GetPonderation();
    information.timeWeighting = header.GetPonderationTemporelle();
    information.window = header.GetNumWindow().toInt();
    return information;
}

} // namespace

std::uint64_t ReferenceBytesOf(CResult& result)
{
    const CReferencedAxis* axis = result.GetReferencedAxis();
    const auto* references = axis != nullptr ? axis->GetReferencesList() : nullptr;
    if (references == nullptr) return 0;
    const auto* waterfall = dynamic_cast<const CWaterfall*>(&result);
    std::size_t points = static_cast<std::size_t>(std::max(result.GetFilled(), 0));
    if (waterfall != nullptr) points = std::max(points, waterfall->StoredBlocks().size());
    if (const auto* vector = dynamic_cast<const CVector*>(&result); vector != nullptr)
        points = static_cast<std::size_t>(std::max(vector->GetSize(), 0));
    return std::uint64_t{references->size()} * points * sizeof(float);
}

std::optional<LabelledResult> Label(StoredResult& stored, std::size_t number, bool hasSlices)
{
    LabelledResult labelled;
    labelled.information = InformationOf(stored, number);
    labelled.quantity = LabelledQuantity::Of(stored.result().GetMagnitude());
    labelled.lostReferences = stored.lostReferences();
    CResult& result = stored.result();
    const bool hasClass = labelled::AddWaterfall(result, hasSlices, labelled) ||
                          labelled::AddLevels(result, labelled) || labelled::AddVector(result, labelled);
    return hasClass ? std::optional(std::move(labelled)) : std::nullopt;
}

void DropSlices(LabelledResult& labelled, std::int32_t index)
{
    for (auto* arrays : {&labelled.coordinates, &labelled.data})
        for (LabelledArray& array : *arrays) {
            if (array.dimensions.empty() || array.dimensions.front() != u"slice") continue;
            array.dimensions.erase(array.dimensions.begin());
            array.shape.erase(array.shape.begin());
        }
    labelled.coordinates.insert(labelled.coordinates.begin(),
                                labelled::Array(u"slice", u"Slice", {}, std::vector<std::int32_t>{index}));
}

} // namespace ZelmResult
