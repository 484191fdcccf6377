#include "temporary_directory.h"

#include <fstream>
#include <random>
#include <sstream>

namespace tembra::test {

TemporaryDirectory::TemporaryDirectory() {
    std::random_device random;
    do {
        m_path =
            std::filesystem::temp_directory_path() / ("tembra-test-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(m_path));
}

// A file that is still open must not make a finished test fail.
TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string readFile(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void writeFile(const std::filesystem::path &path, const std::string &content) {
    std::ofstream(path, std::ios::binary) << content;
}

} // namespace tembra::test
