#pragma once

#include "tools/zmxf/showing/description.h"

#include <ostream>

namespace zmxf {

// A JsonDocument whose last value is a list that is printed item by item, so that no more than one is in memory.
class JsonList {
public:
    // Prints the object as far as the list. Keeps a reference to the stream.
    JsonList(std::ostream& out, const Json& object, const char* list);
    void Add(const Json& item);
    // Prints the rest.
    void End();

private:
    std::ostream& m_out;
    bool m_isEmpty = true;
};

} // namespace zmxf
