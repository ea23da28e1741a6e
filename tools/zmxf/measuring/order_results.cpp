#include "tools/zmxf/measuring/order_results.h"

#include "tools/zmxf/base/process_names.h"
#include "zelmresult/results/kinds.h"
#include "zelmresult/results/order_track.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <algorithm>
#include <cmath>

namespace zmxf {

namespace {

using ZelmResult::CRefOrderTrack;
using ZelmResult::CVectorRef;
using ZelmResult::ResultKind;
using ZelmResult::SignalType;

// A reference with a value per slice, in the track's own list.
void AddReference(CRefOrderTrack& track, const ZelmResult::wstring& name, ZelmResult::CGrandeur* quantity,
                  const std::vector<RunUpSlice>& slices, double RunUpSlice::*value)
{
    const auto size = static_cast<std::int32_t>(slices.size());
    auto reference = std::make_unique<CVectorRef>(ResultKind::kOrderTracks, size, name, SignalType::Real);
    std::transform(slices.begin(), slices.end(), reference->GetRefValue(),
                   [value](const RunUpSlice& slice) { return static_cast<float>(slice.*value); });
    const auto [least, most] = std::minmax_element(reference->GetRefValue(), reference->GetRefValue() + size);
    reference->SetRefMin(*least);
    reference->SetRefMax(*most);
    reference->SetFilled(size);
    reference->SetRefMagnitude(quantity);
    track.AddVectorRef(reference.release());
}

// The RMS values of all orders in SI units, one order after the other.
std::vector<float> Table(const OrderTracker& tracker, double factorToSI, std::size_t channel)
{
    std::vector<float> table;
    for (std::size_t order = 0; order < tracker.count(); ++order)
        for (const double power : tracker.powers(order))
            table.push_back(Stored(std::sqrt(power) * factorToSI, channel));
    return table;
}

// The limits of the values that are numbers.
void SetLimits(CRefOrderTrack& track, std::vector<float> table)
{
    std::erase_if(table, [](float value) { return std::isnan(value); });
    if (table.empty()) return;
    const auto [least, most] = std::minmax_element(table.begin(), table.end());
    track.SetYMin(*least);
    track.SetYMax(*most);
}

} // namespace

void AddOrderTracks(MeasuredDocument& document, std::size_t channel, const OrderTracker& tracker)
{
    const CalibratedRecording& recording = document.recording();
    const std::vector<RunUpSlice>& slices = recording.measured.runUp.slices;
    const auto size = static_cast<std::int32_t>(slices.size());
    const auto orders = static_cast<std::int32_t>(tracker.count());
    auto track = std::make_unique<CRefOrderTrack>(ResultKind::kOrderTracks, size, orders, SignalType::Real);
    const std::vector<float> table = Table(tracker, recording.calibrations[channel].FactorToSI(), channel);
    track->SetTables(orders, size, table.data(), nullptr);
    SetLimits(*track, table);
    AddReference(*track, kSpeed, document.Share(SpeedQuantity()), slices, &RunUpSlice::speed);
    AddReference(*track, kTime, document.Share(TimeQuantity()), slices, &RunUpSlice::seconds);
    track->SetReference(kSpeed, nullptr, nullptr);
    track->CReferencedAxis::SetFilled(size);
    track->SetMagnitude(document.SignalOf(channel));
    auto header = document.HeaderOf(channel, ResultKind::kOrderTracks, OrdersName(recording.measured.runUp.orders),
                                    "RMS value per order and slice of a run-up, summed from the lines around it; no "
                                    "value above half of the sample rate and where orders run into each other");
    header->setChosenReference(kSpeed);
    header->SetOpUniteAffichage(kShownAsRms);
    document.Add(std::move(header), std::move(track));
}

} // namespace zmxf
