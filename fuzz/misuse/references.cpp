// References, their lists and the axes that use them, any of which may die before the others.

#include "fuzz/misuse/rooms.h"
#include "zelmresult/results/order_track.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/ref_waterfall.h"
#include "zelmresult/waterfalls/waterfall.h"

#include <algorithm>
#include <deque>

namespace ZelmResult::fuzz {

namespace {

// An object that others may delete, in the list of those that still live.
template <class T>
class Tracked : public T {
public:
    template <class... Arguments>
    explicit Tracked(std::vector<T*>& living, const Arguments&... arguments) : T(arguments...), m_living(living)
    {
        m_living.push_back(this);
    }
    Tracked(const Tracked&) = delete;
    Tracked& operator=(const Tracked&) = delete;
    ~Tracked() override { std::erase(m_living, this); }

private:
    std::vector<T*>& m_living;
};

class Misuse : public Room {
public:
    using Room::Room;
    ~Misuse()
    {
        m_results.clear();
        while (!m_series.empty()) delete m_series.front();
        while (!m_lists.empty()) delete m_lists.front();
        while (!m_references.empty()) delete m_references.front();
    }

    void Step()
    {
        CListVectorRef* list = One(m_lists);
        CWaterfallRef* reference = One(m_references);
        CRefWaterfall* series = One(m_series);
        switch (m_odd.choice(8)) {
        case 0: Add(list, reference); break;
        case 1: m_odd.call([&] { delete list; }, [&] { delete reference; }, [&] { delete series; }); break;
        case 2:
            if (!m_results.empty()) m_results.pop_front();
            break;
        case 3:
            if (list != nullptr) ChangeList(*list, reference);
            break;
        case 4:
            if (reference != nullptr) Fill(*reference, series);
            break;
        case 5:
            if (series != nullptr) Fill(*series);
            break;
        default: Use(Axis(), list, reference);
        }
        CheckAxes();
    }

private:
    template <class T>
    T* One(const std::vector<T*>& of)
    {
        return of.empty() ? nullptr : of[m_odd.choice(of.size())];
    }
    CReferencedAxis& Axis()
    {
        if (m_results.empty()) AddResult(nullptr);
        const std::size_t which = m_odd.choice(m_results.size() + m_series.size());
        if (which >= m_results.size()) return *m_series[which - m_results.size()];
        return *m_results[which]->GetReferencedAxis();
    }

