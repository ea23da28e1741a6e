// A document that a host builds, of all kinds and branches, as the input says: whatever the check before a save has
// nothing against comes back five times over as it was, thing by thing.

#include "fuzz/documents.h"
#include "tests/builders/samples.h"
#include "tests/builders/waterfall_samples.h"
#include "zelmresult/zelmresult.h"

#include <algorithm>
#include <functional>
#include <map>
#include <string>

using namespace ZelmResult;
using fuzz::Data;
using fuzz::Input;
using fuzz::Require;

namespace {

const wstring kPath = u"built";

// ---- Building ----

class Builder {
public:
    explicit Builder(Input& input) : m_input(input), m_document(true, input.choice(4) == 0)
    {
        m_document.NeedToRemoveEverything(true);
        for (int steps = 0; steps < 40 && !input.empty(); ++steps) Step();
        m_document.NeedToRemoveEverything(true);
    }
    Builder(const Builder&) = delete;
    Builder& operator=(const Builder&) = delete;
    ~Builder()
    {
        for (const CGrandeur* quantity : m_unlisted) delete quantity;
    }
    [[nodiscard]] CZMXFFile& document() { return m_document; }

private:
    void Step()
    {
        switch (m_input.choice(13)) {
        case 0: AddQuantity(); break;
        case 1: AddTied(); break;
        case 2: Remove(); break;
        case 3: AddSetting(); break;
        case 4: AddRecording(); break;
        case 5: AddTransducer(); break;
        case 6: m_document.writeHardInfo().addHardInfoData({ToUtf8(Name()), "b", "c", ToUtf8(Name())}); break;
        case 7: m_document.setProjectInfo(Name(), Name(), Name()); break;
        case 8: Spoil(); break;
        default: AddResult();
        }
    }
    wstring Name() { return u"n" + ToDecimal(m_input.take<std::uint8_t>()); }
    std::uint16_t System() { return static_cast<std::uint16_t>(m_input.choice(4)); }

    void AddQuantity()
    {
        std::vector<CGrandeur*> operands;
        for (std::size_t i = m_input.choice(3); i > 0; --i)
            if (CGrandeur* operand = Quantity(); operand != nullptr) operands.push_back(operand);
        CGrandeur* quantity = test::NewQuantity(u"q" + ToDecimal(static_cast<std::int64_t>(++m_made)), operands);
        m_quantities.push_back(quantity);
        if (m_input.choice(8) != 0)
            m_document.AjouteGrandeur(quantity, OwnershipOwned);
        else
            m_unlisted.push_back(quantity);
    }
    CGrandeur* Quantity()
    {
        const std::size_t which = m_input.choice(m_quantities.size() + 1);
        return which < m_quantities.size() ? m_quantities[which] : nullptr;
    }

