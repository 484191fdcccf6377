// The entry points' buffer protocol, once: ask the length, then read.
#pragma once

#include <algorithm>
#include <string>

#include "crypto/bytes.h"
#include "tembrakey/provider/results.h"

namespace tembra::tool {

// read is called as read(buffer, capacity, &length). Returns the bytes; throws Failure.
template <typename Read>
crypto::Bytes readBytes(const char *entryPoint, Read read) {
    int length = 0;
    check(entryPoint, read(static_cast<unsigned char *>(nullptr), 0, &length));
    crypto::Bytes bytes(static_cast<std::size_t>(std::max(length, 1)));
    check(entryPoint, read(bytes.data(), static_cast<int>(bytes.size()), &length));
    bytes.resize(std::min(bytes.size(), static_cast<std::size_t>(std::max(length, 0))));
    return bytes;
}

// The same for a text getter of a handle; without the closing NUL.
template <typename H>
std::string readText(const char *entryPoint, int (*getter)(H, char *, int, int *), H handle) {
    const crypto::Bytes bytes =
        readBytes(entryPoint, [&](unsigned char *buffer, int capacity, int *length) {
            return getter(handle, reinterpret_cast<char *>(buffer), capacity, length);
        });
    return std::string(bytes.begin(), std::find(bytes.begin(), bytes.end(), 0));
}

} // namespace tembra::tool
