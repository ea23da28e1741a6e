#pragma once

#include "zelmresult/settings/reglage_data.h"
#include "zelmresult/storage/record_io.h"

// For the sources of the settings' classes alone: how the list of fields of a class becomes its storage. Each source
// names its class in an explicit instantiation behind the list.

namespace ZelmResult {

template <class Derived, class Base>
bool StoredReglage<Derived, Base>::Write(CMmioFile* file)
{
    RecordWriter out(*file);
    return Derived::fields(out, static_cast<Derived&>(*this));
}

template <class Derived, class Base>
bool StoredReglage<Derived, Base>::Read(CMmioFile* file)
{
    RecordReader in(*file);
    return Derived::fields(in, static_cast<Derived&>(*this));
}

template <class Derived, class Base>
void StoredReglage<Derived, Base>::Outline(RecordOutline& out) const
{
    (void)Derived::fields(out, static_cast<const Derived&>(*this));
}

} // namespace ZelmResult