    std::int32_t Size()
    {
        constexpr std::int32_t sizes[] = {0, 1, 3, 17, 257, 16384, 65537};
        return sizes[m_input.choice(std::size(sizes))];
    }
    std::unique_ptr<CResultHeader> Header(int kind, int dimension)
    {
        auto header = std::make_unique<CResultHeader>(
            test::HeaderOf({.processType = static_cast<std::uint32_t>(kind),
                            .comment = Name(),
                            .responseName = u"Speed",
                            .caption = Name(),
                            .waterfallDimension = static_cast<std::uint32_t>(dimension)}));
        header->setAnalyzerCaption(Name());
        header->SetNumReponse(m_input.take<std::int32_t>());
        header->setDate(OTime(m_input.take<std::int32_t>()));
        return header;
    }
    void AddResult()
    {
        constexpr int dimensions[] = {0, 0, 0, 2, 5};
        const int kind = m_input.take<std::uint16_t>() % 321;
        const int dimension = dimensions[m_input.choice(std::size(dimensions))];
        OwnedResult result = fuzz::MakeResult(static_cast<std::uint32_t>(kind), static_cast<std::uint32_t>(dimension));
        if (result == nullptr) return;
        if (dynamic_cast<CDoubleResult*>(result.get()) == nullptr) Fill(*result);
        result->SetMagnitude(Quantity());
        result->SetXMagnitude(Quantity());
        m_document.AjouteResultat(Header(kind, dimension).release(), result.release(), System(),
                                  m_input.choice(2) == 0);
    }
    void Fill(CResult& result)
    {
        if (auto* waterfall = dynamic_cast<CWaterfall*>(&result); waterfall != nullptr)
            return FillWaterfall(*waterfall);
        if (m_input.choice(4) == 0) result.SetComplexType(static_cast<SignalType>(m_input.choice(8)), true);
        result.SetSize(Size());
        const auto value = m_input.take<float>();
        if (auto* scalar = dynamic_cast<CScalar*>(&result); scalar != nullptr) scalar->lastValue(value);
        if (auto* vector = dynamic_cast<CVector*>(&result); vector != nullptr && vector->GetRealValue() != nullptr)
            for (std::int32_t i = 0; i < vector->GetSize(); ++i)
                vector->GetRealValue()[i] = value + static_cast<float>(i);
        if (auto* track = dynamic_cast<COrderTracking*>(&result); track != nullptr) {
            const std::vector<float> values(static_cast<std::size_t>(2 * result.GetSize()), value);
            track->SetTables(2, result.GetSize(), values.data(), values.data());
        }
        if (CReferencedAxis* axis = result.GetReferencedAxis(); axis != nullptr)
            axis->SetFilled(m_input.choice(3) == 0 ? result.GetSize() / 2 : result.GetSize());
    }
    void FillWaterfall(CWaterfall& waterfall)
    {
        const std::int32_t slices = 1 + static_cast<std::int32_t>(m_input.choice(6));
        waterfall.SetSize(std::min(Size(), 257));
        waterfall.SetZSize(slices, true);
        waterfall.ReAlloc();
        (void)waterfall.AllocateTabBlockNumber(slices);
        const std::vector<float> values(257, m_input.take<float>());
        for (std::int32_t i = 0; i < slices; ++i) {
            waterfall.SetBlocNumber(waterfall.AddBlock(i, -1), i);
            for (std::int32_t j = 0; j < CWaterfall::GetComplexDim(waterfall.GetComplexType()); ++j)
                waterfall.GetTabData(j, i).CopySliceFrom(values.data(), waterfall.GetSize());
        }
        waterfall.SetFilled(slices);
    }
    void AddTied()
    {
        const bool isListed = m_input.choice(4) != 0;
        const bool isRegistered = m_input.choice(4) != 0;
        (void)test::AddTiedWaterfall(m_document, System(), isListed, isRegistered);
    }

