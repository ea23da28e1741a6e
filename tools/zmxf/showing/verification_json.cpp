#include "tools/zmxf/showing/verification_json.h"

namespace zmxf {

namespace {

Json DamagesJson(const std::vector<Damage>& damages)
{
    Json json = Json::array();
    for (const Damage& damage : damages) json.push_back({{"offset", damage.offset}, {"text", damage.text}});
    return json;
}

} // namespace

Json VerificationJson(const Verification& found)
{
    return {{"verdict", NameOf(found.verdict)},
            {"results", found.results},
            {"readable", found.readable},
            {"loads", found.isLoaded},
            {"damages", DamagesJson(found.damages)},
            {"notes", DamagesJson(found.notes)}};
}

} // namespace zmxf
