#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/exporting/exporter.h"

// Stands for the exporter of a program that was built without HDF5.

namespace zmxf {

std::unique_ptr<Exporter> MakeHdf5Exporter(const std::string& /*path*/, const ExportedDocument& /*document*/,
                                           const ExportChoices& /*choices*/, ExportNotes& /*notes*/)
{
    throw Failure("this zmxf was built without HDF5; -D ZELMRESULT_EXPORT_HDF5=ON builds it with libhdf5");
}

} // namespace zmxf
