#pragma once

// Parsing with a reason: the queue's files and the print modes it checks are
// read for people who must fix them, so a failure says where.

#include <pugixml.hpp>

#include <string>
#include <string_view>

namespace tarn::internal {

// Parses utf8 into document. False, document emptied, when it is not XML
// ("XML error at line 3: ...") or its root element is not named exactly root
// ("the root element is 'PMH', not 'QueueEdit'"); the reason goes to error.
// A null root accepts any root element.
bool ParseDocument(pugi::xml_document& document, std::string_view utf8, const char* root,
                   std::wstring* error);

}  // namespace tarn::internal
