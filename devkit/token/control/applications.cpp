// Putting applications on tokens and taking them off.
#include "tembra_soft_token.h"

#include "control.h"

#include "token/model/pins.h"
#include "token/skf/entry.h"
#include "token/store/directory.h"

#include <algorithm>
#include <charconv>

using namespace tembra;
using namespace tembra::token;
using namespace tembra::token::control;

namespace {

constexpr std::size_t MAX_NAME = 32;
constexpr std::uint32_t MAX_TRIES = 255;

std::uint32_t triesOr(std::uint32_t tries) {
    require(tries <= MAX_TRIES, SAR_INVALIDPARAMERR);
    return tries != 0 ? tries : TEMBRA_SOFT_TOKEN_DEFAULT_TRIES;
}

unsigned pinIterations() {
    unsigned iterations = 0;
    if (const auto text = store::environment("TEMBRA_SOFT_TOKEN_PIN_ITERATIONS"))
        std::from_chars(text->data(), text->data() + text->size(), iterations);
    return iterations != 0 ? iterations : crypto::PIN_HASH_DEFAULT_ITERATIONS;
}

model::Application applicationFrom(const TembraSoftTokenApplication &options) {
    require(options.size >= sizeof options, SAR_INVALIDPARAMERR);
    model::Application application;
    application.id = model::randomId();
    application.name = skf::nameArgument(options.name, MAX_NAME);
    const unsigned iterations = pinIterations();
    application.adminPin = model::makePin(skf::textArgument(options.admin_pin),
                                          triesOr(options.admin_tries), iterations);
    application.userPin = model::makePin(skf::textArgument(options.user_pin),
                                         triesOr(options.user_tries), iterations);
    return application;
}

auto named(model::Image &image, std::string_view name) {
    return std::find_if(image.applications.begin(), image.applications.end(),
                        [&](const auto &application) { return application.name == name; });
}

} // namespace

std::shared_ptr<model::Token> tembra::token::control::token(const char *name) {
    const std::string text(skf::textArgument(name));
    require(store::isTokenName(text), SAR_DEVICE_REMOVED);
    return model::Token::named(text);
}

std::uint32_t TembraSoftTokenAddApplication(const char *token,
                                            const TembraSoftTokenApplication *application) {
    return answer([&] {
        skf::requirePointer(application);
        model::Application made = applicationFrom(*application);
        const auto on = control::token(token);
        model::Change change(*on);
        require(named(change.image(), made.name) == change.image().applications.end(),
                SAR_APPLICATION_EXISTS);
        change.image().applications.push_back(std::move(made));
        change.commit();
    });
}

std::uint32_t TembraSoftTokenRemoveApplication(const char *token, const char *application) {
    return answer([&] {
        const std::string_view name = skf::textArgument(application);
        const auto on = control::token(token);
        model::Change change(*on);
        const auto found = named(change.image(), name);
        require(found != change.image().applications.end(), SAR_APPLICATION_NOT_EXISTS);
        change.image().applications.erase(found);
        change.commit();
    });
}
