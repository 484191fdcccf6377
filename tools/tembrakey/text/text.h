// Texts for people: English in the source, Chinese from po/zh_CN.po.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

// Marks a text for translation where tr() cannot be called, such as in a static table.
#define N_(english) english

namespace tembra::tool {

// Chooses Chinese or English from LC_ALL, LC_MESSAGES and LANG, or else from the system. Before
// this call everything is English.
void chooseLanguage();

// The text in the chosen language, or the text itself if it has no translation.
const char *tr(const char *english);

// A translated text with {1}, {2} ... replaced by the values, whose control characters are escaped:
// they can come from tokens and certificates.
std::string tr(const char *english, std::initializer_list<std::string_view> values);

} // namespace tembra::tool
