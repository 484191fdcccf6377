// Texts for people: English in the source, another language by table.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace tembra::tool {

// One translated text. A language's table is an array of these.
struct Translation {
    const char *english;
    const char *translated;
};

// Chooses the language from LC_ALL, LC_MESSAGES and LANG, or else from the system: Chinese or
// English. Before this call everything is English.
void chooseLanguage();

// The text in the chosen language; itself when the table does not have it.
const char *tr(const char *english);

// A translated text with {1}, {2} ... replaced by the values.
std::string tr(const char *english, std::initializer_list<std::string_view> values);

} // namespace tembra::tool