    void Remove()
    {
        CSysteme* system = m_document.getSystem(static_cast<std::int32_t>(System()));
        if (system == nullptr || system->GetResultsNumber() == 0) return;
        const auto which = m_input.choice(static_cast<std::size_t>(system->GetResultsNumber()));
        (void)system->RemoveResultat((system->getMapResult().begin() + static_cast<std::ptrdiff_t>(which))->first);
    }
    void AddSetting()
    {
        constexpr std::uint32_t types[] = {3, 8193, 17, 49, 113, 129, 641, 65537, 1024, 9, 16385, 32769, 2049, 273, 5};
        const idn::Idn idn(idn::Analyzer(0), idn::Module(1 + static_cast<std::uint32_t>(m_input.choice(3)), 1),
                           idn::Submodule(1 + static_cast<std::uint32_t>(m_input.choice(3)), 1),
                           idn::Setting(1 + static_cast<std::uint32_t>(m_input.choice(200))));
        auto setting =
            CSousModuleData::CreateReglage(new CReglageInfoData(idn, types[m_input.choice(std::size(types))]));
        setting->setTitleString(Name());
        if (m_input.choice(16) == 0) setting->info().AddType(64); // which no load takes
        if (m_document.AddReglage(setting.get(), System())) (void)setting.release();
    }
    void AddRecording()
    {
        auto record = std::make_unique<CRecord>(true);
        record->setNbrRecord(static_cast<std::int16_t>(m_input.choice(3)));
        for (std::size_t i = m_input.choice(20); i > 0; --i) (void)record->AddRecordInfo(new CRecordInfo);
        for (std::size_t i = m_input.choice(4); i > 0; --i) {
            auto* track = new CZMTrackDesc;
            const auto chunks = m_input.take<std::uint8_t>();
            for (const auto& [bit, chunk] : {std::pair{1, TrackChunk::Info},
                                             {2, TrackChunk::Loca},
                                             {4, TrackChunk::Ovld},
                                             {8, TrackChunk::Xuni},
                                             {16, TrackChunk::Yuni},
                                             {32, TrackChunk::Vuni},
                                             {64, TrackChunk::Corr}})
                track->SetHasChunk(chunk, (chunks & bit) == 0);
            track->Name = Name();
            track->YMagnitude = Quantity();
            (void)record->AddTrackDesc(track, -1);
        }
        const std::uint16_t system = System();
        const std::unique_ptr<CRecord> former(m_document.getRecord(system));
        if (m_document.SetRecord(record.get(), system)) (void)record.release();
    }
    void AddTransducer()
    {
        auto transducer = std::make_unique<CITrack>();
        transducer->setId(Name());
        if (m_document.SetITrack(transducer.get(), System())) (void)transducer.release();
    }
    // What no file gives back.
    void Spoil()
    {
        switch (m_input.choice(4)) {
        case 0: m_document.AjouteResultat(Header(9, 0).release(), nullptr, System(), true); break;
        case 1: m_document.AjouteResultat(Header(4, 0).release(), test::NewScalar(9, 1), System(), true); break;
        case 2:
            if (CGrandeur* quantity = Quantity(); quantity != nullptr) {
                quantity->SetGrandeurInvolved(1);
                quantity->SetGrandeurLeft(Quantity());
            }
            break;
        default:
            if (CSysteme* system = m_document.getSystem(0); system != nullptr)
                system->SetArPtrListeReferences({nullptr});
        }
    }

