// Adding and removing applications.
#include "tembra_soft_token.h"

#include "token/model/pins.h"
#include "token/skf/entry.h"
#include "token/store/directory.h"

#include <memory>

using namespace tembra;
using namespace tembra::token;

namespace {

constexpr std::size_t MAX_NAME = 32;
constexpr std::uint32_t MAX_TRIES = 255;

std::uint32_t triesOr(std::uint32_t tries) {
    require(tries <= MAX_TRIES, SAR_INVALIDPARAMERR);
    return tries != 0 ? tries : TEMBRA_SOFT_TOKEN_DEFAULT_TRIES;
}

model::Application applicationFrom(const TembraSoftTokenApplication &options) {
    require(options.size >= sizeof options, SAR_INVALIDPARAMERR);
    model::Application application;
    application.id = model::randomId();
    application.name = skf::nameArgument(options.name, MAX_NAME);
    application.adminPin =
        model::makePin(skf::textArgument(options.admin_pin), triesOr(options.admin_tries));
    application.userPin =
        model::makePin(skf::textArgument(options.user_pin), triesOr(options.user_tries));
    return application;
}

} // namespace

std::uint32_t TembraSoftTokenAddApplication(const char *token,
                                            const TembraSoftTokenApplication *application) {
    return resultOf([&] {
        skf::requirePointer(application);
        model::Application made = applicationFrom(*application);
        const auto owner = model::Token::fromArgument(token);
        model::Change change(*owner);
        auto &applications = change.image().applications;
        require(model::findNamed(applications, made.name) == nullptr, SAR_APPLICATION_EXISTS);
        applications.push_back(std::move(made));
        change.commit();
    });
}

std::uint32_t TembraSoftTokenRemoveApplication(const char *token, const char *application) {
    return resultOf([&] {
        const std::string_view name = skf::textArgument(application);
        const auto owner = model::Token::fromArgument(token);
        model::Change change(*owner);
        require(model::eraseNamed(change.image().applications, name), SAR_APPLICATION_NOT_EXISTS);
        change.commit();
    });
}
