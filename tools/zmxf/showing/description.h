#pragma once

#include "tools/zmxf/showing/value_text.h"
#include "zelmresult/document/hard_info.h"
#include "zelmresult/reading/listed_result.h"
#include "zelmresult/reading/stored_branches.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

// What documents hold, as JSON and as short texts.

namespace zmxf {

// Fields keep their order.
using Json = nlohmann::ordered_json;

// Whether values have their texts beside them.
enum class ValueTexts : bool { Without, With };

// UTF-8 for a JSON text, whatever the characters.
std::string JsonText(ZelmResult::wstring_view text);
// The shortest digits of the float; null for what isn't a finite number.
Json JsonNumber(float value);
// Of all objects that the program prints. It rises when a key goes, or comes to mean something else.
inline constexpr int kJsonSchema = 1;
// Text that isn't UTF-8 comes with replacement characters.
std::string IndentedJson(const Json& json);
// The whole document with a line feed after it; an object begins with "schema", the version above.
std::string JsonDocument(const Json& json);

Json HeaderJson(const ZelmResult::ListedResult& listed, std::size_t number);
Json HardwareJson(const std::vector<ZelmResult::strHardInfo>& hardware);
// Null for no quantity.
Json QuantityJson(const Quantity& quantity);

// That of a stored quantity.
std::string CodeText(const ZelmResult::StoredQuantity& stored);
// The names of the bits of a document's type word.
std::vector<std::string> ContentNames(std::uint32_t type);
// Of a setting or a track, as the library prints it.
std::string IdnText(const idn::Idn& idn);
// "m s^-2", empty for a plain number.
std::string DimensionText(const ZelmResult::LabelledQuantity& quantity);
std::string DateText(const ZelmResult::OTime& date);

} // namespace zmxf
