// A new directory that is removed with the object.
#pragma once

#include <filesystem>
#include <string>

namespace tembra::test {

class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory &) = delete;
    TemporaryDirectory &operator=(const TemporaryDirectory &) = delete;

    const std::filesystem::path &path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

std::string readFile(const std::filesystem::path &path);
void writeFile(const std::filesystem::path &path, const std::string &content);

} // namespace tembra::test
