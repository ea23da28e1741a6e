#include "python/src/reader.h"

#include "python/src/bindings.h"
#include "python/src/convert.h"
#include "tools/zmxf/damage/verification.h"
#include "tools/zmxf/showing/recording_json.h"
#include "tools/zmxf/showing/settings_json.h"
#include "tools/zmxf/showing/shown_levels.h"
#include "tools/zmxf/showing/shown_waterfall.h"
#include "zelmresult/results/kinds.h"
#include "zelmresult/support/path_bytes.h"
#include "zelmresult/support/text.h"

#include <pybind11/stl.h>

#include <span>

namespace binding {

namespace {

using ZelmResult::CResultHeader;
using ZelmResult::DocumentReader;
using ZelmResult::LabelledResult;
using ZelmResult::ListedResult;
using ZelmResult::ReadError;

std::span<const char> BytesOf(const py::bytes& bytes)
{
    return {PyBytes_AS_STRING(bytes.ptr()), static_cast<std::size_t>(PyBytes_GET_SIZE(bytes.ptr()))};
}

py::object ErrorToPython(const Reader& reader, const std::optional<ReadError>& error)
{
    return error ? DocumentFailure(reader.name(), *error).ToPython() : py::none();
}

py::dict HeaderToPython(const ListedResult& listed, std::size_t number)
{
    const CResultHeader& header = *listed.header;
    py::dict made;
    made["number"] = number;
    made["system"] = listed.system;
    made["kind"] = zmxf::KindName(header);
    made["process_type"] = header.GetProcessType();
    made["process"] = ToPython(header.processCaption());
    made["channel"] = ToPython(header.responseName());
    made["channel_number"] = header.GetNumReponse();
    made["reference"] = ToPython(header.referenceName());
    made["reference_number"] = header.GetNumReference();
    made["seconds"] = header.date().GetTime();
    made["caption"] = ToPython(header.caption());
    made["comment"] = ToPython(header.comment());
    made["analyzer"] = ToPython(header.analyzerCaption());
    made["identification"] = ToPython(header.identificationName());
    made["weighting"] = header.GetPonderation();
    made["time_weighting"] = header.GetPonderationTemporelle();
    made["window"] = header.GetNumWindow().toInt();
    made["waterfall_dimension"] = header.GetWaterfallDimension();
    made["data_offset"] = listed.data.offset;
    made["data_size"] = listed.data.size;
    return made;
}

py::object HeaderAt(Reader& reader, std::size_t number) { return HeaderToPython(reader.ListedAt(number), number); }

std::size_t Count(Reader& reader)
{
    return reader.With([](DocumentReader& r) { return r.Results().items.size(); });
}

py::object Damage(Reader& reader)
{
    return ErrorToPython(reader, reader.With([](DocumentReader& r) { return r.Results().damage; }));
}

py::object CutOff(Reader& reader)
{
    return ErrorToPython(reader, reader.With([](DocumentReader& r) { return r.CutOff(); }));
}

// One number or one range of a selection, as pairs of Python.
zmxf::NumberRange RangeOf(const std::pair<std::size_t, std::size_t>& pair) { return {pair.first, pair.second}; }

zmxf::Selection SelectionOf(const py::dict& wanted)
{
    zmxf::Selection selection;
    for (const auto& range : wanted["results"].cast<std::vector<std::pair<std::size_t, std::size_t>>>())
        selection.results.push_back(RangeOf(range));
    selection.channels = wanted["channels"].cast<std::vector<std::string>>();
    selection.references = wanted["references"].cast<std::vector<std::string>>();
    selection.names = wanted["names"].cast<std::vector<std::string>>();
    selection.systems = wanted["systems"].cast<std::vector<std::int32_t>>();
    for (const std::string& word : wanted["kinds"].cast<std::vector<std::string>>()) {
        const auto kind = zmxf::ParseKind(word);
        if (!kind) throw py::value_error("there is no kind of results " + word);
        selection.kinds.push_back(*kind);
    }
    return selection;
}

std::vector<std::size_t> Select(Reader& reader, const py::dict& wanted)
{
    const zmxf::Selection selection = SelectionOf(wanted);
    return reader.With([&](DocumentReader& r) { return selection.Of(r.Results().items); });
}

// The levels that a result holds, one by one, as zmxf names and prints them. None for a single level and for others.
py::list LevelsToPython(const LabelledResult& result)
{
    py::list list;
    for (const zmxf::ShownScalar& level : zmxf::DescribeLevels(result)) {
        const auto text = [&level](float value) {
            return level.Text(value, zmxf::ColumnText({&value, 1}, level.quantity, {}, zmxf::Scale::Linear),
                              zmxf::Scale::Linear);
        };
        list.append(
            py::make_tuple(level.name, level.quantity, level.last, level.lowest, level.highest, text(level.last)));
    }
    return list;
}

py::dict Read(Reader& reader, std::size_t number)
{
    LabelledResult result =
        reader.With([&](DocumentReader& r) { return Require(r.ReadLabelled(number), reader.name()); });
    const py::list levels = LevelsToPython(result);
    py::dict made = ToPython(std::move(result));
    made["levels"] = levels;
    return made;
}

// A slice of a waterfall and its index; by is "index", "block" or "at", in whose place the others are nothing.
py::tuple ReadSlice(Reader& reader, std::size_t number, std::optional<std::size_t> index,
                    std::optional<std::int32_t> block, const std::string& at)
{
    std::size_t found = 0;
    LabelledResult slice = reader.With([&](DocumentReader& r) {
        found = zmxf::DescribeWaterfall(Require(r.ReadSlices(number), reader.name())).Find({index, block, at});
        const auto choice = ZelmResult::SliceChoice{ZelmResult::SliceChoice::By::Index, static_cast<int>(found)};
        return Require(r.ReadSlice(number, choice), reader.name());
    });
    py::dict made = ToPython(std::move(slice));
    made["levels"] = py::list();
    return py::make_tuple(found, made);
}

py::list Quantities(Reader& reader)
{
    std::vector<std::optional<ZelmResult::LabelledQuantity>> all;
    std::optional<ReadError> damage;
    reader.With([&](DocumentReader& r) {
        const auto& listing = r.Quantities();
        damage = listing.damage;
        for (const auto& stored : listing.items) all.push_back(ZelmResult::LabelledQuantity::Of(stored.quantity.get()));
    });
    if (damage) throw DocumentFailure(reader.name(), *damage);
    return py::cast(all);
}

// JSON texts, from which Python makes dictionaries.
std::string Settings(Reader& reader)
{
    return reader.With([](DocumentReader& r) {
        zmxf::Json systems = zmxf::Json::array();
        for (const auto& stored : r.ReadSettings()) systems.push_back(zmxf::SettingsJson(stored));
        return zmxf::IndentedJson(systems);
    });
}

std::string Recordings(Reader& reader)
{
    return reader.With([](DocumentReader& r) {
        zmxf::Json systems = zmxf::Json::array();
        for (const auto& stored : r.ReadRecordings()) systems.push_back(zmxf::RecordingJson(stored));
        return zmxf::IndentedJson(systems);
    });
}

py::list DamagesToPython(const std::vector<zmxf::Damage>& damages)
{
    py::list list;
    for (const zmxf::Damage& damage : damages) list.append(py::make_tuple(damage.offset, damage.text));
    return list;
}

py::dict VerificationToPython(const zmxf::Verification& found)
{
    py::dict made;
    made["verdict"] = zmxf::NameOf(found.verdict);
    made["results"] = found.results;
    made["readable"] = found.readable;
    made["loads"] = found.isLoaded;
    made["damages"] = DamagesToPython(found.damages);
    made["notes"] = DamagesToPython(found.notes);
    return made;
}

py::dict Verify(const py::bytes& path)
{
    const std::string name = path;
    zmxf::Verification found;
    {
        const py::gil_scoped_release unlocked;
        found = zmxf::Verify(name);
    }
    return VerificationToPython(found);
}

} // namespace

Reader::Reader(const std::string& path) : m_name(path)
{
    const py::gil_scoped_release unlocked;
    m_reader = Require(DocumentReader::Open(ZelmResult::PathFromBytes(path)), path);
}

Reader::Reader(py::bytes bytes, std::string name) : m_name(std::move(name)), m_bytes(std::move(bytes))
{
    const std::span<const char> span = BytesOf(m_bytes);
    const py::gil_scoped_release unlocked;
    m_reader = Require(DocumentReader::OpenBytes(span, ZelmResult::PathFromBytes(m_name)), m_name);
}

void Reader::Close()
{
    const py::gil_scoped_release unlocked;
    const std::lock_guard guard(m_mutex);
    m_reader.reset();
}

bool Reader::IsClosed()
{
    const py::gil_scoped_release unlocked;
    const std::lock_guard guard(m_mutex);
    return !m_reader;
}

ListedResult Reader::ListedAt(std::size_t number)
{
    return With([&](DocumentReader& r) {
        const auto& items = r.Results().items;
        if (number >= items.size()) throw py::index_error("a number of a result that isn't there");
        return items[number];
    });
}

void BindReader(py::module_& module)
{
    py::class_<Reader>(module, "Reader")
        .def(py::init([](const py::bytes& path) { return std::make_unique<Reader>(static_cast<std::string>(path)); }))
        .def(py::init([](py::bytes bytes, std::string name) {
            return std::make_unique<Reader>(std::move(bytes), std::move(name));
        }))
        .def("close", &Reader::Close)
        .def("is_closed", &Reader::IsClosed)
        .def("version", [](Reader& reader) { return reader.With([](DocumentReader& r) { return r.version(); }); })
        .def("cut_off", CutOff)
        .def("damage", Damage)
        .def("count", Count)
        .def("header", HeaderAt)
        .def("select", Select)
        .def("read", Read)
        .def("read_slice", ReadSlice)
        .def("quantities", Quantities)
        .def("settings", Settings)
        .def("recordings", Recordings);
    module.def("verify", Verify);
    module.def("process_types", [] {
        py::dict types;
        for (const ZelmResult::ResultKind& kind : ZelmResult::ResultKind::All())
            if (!types.contains(kind.name)) types[kind.name] = kind.numbers.first;
        return types;
    });
    module.def("kinds", [] {
        const auto names = ZelmResult::ResultKind::GroupNames();
        return std::vector<std::string>(names.begin(), names.end());
    });
}

} // namespace binding
