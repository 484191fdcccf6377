// Creating, listing, plugging and removing tokens.
#include "tembra_soft_token.h"

#include "crypto/hex.h"
#include "crypto/random.h"
#include "token/model/token.h"
#include "token/skf/entry.h"
#include "token/store/directory.h"

using namespace tembra;
using namespace tembra::token;

namespace {

constexpr std::uint32_t MAX_TOTAL_SPACE = std::uint32_t{16} << 20;

std::string textOr(const char *text, const char *otherwise, std::size_t maxLength) {
    std::string value = text != nullptr ? text : otherwise;
    require(value.size() <= maxLength, SAR_NAMELENERR);
    return value;
}

std::string serialOr(const char *serial) {
    std::string value = serial != nullptr ? serial : model::randomId();
    require(store::isTokenName(store::tokenName(value)), SAR_INVALIDPARAMERR);
    return value;
}

crypto::SecretBytes deviceAuthKey(const char *digits) {
    const std::string_view text =
        digits != nullptr ? digits : TEMBRA_SOFT_TOKEN_DEFAULT_DEVICE_AUTH_KEY;
    require(text.size() == 32 && text.find_first_not_of("0123456789") == text.npos,
            SAR_INVALIDPARAMERR);
    const crypto::Bytes key = *crypto::fromHex(text);
    return {key.begin(), key.end()};
}

model::Image imageFrom(const TembraSoftTokenOptions &options) {
    require(options.size >= sizeof options, SAR_INVALIDPARAMERR);
    require(options.total_space <= MAX_TOTAL_SPACE, SAR_INVALIDPARAMERR);
    model::Image image;
    image.id = model::randomId();
    image.serial = serialOr(options.serial);
    image.label = textOr(options.label, "Tembra Soft Token", sizeof(DEVINFO::Label));
    image.manufacturer = textOr(options.manufacturer, "Tembra", sizeof(DEVINFO::Manufacturer));
    image.issuer = textOr(options.issuer, "Tembra Development Kit", sizeof(DEVINFO::Issuer));
    image.totalSpace =
        options.total_space != 0 ? options.total_space : TEMBRA_SOFT_TOKEN_DEFAULT_TOTAL_SPACE;
    image.deviceAuthKey = deviceAuthKey(options.device_auth_key);
    return image;
}

void outputText(const std::string &text, char *out, std::uint32_t *size) {
    skf::outputBytes({reinterpret_cast<const BYTE *>(text.c_str()), text.size() + 1}, out, size);
}

void setPlugged(const char *name, bool plugged) {
    const auto found = model::Token::fromArgument(name);
    model::Change change(*found);
    model::Image &image = change.image();
    if (image.plugged != plugged) {
        image.plugged = plugged;
        image.insertions += plugged ? 1 : 0;
        change.commit();
    }
}

} // namespace

std::uint32_t TembraSoftTokenCreate(const TembraSoftTokenOptions *options, char *name,
                                    std::uint32_t *name_size) {
    return resultOf([&] {
        TembraSoftTokenOptions defaults = {};
        defaults.size = sizeof defaults;
        const model::Image image = imageFrom(options != nullptr ? *options : defaults);
        const std::string made = store::tokenName(image.serial);
        if (name != nullptr)
            outputText(made, name, name_size);
        model::Token::named(made)->create(image);
    });
}

std::uint32_t TembraSoftTokenRemove(const char *name) {
    return resultOf([&] { model::Token::fromArgument(name)->remove(); });
}

std::uint32_t TembraSoftTokenUnplug(const char *name) {
    return resultOf([&] { setPlugged(name, false); });
}

std::uint32_t TembraSoftTokenPlug(const char *name) {
    return resultOf([&] { setPlugged(name, true); });
}

std::uint32_t TembraSoftTokenList(char *names, std::uint32_t *size) {
    return resultOf([&] { skf::outputNames(store::tokenNames(), names, size); });
}

std::uint32_t TembraSoftTokenDirectory(char *path, std::uint32_t *size) {
    return resultOf([&] { outputText(store::tokenDirectory().string(), path, size); });
}
