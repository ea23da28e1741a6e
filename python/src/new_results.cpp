#include "python/src/new_results.h"

#include "zelmresult/results/kinds.h"
#include "zelmresult/results/order_track.h"
#include "zelmresult/results/reg_vector.h"
#include "zelmresult/results/result_factory.h"
#include "zelmresult/results/scalar.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/ref_waterfall.h"
#include "zelmresult/waterfalls/vector_ref.h"
#include "zelmresult/waterfalls/waterfall.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <span>

namespace binding {

namespace {

using ZelmResult::AvgOctaveTarget;
using ZelmResult::CListVectorRef;
using ZelmResult::CRefWaterfall;
using ZelmResult::CRegVector;
using ZelmResult::CWaterfall;
using ZelmResult::FromUtf8;
using ZelmResult::SignalType;

std::uint32_t KindOf(const py::dict& header) { return header["process_type"].cast<std::uint32_t>(); }

std::int32_t SizeOf(py::ssize_t size)
{
    if (size > std::numeric_limits<std::int32_t>::max()) throw py::value_error("too many values for a result");
    return static_cast<std::int32_t>(size);
}

std::span<const float> SpanOf(const Floats& values) { return {values.data(), static_cast<std::size_t>(values.size())}; }

EvenAxis AxisOf(const py::tuple& axis)
{
    return {axis[0].cast<std::size_t>(), axis[1].cast<float>(), axis[2].cast<float>()};
}

// Least and most of the values that are numbers; none without one.
std::optional<std::pair<float, float>> Limits(std::span<const float> values)
{
    std::optional<std::pair<float, float>> limits;
    for (const float value : values) {
        if (std::isnan(value)) continue;
        if (!limits) limits.emplace(value, value);
        limits->first = std::min(limits->first, value);
        limits->second = std::max(limits->second, value);
    }
    return limits;
}

template <class Result>
void SetLimits(Result& result, std::span<const float> values)
{
    const auto limits = Limits(values);
    if (!limits) return;
    result.SetYMin(limits->first);
    result.SetYMax(limits->second);
}

std::unique_ptr<CRegVector> MakeVector(const Writer& writer, std::uint32_t kind, SignalType type, std::size_t quantity,
                                       const EvenAxis& axis, const Floats& values)
{
    auto vector = std::make_unique<CRegVector>(kind, SizeOf(values.size()), 0, type, 0, true);
    vector->SetMagnitude(writer.QuantityAt(quantity));
    vector->SetXMagnitude(writer.QuantityAt(axis.quantity));
    vector->SetXMin(axis.first);
    vector->SetXMax(axis.last);
    std::copy_n(values.data(), values.size(), vector->GetRealValue());
    SetLimits(*vector, SpanOf(values));
    return vector;
}

// The result of a reference along a waterfall, and the reference in the list.
std::unique_ptr<ZelmResult::CResult> MakeSeries(const Writer& writer, const py::tuple& reference, CListVectorRef& list,
                                                const std::vector<std::int32_t>& blocks)
{
    const auto kind = KindOf(reference[0].cast<py::dict>());
    const auto name = FromUtf8(reference[1].cast<std::string>());
    const auto values = reference[3].cast<Floats>();
    const auto process = otype::ElementaryResultProcess::fromInteger(static_cast<std::int32_t>(kind));
    auto made = ZelmResult::ResultFactory::create(process, ZelmResult::WaterfallDimension::kReference, name);
    auto& series = dynamic_cast<CRefWaterfall&>(*made);
    list.AddVectorRef(series.GetMyVecteurReference());
    series.SetReferenceList(&list);
    series.SetProcessType(kind);
    series.SetMagnitude(writer.QuantityAt(reference[2].cast<std::size_t>()));
    const std::int32_t size = SizeOf(values.size());
    series.SetSize(size);
    series.SetLastBlockNb(-1); // a change of size sets it to 0
    for (std::int32_t slice = 0; slice < size; ++slice) {
        (void)series.AddRefValue(values.data()[slice], slice, false);
        series.SetBlocNumber(slice, blocks[static_cast<std::size_t>(slice)]);
    }
    series.SetFilled(size);
    SetLimits(series, SpanOf(values));
    return made;
}

std::unique_ptr<CWaterfall> MakeWaterfall(const Writer& writer, const py::tuple& fields, CListVectorRef* list,
                                          const std::vector<std::int32_t>& blocks)
{
    const auto kind = KindOf(fields[0].cast<py::dict>());
    const EvenAxis axis = AxisOf(fields[2].cast<py::tuple>());
    std::vector<Floats> parts{fields[3].cast<Floats>()};
    if (!fields[4].is_none()) parts.push_back(fields[4].cast<Floats>());
    const SignalType type = parts.size() == 1 ? SignalType::Real : SignalType::Complex;
    const std::int32_t slices = SizeOf(parts.front().shape(0));
    const std::int32_t lines = SizeOf(parts.front().shape(1));
    auto waterfall = std::make_unique<CWaterfall>(kind, kind, lines, slices, list, type, true);
    waterfall->SetMagnitude(writer.QuantityAt(fields[1].cast<std::size_t>()));
    waterfall->SetXMagnitude(writer.QuantityAt(axis.quantity));
    waterfall->SetXMin(axis.first);
    waterfall->SetXMax(axis.last);
    (void)waterfall->AllocateTabBlockNumber(slices);
    for (std::int32_t slice = 0; slice < slices; ++slice) {
        const std::int32_t place = waterfall->AddBlock(slice, -1);
        if (place < 0) throw std::bad_alloc();
        waterfall->SetBlocNumber(place, blocks[static_cast<std::size_t>(slice)]);
        for (std::size_t part = 0; part < parts.size(); ++part)
            waterfall->GetTabData(static_cast<std::int32_t>(part), place)
                .CopySliceFrom(parts[part].data(slice, 0), lines);
    }
    waterfall->SetFilled(slices);
    SetLimits(*waterfall, SpanOf(parts.front()));
    return waterfall;
}

} // namespace

void AddLevel(Writer& writer, const py::dict& header, std::size_t quantity, float value, float least, float most)
{
    auto level = std::make_unique<ZelmResult::CScalar>(KindOf(header), 1, SignalType::Real, false);
    level->SetMagnitude(writer.QuantityAt(quantity));
    level->lastValue(value);
    level->minValue(least);
    level->maxValue(most);
    writer.Add(header, std::move(level));
}

void AddVector(Writer& writer, const py::dict& header, std::size_t quantity, const py::tuple& axis, const Floats& real,
               const py::object& imaginary)
{
    const SignalType type = imaginary.is_none() ? SignalType::Real : SignalType::Complex;
    auto vector = MakeVector(writer, KindOf(header), type, quantity, AxisOf(axis), real);
    if (type == SignalType::Complex) {
        const auto parts = imaginary.cast<Floats>();
        std::copy_n(parts.data(), parts.size(), vector->GetImValue());
    }
    writer.Add(header, std::move(vector));
}

void AddBands(Writer& writer, const py::dict& header, std::size_t quantity, const py::tuple& axis,
              std::uint32_t fraction, const Floats& values, const py::tuple& levels)
{
    auto bands = MakeVector(writer, KindOf(header), SignalType::Octave, quantity, AxisOf(axis), values);
    bands->SetXnOctave(fraction);
    bands->SetGlobLevel(AvgOctaveTarget::Averaged, levels[0].cast<float>());
    bands->SetGlobPondLevel(AvgOctaveTarget::Averaged, levels[1].cast<float>());
    bands->SetPonderationGlob(levels[2].cast<std::uint32_t>());
    writer.Add(header, std::move(bands));
}

void AddRunUp(Writer& writer, const std::vector<std::int32_t>& blocks, const std::string& chosen,
              const py::list& references, const py::list& waterfalls)
{
    auto list = std::make_unique<CListVectorRef>(true); // a manager list, which lives until it is let go
    std::vector<std::unique_ptr<ZelmResult::CResult>> series;
    for (const auto& reference : references)
        series.push_back(MakeSeries(writer, reference.cast<py::tuple>(), *list, blocks));
    std::vector<std::unique_ptr<CWaterfall>> made;
    for (const auto& waterfall : waterfalls)
        made.push_back(MakeWaterfall(writer, waterfall.cast<py::tuple>(), list.get(), blocks));
    for (std::size_t i = 0; i < series.size(); ++i) {
        dynamic_cast<CRefWaterfall&>(*series[i]).SetReference(FromUtf8(chosen), nullptr, nullptr);
        writer.Add(references[i].cast<py::tuple>()[0].cast<py::dict>(), std::move(series[i]));
    }
    for (std::size_t i = 0; i < made.size(); ++i)
        writer.Add(waterfalls[i].cast<py::tuple>()[0].cast<py::dict>(), std::move(made[i]));
    list.release()->SetIsWaterfallReferenceManagerList(false); // its results own it now
}

void AddOrderTrack(Writer& writer, const py::dict& header, std::size_t quantity, const std::string& chosen,
                   const py::list& references, const Floats& values)
{
    const std::int32_t orders = SizeOf(values.shape(0));
    const std::int32_t points = SizeOf(values.shape(1));
    const std::uint32_t kind = KindOf(header);
    auto track = std::make_unique<ZelmResult::CRefOrderTrack>(kind, points, orders, SignalType::Real);
    track->SetTables(orders, points, values.data(), nullptr);
    SetLimits(*track, SpanOf(values));
    for (const auto& fields : references) {
        const auto tuple = fields.cast<py::tuple>();
        const auto along = tuple[2].cast<Floats>();
        auto reference = std::make_unique<ZelmResult::CVectorRef>(kind, points, FromUtf8(tuple[0].cast<std::string>()),
                                                                  SignalType::Real);
        std::copy_n(along.data(), along.size(), reference->GetRefValue());
        if (const auto limits = Limits(SpanOf(along)); limits) {
            reference->SetRefMin(limits->first);
            reference->SetRefMax(limits->second);
        }
        reference->SetFilled(points);
        reference->SetRefMagnitude(writer.QuantityAt(tuple[1].cast<std::size_t>()));
        track->AddVectorRef(reference.release());
    }
    track->SetReference(FromUtf8(chosen), nullptr, nullptr);
    track->CReferencedAxis::SetFilled(points);
    track->SetMagnitude(writer.QuantityAt(quantity));
    writer.Add(header, std::move(track));
}

} // namespace binding
