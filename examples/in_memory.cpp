// A document as bytes in memory and on streams, as a server or a language binding needs it.

#include "zelmresult/zelmresult.h"

#include <cstdio>
#include <sstream>
#include <vector>

using namespace ZelmResult;

namespace {

// What arrived over the network, checked and handed on.
bool PassOn(const std::vector<char>& received, std::ostream& out)
{
    CZMXFFile document(true, false);
    if (!document.LoadFromMemory(received, ZMXFFileLoadScope::all(), u"from the network")) return false;
    document.NeedToRemoveEverything(true);
    return document.SaveToStream(out);
}

} // namespace

int main()
{
    CZMXFFile sent(true, false);
    sent.setProjectInfo(u"Pump 4", u"Before the repair", u"");
    std::vector<char> bytes;
    std::stringstream stream;
    if (!sent.SaveToMemory(bytes) || !PassOn(bytes, stream)) return 1;
    CZMXFFile read(true, false);
    if (!read.LoadFromStream(stream, ZMXFFileLoadScope::all())) return 1;
    std::printf("%zu bytes sent\n", bytes.size());
    return 0;
}
