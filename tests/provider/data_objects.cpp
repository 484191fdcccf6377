// Data objects: names, rights, ranges, and the lists that a token may answer.
#include "scripted_test.h"

#include <algorithm>

namespace tembra::test {
namespace {

class DataObjects : public ScriptedTest {
protected:
    void SetUp() override {
        ScriptedTest::SetUp();
        m_application = &insert({});
    }
    void store(const char *name, std::size_t size) {
        FileModel &file = m_application->files[name];
        for (std::size_t i = 0; i < size; ++i)
            file.content.push_back(static_cast<unsigned char>(i));
    }
    ApplicationModel *m_application = nullptr;
    unsigned char m_buffer[256] = {};
    int m_length = 77;
};

TEST_F(DataObjects, RightsComeFromTheModeBlock) {
    const struct {
        std::vector<char> mode;
        int result;
        ULONG read, write;
    } cases[] = {{{3, 0, 1}, 1, 0x10, 0x00},
                 {{2, 3}, 1, 0xFF, 0xFF},
                 {{4, 0, 0, 3}, 1, 0x00, 0x00},
                 {{4, 0, 3, 0}, 1, 0x10, 0x10},
                 {{2, 1, 3, 3}, 1, 0xFF, 0x00},
                 {{3, 2, 1}, 1, 0x10, 0xFF},
                 {{2, 4}, 1, 0x00, 0x00},
                 {{5, 3, 3, 3, 3}, 0, 0, 0},
                 {{1, 3}, 0, 0, 0},
                 {{0, 3}, 0, 0, 0},
                 {{-1, 3}, 0, 0, 0},
                 {{-128, 3}, 0, 0, 0}};
    int id = 0;
    for (const auto &at : cases) {
        mark();
        EXPECT_EQ(DeviceCreateData(m_device, ++id, at.mode.data(), 10), at.result);
        if (at.result == 1) {
            const FileModel &file = m_application->files.at(std::to_string(id));
            EXPECT_EQ(file.readRights, at.read) << id;
            EXPECT_EQ(file.writeRights, at.write) << id;
            EXPECT_EQ(file.content.size(), 10u);
        } else {
            EXPECT_EQ(trace().failures(),
                      errors("DeviceCreateData",
                             "GetFileRight(mode, &ulReadRights, &ulWriteRights) == 0"));
        }
    }
    const char bad[] = {5};
    EXPECT_EQ(DeviceCreateData(m_device, 1, bad, 10), -6) << "existence comes before the rights";
    EXPECT_EQ(DeviceCreateData(m_device, 0x7FFFFFFF, "\2\3", 0), 1);
    EXPECT_TRUE(m_application->files.contains("2147483647"));
}

TEST_F(DataObjects, ReadWhatThereIs) {
    store("7", 100);
    const char *beyond = "offset > (int)attr.FileSize";
    const struct {
        int id, offset;
        bool query;
        int size, result, length;
        const char *message;
    } cases[] = {{7, 90, false, 100, 1, 10, nullptr},
                 {7, 0, false, 100, 1, 100, nullptr},
                 {7, 0, false, 5, 1, 5, nullptr},
                 {7, 100, false, 5, 1, 0, nullptr},
                 {7, 101, false, 5, -1, 77, beyond},
                 {7, 30, true, 0, 1, 70, nullptr},
                 {7, 100, true, -1, 1, 0, nullptr},
                 {7, 5, false, -1, -1, 77, "datalen < 0"},
                 {7, 5, false, 0, 1, 0, nullptr},
                 {-1, 0, false, 5, -1, 77, nullptr},
                 {7, -1, false, 5, -1, 77, nullptr},
                 {8, 0, false, 5, -7, 77, nullptr},
                 {70, 0, false, 5, -7, 77, nullptr},
                 {7, 0x7FFFFFFF, false, 0x7FFFFFFF, -1, 77, beyond},
                 {7, 99, false, 0x7FFFFFFF, 1, 1, nullptr}};
    for (const auto &at : cases) {
        SCOPED_TRACE(std::to_string(at.offset) + ", " + std::to_string(at.size));
        mark();
        m_length = 77;
        EXPECT_EQ(DeviceReadDataEx(m_device, at.id, at.offset, at.query ? nullptr : m_buffer,
                                   at.size, &m_length),
                  at.result);
        EXPECT_EQ(m_length, at.length);
        EXPECT_EQ(trace().failures(), errors("DeviceReadDataEx", at.message));
    }
    EXPECT_EQ(DeviceReadDataEx(m_device, 7, 100, m_buffer, 5, &m_length), 1);
    EXPECT_EQ(script().SKF_ReadFile.argument<3>(), 0u) << "the token is asked for no bytes";
    EXPECT_EQ(DeviceReadDataEx(m_device, 7, 42, m_buffer, 1, &m_length), 1);
    EXPECT_EQ(m_buffer[0], 42);
}

TEST_F(DataObjects, MoreThanTheTokenWasOffered) {
    store("7", 100);
    for (const ULONG reported : {11u, 0x80000000u}) {
        script().SKF_ReadFile.run([reported](auto, auto, auto, auto, auto, ULONG *length) {
            *length = reported;
            return SAR_OK;
        });
        mark();
        EXPECT_EQ(DeviceReadDataEx(m_device, 7, 90, m_buffer, 100, &m_length), 0);
        EXPECT_EQ(m_length, 77);
        EXPECT_EQ(trace().failures(),
                  errors("DeviceReadDataEx",
                         withNumber("SKF_ReadFile returned %u bytes, more than the 10 it was "
                                    "offered",
                                    reported)));
    }
}

TEST_F(DataObjects, WriteWithinTheirSize) {
    store("7", 100);
    const char *beyond = "offset + datalen > (int)attr.FileSize";
    const struct {
        int id, offset, size, result;
        const char *message;
    } cases[] = {{7, 90, 10, 1, nullptr}, {7, 90, 11, -1, beyond},
                 {7, 0, 0, -1, nullptr},  {7, 0, -1, -1, nullptr},
                 {7, -1, 1, -1, nullptr}, {-7, 0, 1, -1, nullptr},
                 {8, 0, 1, -7, nullptr},  {7, 0x7FFFFFFF, 0x7FFFFFFF, -1, beyond},
                 {7, 100, 1, -1, beyond}};
    std::fill(std::begin(m_buffer), std::end(m_buffer), static_cast<unsigned char>(0xAA));
    for (const auto &at : cases) {
        mark();
        EXPECT_EQ(DeviceWriteDataEx(m_device, at.id, at.offset, m_buffer, at.size), at.result)
            << at.offset;
        EXPECT_EQ(trace().failures(), errors("DeviceWriteDataEx", at.message));
    }
    EXPECT_EQ(script().SKF_WriteFile.calls(), 1);
    EXPECT_EQ(m_application->files["7"].content[89], 89);
    EXPECT_EQ(m_application->files["7"].content[90], 0xAA);
}

TEST_F(DataObjects, AreDeleted) {
    store("0", 1);
    EXPECT_EQ(DeviceDeleteData(m_device, -1), -1);
    EXPECT_EQ(DeviceDeleteData(m_device, 1), -7);
    EXPECT_EQ(DeviceDeleteData(m_device, 0), 1);
    EXPECT_EQ(DeviceDeleteData(m_device, 0), -7);
    EXPECT_THAT(trace().failures(), IsEmpty());
}

TEST_F(DataObjects, ListsAreReadWithinTheirBuffer) {
    const struct {
        std::string list;
        ULONG size;
        bool found;
    } cases[] = {
        {std::string("6\0007\0\0", 5), 5, true},
        {std::string("6\0007\0", 4), 4, true},
        {std::string("6\0007\0", 4), 3, false},    // the last name lacks its NUL
        {std::string("6\0\0\0007\0", 6), 6, true}, // empty names do not end the list
        {std::string("77\0", 3), 3, false},
        {std::string("7\0", 2), 0, false},
        {std::string(8191, '7') + '\0', 8192, false},
        {std::string(8192, '7'), 8192, false},
        {std::string(8190, '\0') + std::string("7\0", 2), 8192, true},
        {std::string(8190, '\0') + std::string("7\0", 2), 0xFFFFFFFF, true},
        {std::string(8191, '\0') + "7", 0x80000000, false},
    };
    for (const auto &at : cases) {
        script().SKF_EnumFiles.run([&at](HAPPLICATION, LPSTR out, ULONG *size) {
            EXPECT_EQ(*size, 8192u);
            std::copy(at.list.begin(), at.list.end(), out);
            *size = at.size;
            return SAR_OK;
        });
        store("7", 1);
        EXPECT_EQ(DeviceDeleteData(m_device, 7), at.found ? 1 : -7) << at.list.size();
    }
}

TEST_F(DataObjects, HugeFileSizesAreNegative) {
    store("7", 100);
    for (const ULONG size : {0x80000000u, 0xFFFFFFFFu}) {
        script().SKF_GetFileInfo.run([size](auto, auto, FILEATTRIBUTE *info) {
            info->FileSize = size;
            return SAR_OK;
        });
        EXPECT_EQ(DeviceReadDataEx(m_device, 7, 0, m_buffer, 10, &m_length), -1);
        EXPECT_EQ(DeviceWriteDataEx(m_device, 7, 0, m_buffer, 10), -1);
    }
    EXPECT_EQ(script().SKF_ReadFile.calls() + script().SKF_WriteFile.calls(), 0);
}

TEST_F(DataObjects, NeedAnApplication) {
    resetDevices();
    script().memory.addDevice("blank");
    discover();
    EXPECT_EQ(DeviceCreateData(m_device, 7, "\2\3", 1), 0);
    EXPECT_EQ(DeviceReadDataEx(m_device, 7, 0, m_buffer, 10, &m_length), 0);
    EXPECT_EQ(DeviceWriteDataEx(m_device, 7, 0, m_buffer, 10), 0);
    EXPECT_EQ(DeviceDeleteData(m_device, 7), 0);
    const char *message = "hDevice->m_isformat == 0";
    EXPECT_THAT(trace().failures(),
                ElementsAre(error("DeviceCreateData", message), error("DeviceReadDataEx", message),
                            error("DeviceWriteDataEx", message),
                            error("DeviceDeleteData", message)));
    EXPECT_EQ(DeviceDeleteData(m_device, -1), -1) << "arguments come first";
    EXPECT_THAT(callsSinceMark(), IsEmpty());
}

} // namespace
} // namespace tembra::test
