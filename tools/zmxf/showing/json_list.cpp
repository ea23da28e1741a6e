#include "tools/zmxf/showing/json_list.h"

#include <fmt/format.h>
#include <sstream>

namespace zmxf {

JsonList::JsonList(std::ostream& out, const Json& object, const char* list) : m_out(out)
{
    Json whole = object;
    whole[list] = Json::array();
    std::string text = JsonDocument(whole);
    text.erase(text.rfind(']')); // and what ends the object
    m_out << text;
}

void JsonList::Add(const Json& item)
{
    m_out << (m_isEmpty ? "\n" : ",\n");
    m_isEmpty = false;
    std::istringstream lines(IndentedJson(item));
    const char* lineFeed = "";
    for (std::string line; std::getline(lines, line); lineFeed = "\n") m_out << lineFeed << "    " << line;
}

void JsonList::End() { m_out << (m_isEmpty ? "" : "\n  ") << "]\n}\n"; }

} // namespace zmxf
