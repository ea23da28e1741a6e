#include "zelmresult/results/result_mask.h"

#include "zelmresult/results/kinds.h"

namespace ZelmResult {

namespace {

using Process = ResultMask::Process;
using Over = MaskForm::Over;
using Width = MaskForm::Width;

const MaskForm& FormOf(Process process) { return ResultKind::Of(process).mask; }

Process ProcessOf(std::uint32_t kind) { return Process::fromInteger(static_cast<std::int32_t>(kind)); }

// The other form of a mask that has the given width.
Process OfOtherWidth(Process process, Width width)
{
    const MaskForm& form = FormOf(process);
    const bool has = form.width == width && form.otherWidth != 0;
    return ProcessOf(has ? form.otherWidth : ResultKind::kMask);
}

// The form of a mask with these steps; the same kind for one without.
Process WithSteps(Process process, bool interpolated)
{
    const MaskForm& form = FormOf(process);
    return form.interpolated == interpolated || form.otherSteps == 0 ? process : ProcessOf(form.otherSteps);
}

} // namespace

bool ResultMask::isMask(Process process) { return FormOf(process).over != Over::NoMask; }
bool ResultMask::isMaskSingle(Process process) { return FormOf(process).width == Width::Single; }
bool ResultMask::isMaskDouble(Process process) { return FormOf(process).width == Width::Double; }
bool ResultMask::isMaskInterpolated(Process process) { return FormOf(process).interpolated; }
bool ResultMask::isMaskNarrowBands(Process process) { return FormOf(process).over == Over::NarrowBands; }
bool ResultMask::isMaskProfile(Process process) { return FormOf(process).over == Over::Profile; }
bool ResultMask::isMaskNOctave(Process process) { return FormOf(process).over == Over::Octaves; }

bool ResultMask::isMaskGenerator(const otype::ResultProcess& process)
{
    const bool isAlone = process.second().toInteger() == 0;
    return ResultKind::Of(process.first()).Has(isAlone ? ResultKind::Maskable : ResultKind::MaskableAlong);
}

Process ResultMask::maskSingle(Process process) { return OfOtherWidth(process, Width::Double); }
Process ResultMask::maskDouble(Process process) { return OfOtherWidth(process, Width::Single); }
Process ResultMask::maskInterpolated(Process process) { return WithSteps(process, true); }
Process ResultMask::maskNotInterpolated(Process process) { return WithSteps(process, false); }

} // namespace ZelmResult
