// A compiled catalogue of translations, as msgfmt writes it (.mo) and the build embeds it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tembra::tool {

class Catalogue {
public:
    explicit Catalogue(const char *bytes) : m_bytes(bytes) {}

    std::size_t size() const { return number(8); }
    // Sorted; the first one is empty, and its translation describes the catalogue.
    const char *original(std::size_t index) const { return text(number(12), index); }
    const char *translation(std::size_t index) const { return text(number(16), index); }

    // The translation, or null.
    const char *find(const char *wanted) const;

private:
    std::uint32_t number(std::size_t offset) const;
    // A table has the length and the offset of each text.
    const char *text(std::size_t table, std::size_t index) const {
        return m_bytes + number(table + 8 * index + 4);
    }

    const char *m_bytes;
};

} // namespace tembra::tool
