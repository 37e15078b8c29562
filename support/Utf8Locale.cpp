// SPDX-License-Identifier: MIT
#include "support/Utf8Locale.h"

#ifndef _WIN32

#include <clocale>
#include <cstdlib>
#include <langinfo.h>
#include <string>
#include <string_view>
#include <strings.h>

namespace {

bool isUtf8()
{
    const char* const encoding = nl_langinfo(CODESET);
    return strcasecmp(encoding, "UTF-8") == 0 || strcasecmp(encoding, "utf8") == 0;
}

} // namespace

void support::chooseUtf8Locale()
{
    if (std::setlocale(LC_ALL, "") != nullptr && isUtf8()) {
        return;
    }
    // "de_DE.ISO-8859-15" and "de_DE@euro" are both "de_DE".
    const char* const current = std::setlocale(LC_CTYPE, nullptr);
    const std::string_view name = current != nullptr ? current : "C";
    const std::string utf8 = std::string(name.substr(0, name.find_first_of(".@"))) + ".UTF-8";
    for (const std::string& candidate : {utf8, std::string("C.UTF-8")}) {
        if (std::setlocale(LC_CTYPE, candidate.c_str()) != nullptr && isUtf8()) {
            // LC_ALL, where it is set, counts for more than LC_CTYPE.
            const char* const all = std::getenv("LC_ALL");
            setenv(all != nullptr && *all != '\0' ? "LC_ALL" : "LC_CTYPE", candidate.c_str(), 1);
            return;
        }
    }
}

#else

void support::chooseUtf8Locale() {}

#endif
