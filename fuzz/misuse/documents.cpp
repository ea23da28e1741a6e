// Documents that are empty, filled, loaded twice and emptied, and files that aren't there or are none.

#include "fuzz/misuse/rooms.h"
#include "tests/builders/samples.h"
#include "zelmresult/zelmresult.h"

namespace ZelmResult::fuzz {

namespace {

const wstring kGolden = u"golden";
const wstring kSaved = u"saved";
constexpr std::int32_t kMostSystems = 17; // that a file holds
const idn::Idn kNowhere(idn::Analyzer(9), {77, 77}, {77, 77}, idn::Setting(77));

class Misuse : public Room {
public:
    explicit Misuse(Odd& odd) : Room(odd), m_document(true, odd.choice(4) == 0)
    {
        Disk()[u"empty"] = {};
        Disk()[u"noise"] = Data(3000, 'R');
    }
    ~Misuse() { m_document.NeedToRemoveEverything(true); }

    void Step()
    {
        CSysteme* system = m_document.getSystem(m_odd.pick<std::int32_t>({INT32_MIN, -1, 0, 0, 0, 1, 16, INT32_MAX}));
        switch (m_odd.choice(10)) {
        case 0: Load(); break;
        case 1: Add(); break;
        case 2: Empty(); break;
        case 3: Save(); break;
        case 4: AskDocument(); break;
        case 5: Fetch(); break;
        case 6: LoadNothing(); break;
        case 7:
            if (system != nullptr) DropBranches(*system);
            break;
        default:
            if (system != nullptr) Ask(*system);
        }
        m_document.NeedToRemoveEverything(true);
    }

private:
    wstring BadPath() { return m_odd.pick<wstring>({u"none", u"empty", u"noise", wstring(70000, u'p')}); }

    void Load()
    {
        constexpr const char* names[] = {"whole.zmxf", "whole_branches.zmxf", "whole_references.zmxf"};
        if (m_document.getNbrSys() > kMostSystems / 2) return;
        Disk()[kGolden] = test::DataFile(m_document.GetIsLXFFile() ? "whole_lxf.zmxf" : names[m_odd.choice(3)]);
        Require(m_document.Load(kGolden.c_str(), ZMXFFileLoadScope::all()), "a golden document loads"); // adds
        m_document.setFilename(u"");
    }
    void Add()
    {
        if (m_document.getNbrSys() == kMostSystems) return;
        Require(!m_document.AddSysteme(m_document.getSystem(0)), "no system, or one that is there, isn't added");
        m_document.AjouteGrandeur(nullptr, EOwnership(99));
        (void)m_document.AddComment(nullptr);
        const auto system = static_cast<std::uint16_t>(m_odd.pick<int>({0, 1, 17, 65535}));
        m_odd.call([&] { m_document.AjouteResultat(test::NewHeader(10), nullptr, system, true); },
                   [&] { m_document.AjouteResultat(test::NewHeader(~1U), test::NewScalar(10, 1), system, true); },
                   [&] { m_document.AjouteResultat(nullptr, nullptr, system, true); }, [&] { AddSetting(system); },
                   [&] {
                       auto made = MakeResult(2, 2);
                       made->GetReferencedAxis()->SetReferenceList(nullptr); // nothing to register
                       const CResultHeader header = test::HeaderOf({.processType = 2, .waterfallDimension = 2});
                       m_document.AjouteResultat(new CResultHeader(header), made.release(), system, true);
                   });
    }
    void AddSetting(std::uint16_t system)
    {
        auto setting = std::make_unique<CBooleenData>();
        if (!m_document.AddReglage(setting.get(), system)) return;
        Require(m_document.AddReglage(setting.release(), system), "a setting is taken where it is");
    }
    void Empty()
    {
        Require(m_document.RemoveAllResultats(), "results can go");
        for (std::int32_t i = 0; i < m_document.getNbrSys(); ++i) {
            Require(m_document.getSystem(i)->GetResultsNumber() == 0, "an emptied system has no results");
            Require(m_document.getSystem(i)->GetArPtrListeReferences().empty(), "an emptied system has no lists");
        }
    }
    static void DropBranches(CSysteme& system)
    {
        delete system.getRecord();
        system.setRecord(nullptr);
        delete system.getPConfig();
        system.SetConfig(nullptr);
        system.setSystemNumber(65535);
        Require(system.getNbrChannel() == 0, "without a recording there is no channel");
        Require(system.GetRecordDuration() == 0, "without a recording there is no duration");
        Require(system.getTrackDesc(0) == nullptr, "without a recording there is no track");
        Require(!system.setNbrMarker(1), "without a recording there is no marker");
    }
    void Save()
    {
        std::vector<wstring> reasons;
        Require(!m_document.Save(u""), "a document isn't saved without a name");
        (void)m_document.CheckSave(reasons);
        Require(m_document.Save(kSaved.c_str()), "a document is saved");
        CZMXFFile again(true, m_document.GetIsLXFFile());
        const bool isLoaded = again.Load(kSaved.c_str(), ZMXFFileLoadScope::all());
        again.NeedToRemoveEverything(true);
        Require(isLoaded || m_document.getNbrSys() == 0, "what was saved loads");
    }

