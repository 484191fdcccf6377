#include "crypto/hex.h"
#include "tembrakey/commands/device_command.h"
#include "tembrakey/commands/options.h"

namespace tembra::tool {

namespace {

// A command that works with one data object.
class DataCommand : public DeviceCommand {
public:
    void describe(Arguments &arguments) final {
        arguments.number("ID", m_id, "number of the object", 0, LARGEST_NUMBER).required();
        describeMore(arguments);
        m_login.declare(arguments);
    }

protected:
    int m_id = 0;
    LoginOption m_login;

private:
    virtual void describeMore(Arguments &arguments) = 0;
};

class DataCreate final : public DataCommand {
    void describeMore(Arguments &arguments) override {
        arguments
            .number("--size N", m_size, "size in bytes, which cannot be changed later", 0,
                    LARGEST_NUMBER)
            .required()
            .choice("--anyone", m_anyone, "rights of anyone (default: none)",
                    {"none", "r", "w", "rw"})
            .choice("--user", m_user, "rights after user login (default: rw)",
                    {"none", "r", "w", "rw"});
    }
    void work(const Console &console, const Device &device) override {
        m_login.logInIfGiven(device);
        const char mode[] = {3, rights(m_anyone), rights(m_user)};
        check("DeviceCreateData",
              device.session()->DeviceCreateData(device.get(), m_id, mode, m_size),
              {TEMBRA_FAILURE, tr("the token may be full or without application")});
        console.result({{"id", m_id}, {"size", m_size}},
                       tr("Data object {1} created, {2} bytes",
                          {std::to_string(m_id), std::to_string(m_size)}));
    }

    // Bit 0 reading, bit 1 writing.
    static char rights(const std::string &text) {
        const bool reading = text.find('r') != std::string::npos;
        const bool writing = text.find('w') != std::string::npos;
        return static_cast<char>((reading ? 1 : 0) | (writing ? 2 : 0));
    }

    int m_size = 0;
    std::string m_anyone = "none";
    std::string m_user = "rw";
};

class DataRead final : public DataCommand {
    void describeMore(Arguments &arguments) override {
        arguments
            .number("--offset N", m_offset, "offset of the first byte (default: 0)", 0,
                    LARGEST_NUMBER)
            .number("--length N", m_length, "number of bytes (default: up to the end)", 0,
                    LARGEST_NUMBER);
        m_out.declare(arguments, N_("write the bytes to this file (default: standard output)"));
    }
    void prepare(const Console &console) override {
        if (!console.json())
            m_out.requireBinary(console, {});
    }
    void work(const Console &console, const Device &device) override;
    crypto::SecretBytes read(const Device &device) const;

    int m_offset = 0;
    int m_length = -1;
    OutputOption m_out;
};

crypto::SecretBytes DataRead::read(const Device &device) const {
    const auto call = [&](unsigned char *data, int capacity, int *length) {
        check("DeviceReadDataEx",
              device.session()->DeviceReadDataEx(device.get(), m_id, m_offset, data, capacity,
                                                 length),
              {TEMBRA_BAD_ARGUMENT, tr("the offset is beyond the object's end")});
    };
    int length = 0;
    call(nullptr, 0, &length);
    if (m_length >= 0 && m_length < length)
        length = m_length;
    crypto::SecretBytes data(static_cast<std::size_t>(length) + 1);
    call(data.data(), length, &length);
    data.resize(static_cast<std::size_t>(length));
    return data;
}

void DataRead::work(const Console &console, const Device &device) {
    m_login.logInIfGiven(device);
    const crypto::SecretBytes data = read(device);
    Json object = {{"id", m_id}, {"offset", m_offset}, {"bytes", data.size()}};
    if (!m_out.isGiven() && console.json()) {
        object["data"] = crypto::toHex(data);
        console.result(object, "");
        return;
    }
    writeWhole(m_out.path(), data, Access::owner);
    m_out.report(console, object, N_("Data written to {1}"));
}

class DataWrite final : public DataCommand {
    void describeMore(Arguments &arguments) override {
        arguments.text("FILE", m_file, "file to write into the object (-: standard input)")
            .required()
            .number("--offset N", m_offset, "offset of the first byte (default: 0)", 0,
                    LARGEST_NUMBER);
    }
    void prepare(const Console &) override { m_data = readWhole(m_file, 1 << 24); }
    void work(const Console &console, const Device &device) override {
        m_login.logInIfGiven(device);
        const int size = static_cast<int>(m_data.size());
        check(
            "DeviceWriteDataEx",
            device.session()->DeviceWriteDataEx(device.get(), m_id, m_offset, m_data.data(), size),
            {TEMBRA_BAD_ARGUMENT,
             tr("there must be something to write, and it must fit in the object's size")});
        console.result({{"id", m_id}, {"offset", m_offset}, {"bytes", size}},
                       tr("{1} bytes written to data object {2}",
                          {std::to_string(size), std::to_string(m_id)}));
    }

    std::string m_file;
    int m_offset = 0;
    crypto::SecretBytes m_data;
};

class DataDelete final : public DataCommand {
    void describeMore(Arguments &arguments) override {
        arguments.flag("--yes", m_yes, "do not ask");
    }
    void prepare(const Console &console) override {
        console.requireConsent(m_yes, tr("Delete data object {1}?", {std::to_string(m_id)}));
    }
    void work(const Console &console, const Device &device) override {
        m_login.logInIfGiven(device);
        check("DeviceDeleteData", device.session()->DeviceDeleteData(device.get(), m_id));
        console.result({{"id", m_id}, {"deleted", true}},
                       tr("Data object {1} deleted", {std::to_string(m_id)}));
    }

    bool m_yes = false;
};

} // namespace

const CommandEntry dataCreateCommand = {
    "data create", N_("Create a data object of a fixed size"), "",
    "  tembrakey data create 7 --size 256 --pin-env PIN\n"
    "  tembrakey data create 8 --size 64 --anyone r --user rw --pin-env PIN",
    make<DataCreate>};

const CommandEntry dataReadCommand = {"data read", N_("Read a data object"), "",
                                      "  tembrakey data read 7 --out seven.bin --pin-env PIN\n"
                                      "  tembrakey data read 8 --offset 16 --length 8 --json",
                                      make<DataRead>};

const CommandEntry dataWriteCommand = {
    "data write", N_("Write to a data object"), "",
    "  tembrakey data write 7 seven.bin --pin-env PIN\n"
    "  printf hello | tembrakey data write 7 - --offset 16 --pin-env PIN",
    make<DataWrite>};

const CommandEntry dataDeleteCommand = {"data delete", N_("Delete a data object"), "",
                                        "  tembrakey data delete 7 --pin-env PIN\n"
                                        "  tembrakey data delete 8 --yes --pin-env PIN",
                                        make<DataDelete>};

} // namespace tembra::tool
