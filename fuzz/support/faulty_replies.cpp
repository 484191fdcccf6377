#include "faulty_replies.h"

#include "../../tests/support/scripted_token.h"

namespace tembra::fuzz {
namespace {

using test::script;
using test::Scripted;

Input *replies = nullptr;

// A length close to the right one or far from it.
ULONG oddLength(ULONG right) {
    switch (replies->byte() % 8) {
    case 0: return right;
    case 1: return right + 1;
    case 2: return 0;
    case 3: return 0x7FFFFFFF;
    case 4: return 0x80000000;
    case 5: return 0xFFFFFFFF;
    case 6: return replies->number();
    default: return right == 0 ? 0 : replies->byte() % right;
    }
}

// Fills with one byte, which may be NUL, and overwrites some bytes at the beginning.
void fill(void *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return;
    std::memset(out, replies->byte(), size);
    const Bytes some = replies->bytes(std::min<std::size_t>(size, replies->byte() % 64));
    std::memcpy(out, some.data(), some.size());
}

// Returns a block of any size, or none, with its length, or a negative one.
void returnBlock(unsigned char **out, int *length) {
    const std::size_t size = replies->once(3) ? replies->number() % 1500 : replies->byte() % 80;
    const unsigned kind = replies->byte();
    *length = kind % 8 == 1 ? -static_cast<int>(size) : static_cast<int>(size);
    *out = kind % 8 == 2 ? nullptr : new unsigned char[size];
    fill(*out, size);
    if (*out != nullptr)
        script().host.blocks[*out] = size;
}

// Writes to the arguments that are outputs, which their types show.
struct Outputs {
    bool isList; // the text of an enumeration is an output

    void fillIn() {}
    template <typename... Rest>
    void fillIn(unsigned char **out, int *length, Rest... rest) {
        returnBlock(out, length);
        fillIn(rest...);
    }
    template <typename... Rest>
    void fillIn(BYTE *out, ULONG *length, Rest... rest) {
        const ULONG capacity = out == nullptr ? 300 : *length;
        fill(out, capacity);
        *length = oddLength(capacity);
        fillIn(rest...);
    }
    template <typename... Rest>
    void fillIn(LPSTR text, ULONG *length, Rest... rest) {
        if (isList)
            fillIn(reinterpret_cast<BYTE *>(text), length);
        else
            fillIn(length, rest...);
    }
    template <typename First, typename... Rest>
    void fillIn(First first, Rest... rest) {
        if constexpr (std::is_same_v<First, ULONG *> || std::is_same_v<First, int *>) {
            if (first != nullptr)
                *first = static_cast<std::remove_pointer_t<First>>(
                    replies->once(3) ? replies->number() : replies->byte() % 16);
        } else if constexpr (std::is_same_v<First, DEVINFO *> ||
                             std::is_same_v<First, FILEATTRIBUTE *> ||
                             std::is_same_v<First, ECCSIGNATUREBLOB *> ||
                             std::is_same_v<First, ECCPUBLICKEYBLOB *> ||
                             std::is_same_v<First, RSAPUBLICKEYBLOB *>) {
            fill(first, sizeof *first);
        }
        fillIn(rest...);
    }
};

// Functions that return handles or release something: otherwise every run would leak.
bool mustReplyCorrectly(std::string_view name) {
    constexpr std::string_view returnHandles[] = {"SKF_ConnectDev",
                                                  "SKF_OpenApplication",
                                                  "SKF_OpenContainer",
                                                  "SKF_CreateContainer",
                                                  "SKF_SetSymmKey",
                                                  "SKF_DigestInit",
                                                  "OrvelPKICryptoImportPublicKey"};
    return test::givesBack(std::string(name)) ||
           std::ranges::find(returnHandles, name) != std::end(returnHandles);
}

template <typename Result, typename... Arguments>
void replyFaultily(Scripted<Result(Arguments...)> &function, std::string_view name) {
    if constexpr (!std::is_pointer_v<Result>) {
        if (mustReplyCorrectly(name))
            return;
        function.run([&function, name](Arguments... arguments) {
            if (!replies->once(3))
                return function.usual(arguments...);
            Outputs{name.starts_with("SKF_Enum")}.fillIn(arguments...);
            return static_cast<Result>(name.starts_with("SKF_") ? SAR_OK : 1); // success
        });
    }
}

// Opens some token, application or container whatever its name, up to a limit that keeps runs
// short.
void openAnything() {
    auto &s = script();
    s.SKF_ConnectDev.run([&s](LPSTR, DEVHANDLE *device) {
        if (s.SKF_ConnectDev.calls() > 3)
            return SAR_FAIL;
        return s.SKF_ConnectDev.usual(s.memory.devices.front().name.data(), device);
    });
    s.SKF_OpenApplication.run([&s](DEVHANDLE device, LPSTR name, HAPPLICATION *application) {
        auto &there = s.memory.devices.front().applications.front().name;
        const bool any = s.SKF_OpenApplication.calls() < 4 && !replies->once(2);
        return s.SKF_OpenApplication.usual(device, any ? there.data() : name, application);
    });
    s.SKF_OpenContainer.run([&s](HAPPLICATION application, LPSTR name, HCONTAINER *container) {
        auto &containers = s.memory.devices.front().applications.front().containers;
        const bool any = !containers.empty() && s.SKF_OpenContainer.calls() < 40;
        return s.SKF_OpenContainer.usual(application, any ? containers.front().name.data() : name,
                                         container);
    });
}

} // namespace

void scriptFaultyReplies(Input &source) {
    replies = &source;
#define TEMBRA_IMPORT(result, name, parameters) replyFaultily(script().name, #name);
#include "platform/orvel_crypto_functions.h"
#include "platform/skf_functions.h"
#undef TEMBRA_IMPORT
    openAnything();
}

} // namespace tembra::fuzz
