#include "file_system.h"

#include <chrono>
#include <fstream>
#include <sstream>
#include <thread>

#include "token/model/error.h"
#include "token/store/platform.h"

namespace tembra::token::store {

namespace {

namespace fs = std::filesystem;

// Repeats an action on a file that another process may keep busy, until it returns true.
template <typename Action>
void retry(Action action) {
    for (int tries = 1; !action(); ++tries) {
        require(tries < FILE_TRIES, SAR_FILEERR);
        std::this_thread::sleep_for(std::chrono::milliseconds(tries < 20 ? 0 : 2));
    }
}

bool write(const Path &file, std::string_view content) {
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    std::error_code error;
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write, error);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    stream.close();
    return stream.good() && !error;
}

} // namespace

void throwFileError() {
    throw Error{SAR_FILEERR};
}

void makePrivateDirectory(const Path &directory) {
    std::error_code error;
    if (fs::create_directories(directory, error))
        fs::permissions(directory, fs::perms::owner_all, error);
    require(!error, SAR_FILEERR);
}

std::optional<std::string> readFile(const Path &file) {
    std::optional<std::string> content;
    retry([&] {
        std::ifstream stream(file, std::ios::binary);
        std::error_code error;
        if (!stream.is_open())
            return !fs::exists(file, error) && !error;
        std::ostringstream text;
        text << stream.rdbuf(); // in blocks; character by character is much slower
        content = std::move(text).str();
        return !stream.bad();
    });
    return content;
}

void replaceFile(const Path &file, std::string_view content) {
    Path temporary = file;
    temporary += ".tmp"; // a killed writer may have left one
    retry([&] {
        std::error_code error;
        if (write(temporary, content))
            fs::rename(temporary, file, error);
        else
            error = std::make_error_code(std::errc::io_error);
        return !error;
    });
}

void removeFile(const Path &file) {
    retry([&] {
        std::error_code error;
        fs::remove(file, error);
        return !error;
    });
}

} // namespace tembra::token::store