    Input& m_input;
    std::size_t m_made = 0;
    std::vector<CGrandeur*> m_quantities;
    std::vector<CGrandeur*> m_unlisted;
    CZMXFFile m_document;
};

// ---- Describing ----

// What a thing writes, as text.
std::string Written(const std::function<bool(CMmioFile&)>& write)
{
    const wstring path = u"thing";
    CMmioFile file(false);
    Require(file.Open(path, nullptr, OMMIO_WRITE | OMMIO_CREATE), "a file opens");
    const bool isWritten = write(file);
    (void)file.Close();
    const Data& bytes = fuzz::Disk()[path];
    return (isWritten ? "" : "unwritable ") + std::string(bytes.begin(), bytes.end());
}

// Everything that a document holds, each with a name that says where it is.
using Things = std::map<std::string, std::string>;

void DescribeResults(const CSysteme& system, const std::string& place, bool withPoints, Things& things)
{
    std::size_t number = 0;
    for (const auto& entry : system.getMapResult()) {
        const std::string name = place + " result " + std::to_string(number++);
        things[name + " header"] = Written([&](CMmioFile& file) { return entry.first->Save(&file); });
        CResult& stored = *entry.second;
        things[name + " class"] = typeid(stored).name();
        if (withPoints || !fuzz::MaySettle(stored))
            things[name] = Written([&](CMmioFile& file) { return stored.Write(&file); });
    }
}

void DescribeBranches(const CSysteme& system, const std::string& place, bool isLXFFile, Things& things)
{
    const auto& lists = system.GetArPtrListeReferences();
    for (std::size_t i = 0; i < lists.size(); ++i)
        if (lists[i] != nullptr && !lists[i]->IsEmpty())
            things[place + " list " + std::to_string(i)] =
                Written([&](CMmioFile& file) { return lists[i]->Write(&file, static_cast<std::int32_t>(i)); });
    const auto settings = [&](const CConfigData& tree) {
        return Written([&](CMmioFile& file) { return tree.Save(&file, isLXFFile); });
    };
    // A tree of which nothing is written, such as one of modules that a file of the LXF kind leaves out, may be
    // missing.
    if (const CConfigData* config = system.getPConfig(); config != nullptr)
        if (const std::string written = settings(*config); written != settings(CConfigData()))
            things[place + " settings"] = written;
    if (const CRecord* record = system.getRecord(); record != nullptr && record->getTrackCount() > 0)
        things[place + " recording"] = Written([&](CMmioFile& file) { return record->Save(&file); });
    std::size_t number = 0;
    for (const CITrack* track : system.iTracks())
        things[place + " transducer " + std::to_string(number++)] =
            Written([&](CMmioFile& file) { return track->Save(&file); });
}

// Right after a save. Points that aren't filled go with the first load, so they may be left out. Equal quantities come
// back as one, so each is known by its name here, and what uses it names it so.
Things Describe(CZMXFFile& document, bool withPoints)
{
    Things things;
    for (CGrandeur* quantity : document.GetListeGrandeur())
        quantity->SetChunkId(static_cast<std::uint32_t>(std::hash<wstring>()(quantity->GetNomGrandeur())));
    for (CGrandeur* quantity : document.GetListeGrandeur())
        things["quantity " + ToUtf8(quantity->GetNomGrandeur())] =
            Written([&](CMmioFile& file) { return CGrandeurMmioReaderWriter().Write(file, *quantity); });
    things["hardware"] =
        Written([&](CMmioFile& file) { return CHardInfoMmioReaderWriter().Write(file, document.readHardInfo()); });
    wstring names[3];
    document.getProjectInfo(names[0], names[1], names[2]);
    if (document.GetIsLXFFile())
        for (const wstring& name : names) things["project"] += ToUtf8(name) + '|';
    for (std::int32_t i = 0; i < document.getNbrSys(); ++i) {
        const std::string place = "system " + std::to_string(i);
        DescribeResults(*document.getSystem(i), place, withPoints, things);
        DescribeBranches(*document.getSystem(i), place, document.GetIsLXFFile(), things);
    }
    return things;
}

void RequireEqual(const Things& found, const Things& wanted, int time)
{
    const std::string round = ", time " + std::to_string(time);
    for (const auto& [name, bytes] : wanted) {
        const auto place = found.find(name);
        Require(place != found.end(), name + " comes back" + round);
        Require(place->second == bytes, name + " comes back as it was" + round);
    }
    Require(found.size() == wanted.size(), "nothing comes that was not there" + round);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr int kTimes = 5;
    (void)fuzz::Disk();
    Input input(data, size);
    Builder builder(input);
    std::vector<wstring> reasons;
    const bool isGood = builder.document().CheckSave(reasons);
    CZMXFFile* document = &builder.document();
    std::unique_ptr<CZMXFFile> loaded;
    const bool isLXFFile = document->GetIsLXFFile();
    const bool isSaved = document->Save(kPath.c_str());
    std::vector<wstring> messages;
    document->fetchErrors(messages, true);
    Require(isGood == messages.empty(), "a save says what the check said");
    if (!isGood) return 0;
    Require(isSaved, "what the check allows is saved");
    Things before = Describe(*document, false);
    for (int time = 1; time <= kTimes; ++time) {
        loaded = std::make_unique<CZMXFFile>(true, isLXFFile);
        Require(loaded->Load(kPath.c_str(), ZMXFFileLoadScope::all()), "what was saved loads");
        loaded->NeedToRemoveEverything(true);
        Require(loaded->Save(kPath.c_str()), "what was loaded is saved");
        loaded->fetchErrors(messages, true);
        Require(messages.empty(), "what was loaded allows its save");
        RequireEqual(Describe(*loaded, time > 1), before, time);
        before = Describe(*loaded, true);
    }
    return 0;
}
