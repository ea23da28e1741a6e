#include "bench/peers/hdf5.h"
#include "bench/peers/result_set.h"

// The layout that comes to mind first: a group per result, with an attribute per field and a data set of the values.

namespace peers {

namespace {

using namespace hdf5;

Handle ComplexType()
{
    using Value = std::complex<float>;
    return Compound(sizeof(Value), {{"r", 0, H5T_NATIVE_FLOAT}, {"i", sizeof(float), H5T_NATIVE_FLOAT}});
}

class Store : public PlainResultStore {
public:
    void Save(const Path& path) override
    {
        const Handle file = CreateFile(path);
        const Handle results = CreateGroup(file, "results");
        for (std::size_t i = 0; i < m_results.size(); ++i) {
            const Handle group = CreateGroup(results, std::to_string(i));
            WriteHeader(group, m_results[i].header);
            const Handle data = CreateData(group, "values", m_complex, {kPoints});
            Do(::H5Dwrite(data, m_complex, H5S_ALL, H5S_ALL, H5P_DEFAULT, m_results[i].values.data()));
        }
    }

    void Load(const Path& path) override
    {
        ForEach(path, [this](hid_t group) { m_results.push_back(ReadResult(group)); });
    }

    void List(const Path& path) override
    {
        ForEach(path, [this](hid_t group) { m_listed.push_back(ReadHeader(group)); });
    }

    void Fetch(const Path& path, int number) override
    {
        const Handle file = OpenFile(path);
        m_results.assign(1, ReadResult(OpenGroup(file, "results/" + std::to_string(number))));
    }

private:
    template <class Action>
    static void ForEach(const Path& path, const Action& action)
    {
        const Handle file = OpenFile(path);
        const Handle results = OpenGroup(file, "results");
        H5G_info_t info{};
        Do(::H5Gget_info(results, &info));
        for (hsize_t i = 0; i < info.nlinks; ++i) action(OpenGroup(results, std::to_string(i)));
    }

    void WriteHeader(hid_t group, const Header& header) const
    {
        WriteAttribute(group, "date", H5T_NATIVE_INT64, &header.date);
        for (std::size_t i = 0; i < kNumbers.size(); ++i)
            WriteAttribute(group, kNumbers[i], H5T_NATIVE_INT32, &header.numbers[i]);
        for (std::size_t i = 0; i < kPlaces.size(); ++i)
            WriteAttribute(group, kPlaces[i], m_place, header.places[i].data());
        for (std::size_t i = 0; i < kFlags.size(); ++i)
            WriteAttribute(group, kFlags[i], H5T_NATIVE_UINT8, &header.flags[i]);
        for (std::size_t i = 0; i < kTexts.size(); ++i) WriteTextAttribute(group, kTexts[i], header.texts[i]);
    }

    [[nodiscard]] Header ReadHeader(hid_t group) const
    {
        Header header;
        ReadAttribute(group, "date", H5T_NATIVE_INT64, &header.date);
        for (std::size_t i = 0; i < kNumbers.size(); ++i)
            ReadAttribute(group, kNumbers[i], H5T_NATIVE_INT32, &header.numbers[i]);
        for (std::size_t i = 0; i < kPlaces.size(); ++i)
            ReadAttribute(group, kPlaces[i], m_place, header.places[i].data());
        for (std::size_t i = 0; i < kFlags.size(); ++i)
            ReadAttribute(group, kFlags[i], H5T_NATIVE_UINT8, &header.flags[i]);
        for (std::size_t i = 0; i < kTexts.size(); ++i) header.texts[i] = ReadTextAttribute(group, kTexts[i]);
        return header;
    }

    [[nodiscard]] Result ReadResult(hid_t group) const
    {
        Result result{ReadHeader(group), Spectrum(kPoints)};
        Do(::H5Dread(OpenData(group, "values"), m_complex, H5S_ALL, H5S_ALL, H5P_DEFAULT, result.values.data()));
        return result;
    }

    Handle m_complex = ComplexType();
    Handle m_place = Array(H5T_NATIVE_UINT32, std::tuple_size_v<Place>);
};

} // namespace

std::unique_ptr<ResultStore> Hdf5ResultGroups() { return std::make_unique<Store>(); }

} // namespace peers
