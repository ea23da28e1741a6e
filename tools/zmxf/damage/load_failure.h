#pragma once

#include "tools/zmxf/damage/chunk_tree.h"
#include "tools/zmxf/damage/field_notes.h"

#include <string>

namespace zmxf {

// Where and why a load of a document as a whole ends, for one that fails. Goes through the parts of a load one by one.
// notes are being taken, lent.
Damage ExplainLoadFailure(const std::string& path, FieldNotes& notes);

} // namespace zmxf
