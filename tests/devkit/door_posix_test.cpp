// The journal's access rights, where files have them.
#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

#include "door/control.h"

TEST(Journal, IsItsOwnersAlone) {
    const auto path = std::filesystem::temp_directory_path() / "tembra-door-access";
    std::filesystem::remove(path);
    const auto mask = ::umask(0);
    EXPECT_EQ(tembra::door::setJournal(path.c_str()), 1);
    ::umask(mask);
    tembra::door::setJournal(nullptr);
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(path).permissions(), perms::owner_read | perms::owner_write);
    std::filesystem::remove(path);
}
