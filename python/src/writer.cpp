#include "python/src/writer.h"

#include "python/src/bindings.h"
#include "python/src/convert.h"
#include "python/src/failures.h"
#include "python/src/new_results.h"
#include "zelmresult/reading/labelled_quantity.h"
#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/support/path_bytes.h"
#include "zelmresult/support/text.h"

#include <pybind11/stl.h>

#include <algorithm>

namespace binding {

namespace {

using ZelmResult::CGrandeur;
using ZelmResult::CResultHeader;
using ZelmResult::CUnite;
using ZelmResult::FromUtf8;
using ZelmResult::LabelledQuantity;

// The text of a field; empty without one.
ZelmResult::wstring TextOf(const py::dict& fields, const char* name)
{
    return fields.contains(name) ? FromUtf8(fields[name].cast<std::string>()) : ZelmResult::wstring();
}

template <class T>
T NumberOf(const py::dict& fields, const char* name, T absent)
{
    return fields.contains(name) ? fields[name].cast<T>() : absent;
}

std::unique_ptr<CResultHeader> HeaderOf(const py::dict& fields)
{
    auto header = std::make_unique<CResultHeader>();
    header->SetProcessType(fields["process_type"].cast<std::uint32_t>());
    header->setProcessCaption(TextOf(fields, "process"));
    header->setResponseName(TextOf(fields, "channel"));
    header->SetNumReponse(NumberOf(fields, "channel_number", 0));
    header->setReferenceName(TextOf(fields, "reference"));
    header->SetNumReference(NumberOf(fields, "reference_number", 0));
    header->setDate(ZelmResult::OTime(NumberOf<std::int64_t>(fields, "seconds", 0)));
    header->setCaption(TextOf(fields, "caption"));
    header->setComment(TextOf(fields, "comment"));
    header->setAnalyzerCaption(TextOf(fields, "analyzer"));
    header->setIdentificationName(TextOf(fields, "identification"));
    header->SetPonderation(NumberOf<std::uint32_t>(fields, "weighting", 0));
    header->SetPonderationTemporelle(NumberOf<std::uint32_t>(fields, "time_weighting", 0));
    header->SetNumWindow(static_cast<ZelmResult::EWeightingWindow>(NumberOf(fields, "window", -1)));
    header->SetWaterfallDimension(NumberOf<std::uint32_t>(fields, "waterfall_dimension", 0));
    header->setChosenReference(TextOf(fields, "chosen_reference"));
    return header;
}

} // namespace

Writer::Writer() { m_document.NeedToRemoveEverything(true); }

Writer::Writer(const std::string& path)
{
    const py::gil_scoped_release unlocked;
    const bool isLoaded =
        m_document.Load(ZelmResult::PathFromBytes(path).c_str(), ZelmResult::ZMXFFileLoadScope::all());
    m_document.NeedToRemoveEverything(true);
    if (isLoaded) {
        for (CGrandeur* listed : m_document.GetListeGrandeur()) m_loaded.push_back(listed);
        return;
    }
    ZelmResult::ReadError error;
    error.subject = u"The document as a whole";
    for (const ZelmResult::wstring& message : TakeMessages()) error.expected += message;
    throw DocumentFailure(path, error);
}

std::vector<ZelmResult::wstring> Writer::TakeMessages()
{
    std::vector<ZelmResult::wstring> messages;
    m_document.fetchErrors(messages, true);
    return messages;
}

std::size_t Writer::AddQuantity(const py::dict& fields)
{
    const std::lock_guard guard(m_mutex);
    CUnite& unit = m_units.emplace_back();
    auto quantity = std::make_unique<CGrandeur>();
    FillQuantity(fields, unit, *quantity);
    const auto wanted = LabelledQuantity::Of(quantity.get());
    const auto loaded = std::find_if(m_loaded.begin(), m_loaded.end(), [&wanted](const CGrandeur* other) {
        return LabelledQuantity::Of(other) == wanted;
    });
    if (loaded != m_loaded.end()) {
        m_quantities.push_back(*loaded);
        return m_quantities.size() - 1;
    }
    m_quantities.push_back(quantity.get());
    m_document.AjouteGrandeur(quantity.release(), ZelmResult::OwnershipOwned);
    return m_quantities.size() - 1;
}

void Writer::Add(const py::dict& header, std::unique_ptr<ZelmResult::CResult> result)
{
    auto made = HeaderOf(header);
    const auto precision = header["precision"].cast<float>();
    const std::lock_guard guard(m_mutex);
    result->SetResultDate(ZelmResult::OFileTime::fromOTime(made->date()).toFILETIME());
    result->SetAbsPrecisionX(0.0F);
    result->SetRelPrecisionX(precision);
    result->SetAbsPrecisionY(0.0F);
    result->SetRelPrecisionY(precision);
    const auto system = NumberOf<std::uint16_t>(header, "system", 0);
    // A file numbers its systems by their order, so those below this one are there too, even without results.
    while (m_document.getNbrSys() < system) (void)m_document.AddSysteme(new ZelmResult::CSysteme);
    m_document.AjouteResultat(made.release(), result.release(), system, true);
    m_document.NeedToRemoveEverything(true); // the system may be new
}

std::size_t Writer::Count() const
{
    std::size_t count = 0;
    for (std::int32_t system = 0; system < m_document.getNbrSys(); ++system)
        count += static_cast<std::size_t>(m_document.getSystem(system)->GetResultsNumber());
    return count;
}

py::list Writer::Check()
{
    std::vector<ZelmResult::wstring> reasons;
    {
        const py::gil_scoped_release unlocked;
        const std::lock_guard guard(m_mutex);
        (void)m_document.CheckSave(reasons); // the reasons say it
    }
    py::list list;
    for (const ZelmResult::wstring& reason : reasons) list.append(ToPython(reason));
    return list;
}

void Writer::Save(const std::string& path, bool acceptLosses)
{
    const py::gil_scoped_release unlocked;
    const std::lock_guard guard(m_mutex);
    const bool isSaved = m_document.SaveSafely(ZelmResult::PathFromBytes(path).c_str(), acceptLosses);
    std::vector<ZelmResult::wstring> messages = TakeMessages();
    if (!isSaved) throw SaveFailure(path, std::move(messages));
}

py::bytes Writer::ToBytes()
{
    std::vector<char> bytes;
    {
        const py::gil_scoped_release unlocked;
        const std::lock_guard guard(m_mutex);
        std::vector<ZelmResult::wstring> reasons;
        if (!m_document.CheckSave(reasons) || !m_document.SaveToMemory(bytes)) {
            if (reasons.empty()) reasons = TakeMessages();
            throw SaveFailure("", std::move(reasons));
        }
    }
    return {bytes.data(), bytes.size()};
}

void BindWriter(py::module_& module)
{
    module.attr("most_systems") = ZelmResult::MostOf(ZelmResult::ChunkKind::System);
    py::class_<Writer> writer(module, "Writer");
    writer.def(py::init<>())
        .def(py::init([](const py::bytes& path) { return std::make_unique<Writer>(static_cast<std::string>(path)); }))
        .def("add_quantity", &Writer::AddQuantity)
        .def("count", &Writer::Count)
        .def("check", &Writer::Check)
        .def("save", [](Writer& self, const py::bytes& path, bool lossy) { self.Save(path, lossy); })
        .def("to_bytes", &Writer::ToBytes)
        .def("add_level", AddLevel)
        .def("add_vector", AddVector)
        .def("add_bands", AddBands)
        .def("add_run_up", AddRunUp)
        .def("add_order_track", AddOrderTrack);
}

} // namespace binding