    void Ask(CSysteme& system)
    {
        CResultHeader unknown = test::HeaderOf({.processType = ~0U, .filename = m_odd.text()});
        Require(!system.RemoveResultat(&unknown), "an unknown result doesn't go");
        Require(!system.ReplaceResultat(&unknown, &unknown, nullptr), "an unknown result isn't replaced");
        system.RemoveResultatsFromArray(&unknown, nullptr);
        system.ReplaceResultatsFromArray(&unknown, nullptr, nullptr, nullptr);
        system.AddITrack(nullptr);
        system.AddReglage(nullptr);
        system.AffecteReference();
        system.ReplaceGrandeur(nullptr, nullptr);
        (void)system.TypeBits();
        std::vector<CResultHeader*> headers;
        system.GetResultHeaderListe(headers);
        Require(system.CreeListesResultatsOrdonnees(), "results are put in order");
        Require(system.headers().size() == headers.size(), "each result is in order");
        Require(system.GetReglage(kNowhere) == nullptr, "no setting is nowhere");
        Require(system.GetSubmoduleSet(kNowhere, idn::ESubmoduleCollection(m_odd.word())).empty(),
                "nothing is nowhere");
        Require(system.getListeReference(SIZE_MAX) == nullptr, "no list is past the last");
        Require(!system.IsInListReferences(nullptr), "no reference is in no list");
        CMmioFile closed(false);
        std::int32_t number = m_odd.number();
        Require(!system.Save(&closed, m_odd.flag(), m_odd.word(), number), "a closed file takes no system");
        Require(!system.GetResultHeaderListe(&closed, headers), "a closed file has no headers");
        Require(CSysteme::GetReglage(&closed, kNowhere) == nullptr, "a closed file has no setting");
    }
    void AskDocument()
    {
        constexpr std::size_t kMostChannels = 60000;
        const std::int32_t number = m_odd.number();
        const CZMTrackDesc* track = m_document.getTrackDesc(number);
        Require(track == nullptr || number >= 0, "a channel has a number");
        Require(m_document.getTrackData(number) == track, "the values of a channel are its track");
        Require(m_document.GetReglageByChannel(kNowhere, number) == nullptr, "no setting is found by a channel");
        Require(m_document.GetReglageBySystem(kNowhere, number) == nullptr, "no setting is found by a system");
        const CResultHeader none = test::HeaderOf({.processType = ~0U});
        const auto system = static_cast<std::uint16_t>(number);
        Require(!m_document.RemoveResultat(&none, system), "an unknown result doesn't go from a document");
        Require(!m_document.ReplaceResultat(nullptr, &none, nullptr, system), "an unknown result has no place");
        std::int32_t code = 0;
        Require(!m_document.GrandeurExist(nullptr, code) && code == -1, "no quantity isn't there");
        std::vector<std::int32_t> numbers(kMostChannels);
        (void)m_document.getNbrChannel();
        (void)m_document.getTrackBlockSize(numbers.data());
        (void)m_document.getYUniData(nullptr, nullptr, nullptr, nullptr, nullptr);
        m_document.UpdateFileHeader();
        Require(!m_document.ChangeRecordDateAndSave({0, 13, 0, 40, 0, 0, 0, 0}), "no date changes nothing");
    }
    void Fetch()
    {
        const wstring path = BadPath();
        CHardInfo hardware;
        CConfigData settings;
        CListVectorRef list(true);
        CScalar scalar;
        std::vector<CResultHeader*> headers;
        std::int32_t system = m_odd.number();
        CZMXFFile reader(true, false);
        Require(!reader.GetHardInfo(path.c_str(), hardware), "a bad file has no hardware");
        Require(reader.GetReglage(path.c_str(), kNowhere) == nullptr, "a bad file has no setting");
        Require(!reader.GetConfig(path.c_str(), settings, static_cast<std::uint16_t>(system)), "nor settings");
        (void)reader.FillListeVecteurRef(nullptr, nullptr, list, path.c_str(), m_odd.number(), system);
        Require(list.IsEmpty(), "a bad file has no references");
        const CResultHeader header = test::HeaderOf({.filename = path, .chunkId = ~0U});
        Require(!reader.GetResultat(&scalar, &header, system), "a bad file has no result");
        Require(system == -1, "a result that isn't there has no system");
        Require(!reader.GetResultHeaderListe(path.c_str(), headers), "a bad file has no list");
        Require(headers.empty(), "a bad file has no headers");
        Require(!reader.HasRecordPreview(path.c_str()), "a bad file has no preview");
    }
    void LoadNothing()
    {
        const auto held = std::pair(m_document.getNbrSys(), m_document.GetListeGrandeur().size());
        const ZMXFFileLoadScope scope(ZMXFFileLoadScope::EScope(m_odd.pick({99, 0})), m_odd.number());
        Require(!m_document.Load(BadPath().c_str(), scope), "a bad file doesn't load");
        Require(m_document.filename().empty(), "a load that fails leaves no name");
        Require(held == std::pair(m_document.getNbrSys(), m_document.GetListeGrandeur().size()), "nor anything else");
    }

    CZMXFFile m_document;
};

} // namespace

void MisuseDocuments(Odd& odd)
{
    (void)Disk(); // where all documents are
    Run<Misuse>(odd);
}

} // namespace ZelmResult::fuzz
