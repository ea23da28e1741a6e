#include "web/binding/calls.h"

#include "zelmresult/quantities/unite.h"
#include "zelmresult/quantities/user_strings.h"

#include <emscripten/emscripten.h>

// The one door of the module. The answer lives until the next call.
extern "C" EMSCRIPTEN_KEEPALIVE const char* zelm_call(const char* request)
{
    static auto* const calls = [] {
        ZelmResult::ZelmResult_initializeUserStrings();
        ZelmResult::CUnite::setPrefix_micro(u"\u00B5"); // as zmxf prints it
        return new zmxf::web::Calls;
    }();
    static std::string answer;
    answer.clear();
    answer = calls->Answer(request);
    return answer.c_str();
}
