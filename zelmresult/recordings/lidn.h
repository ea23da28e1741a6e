#pragma once

#include "zelmresult/storage/stored_record.h"
#include "zelmresult/support/idn.h"

#include <cstddef>
#include <vector>

namespace ZelmResult {

// The stored form of a list of identifiers, a chunk "LIDN".
class CLIDN : public StoredFields<CLIDN, std::vector<idn::Idn>> {
public:
    static constexpr const char* kRecordName = "CLIDN";
    static constexpr std::ptrdiff_t kMostIdentifiers = 65535;

    // Called with the file at the data of the chunk. Empties the list first.
    [[nodiscard]] static bool mmioLoadCLIDN(CMmioFile* file, std::vector<idn::Idn>& list);
    // Makes and leaves the chunk. Identifiers past the first kMostIdentifiers aren't stored.
    [[nodiscard]] static bool mmioSaveCLIDN(CMmioFile* file, const std::vector<idn::Idn>& list);

private:
    friend StoredFields;
    template <class Io, class List>
    static bool fields(Io& io, List& list);
};
extern template class StoredFields<CLIDN, std::vector<idn::Idn>>;

} // namespace ZelmResult