    void Add(CListVectorRef* list, CWaterfallRef* reference)
    {
        constexpr std::size_t kMost = 12;
        if (m_lists.size() + m_references.size() + m_series.size() + m_results.size() > kMost) return;
        const auto process = m_odd.pick<std::uint32_t>({20, 128}); // 128 slides
        const std::int32_t size = m_odd.size();
        m_odd.call([&] { new Tracked<CListVectorRef>(m_lists, m_odd.flag()); },
                   [&] { new Tracked<CWaterfallRef>(m_references, 23U, size, m_odd.text(), SignalType::Real, true); },
                   [&] {
                       new Tracked<CRefWaterfall>(m_series, 10U, size, SignalType::Real, list, reference, process,
                                                  m_odd.flag(), true);
                   },
                   [&] { AddResult(list); });
    }
    void AddResult(CListVectorRef* list)
    {
        m_odd.call(
            [&] { m_results.push_back(std::make_unique<CRefVector>(16, m_odd.size(), SignalType::Real, list, 0)); },
            [&] { m_results.push_back(std::make_unique<CRefOrderTrack>(22, 3, 2, SignalType::Real)); },
            [&] { m_results.push_back(std::make_unique<CWaterfall>(2, 20, 2, 3, list, SignalType::Real, true)); });
    }
    void ChangeList(CListVectorRef& list, CVectorRef* reference)
    {
        m_odd.call([&] { list.AddVectorRef(reference); }, [&] { (void)list.RemoveVectorRef(reference); },
                   [&] { (void)list.RemoveVectorRef(m_odd.text()); }, [&] { list.RemoveAll(); },
                   [&] { list.Destroy(); }, [&] { list.DestroyAssociatedWaterfallRef(); }, [&] { list.DeleteAllRef(); },
                   [&] { list.SetSize(m_odd.size()); }, [&] { list.CopyPrecisionFrom(list); },
                   [&] { delete list.GetCopy(); });
    }
    void Fill(CWaterfallRef& reference, CRefWaterfall* series)
    {
        const std::int32_t block = m_odd.number();
        float value = m_odd.value();
        std::int32_t place = -1;
        m_odd.call(
            [&] { place = reference.InsertValueInSortedTabs(value, block) - reference.GetSortedValues().GetCount(); },
            [&] { (void)reference.RemoveValueInSortedTabs(block); },
            [&] { (void)reference.AddUnsortedValue(value, block); },
            [&] { (void)reference.AddUnsortedBlockNumber(block); },
            [&] { (void)reference.GetValueByBlocForConversion(block, value); },
            [&] { place = reference.GetValueByBloc(block, value); }, [&] { (void)reference.UpdateTabRefValue(); },
            [&] { reference.Clean(); }, [&] { reference.SetMyRefVect(series); },
            [&] { reference.SetMyRefVectTemp(series); });
        Require(place < std::max(reference.GetSize(), 1), "a value has a place in its reference");
    }
    void Fill(CRefWaterfall& series)
    {
        const std::int32_t block = m_odd.number();
        float value = m_odd.value();
        std::int32_t place = -1;
        m_odd.call([&] { place = series.AddRefValue(value, block, m_odd.flag()); },
                   [&] { place = series.GetValueByBloc(block, value); },
                   [&] {
                       series.SetFilled(m_odd.number());
                       (void)series.UpdateTabValue();
                       series.SetFilled(std::min(series.GetFilled(), 3));
                   },
                   [&] { series.SetSize(m_odd.size()); }, [&] { series.Clean(); }, [&] { series.ReInitPtrTab(); },
                   [&] { series.SetMyVecteurReference(m_odd.text(), nullptr); },
                   [&] { series.UpdateVecteurReferencePtr(); }, [&] { delete series.GetCopy(); },
                   [&] { series = static_cast<CResult*>(One(m_series)); });
        Require(place >= -1 && place < std::max(series.GetSize(), 1), "a value has a place in its series");
    }
    void Use(CReferencedAxis& axis, CListVectorRef* list, CVectorRef* reference)
    {
        const std::int32_t point = m_odd.number();
        m_odd.call([&] { axis.SetReferenceList(list); }, [&] { axis.SetChosenReference(reference); },
                   [&] { axis.SetReference(m_odd.text(), nullptr, reference); },
                   [&] { axis.RemoveVectorRef(reference); }, [&] { axis.AddVectorRef(reference); },
                   [&] { axis.SetBlocNumber(point, m_odd.number()); }, [&] { axis.SetFilled(std::min(point, 3)); },
                   [&] { axis.Clean(); }, [&] { CopyBooks(axis); }, [&] { Ask(axis); },
                   [&] { // deletes the results that show its references, so it must be none of them
                       if (dynamic_cast<CRefWaterfall*>(&axis) == nullptr) axis.DeleteAllRef();
                   });
    }
    static void CopyBooks(CReferencedAxis& axis)
    {
        const CReferencedAxis flat(axis);
        Require(flat.GetReferences() == axis.GetReferences(), "a flat copy shares the list");
        const std::unique_ptr<CReferencedAxis> copy(axis.GetRefAxisCopy());
        axis = static_cast<CReferencedAxis*>(nullptr);
        axis = copy.get();
    }
    void Ask(CReferencedAxis& axis)
    {
        const std::int32_t point = m_odd.number();
        const std::int32_t* entry = axis.GetBlocNumberPtr(point);
        Require(axis.GetBlocNumber(point) == (entry != nullptr ? *entry : -1), "a point past the table has no block");
        Require(!axis.CopyBlocNumber(static_cast<const std::int32_t*>(nullptr), point), "no numbers aren't copied");
        CVectorRef stranger(23, 2, u"Time", SignalType::Real);
        axis.RemoveVectorRef(&stranger);
        axis.SetReference(m_odd.text(), nullptr, &stranger);
        axis.SetChosenReference(&stranger);
        Require(axis.GetChosenReference() != &stranger, "a reference that isn't of the list isn't chosen");
        float* values = nullptr;
        axis.GetAnyRefValue(values, m_odd.text(), nullptr);
        Require(values == nullptr || axis.GetReferences() != nullptr, "without a list there are no values");
    }
    // What objects point at lives.
    void CheckAxes()
    {
        std::vector<const CReferencedAxis*> axes(m_series.begin(), m_series.end());
        for (const auto& result : m_results) {
            axes.push_back(result->GetReferencedAxis());
            result->SetXMin(1);
            (void)result->GetXMax();
        }
        for (const CReferencedAxis* axis : axes) {
            const std::vector<CVectorRef*>* references = axis->GetReferencesList();
            const CVectorRef* chosen = axis->GetChosenReference();
            Require((references != nullptr) == (axis->GetReferences() != nullptr), "references are those of the list");
            if (chosen == nullptr) continue;
            Require(references != nullptr, "without a list no reference is chosen");
            (void)chosen->name();
        }
        for (const CRefWaterfall* series : m_series)
            if (const CWaterfallRef* shown = series->GetMyVecteurReference(); shown != nullptr) (void)shown->name();
        for (const CWaterfallRef* reference : m_references)
            for (const CRefWaterfall* user : {reference->GetMyRefVect(), reference->GetMyRefVectTemp()})
                if (user != nullptr) (void)user->GetMyVecteurReference();
    }

    std::vector<CListVectorRef*> m_lists;
    std::vector<CWaterfallRef*> m_references;
    std::vector<CRefWaterfall*> m_series;
    std::deque<std::unique_ptr<CResult>> m_results;
};

} // namespace

void MisuseReferences(Odd& odd) { Run<Misuse>(odd); }

} // namespace ZelmResult::fuzz
