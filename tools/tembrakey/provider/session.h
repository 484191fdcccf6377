// The provider in use: started and ended, and handles that give themselves back.
#pragma once

#include <string>
#include <utility>

#include "tembrakey/provider/provider.h"

namespace tembra::tool {

// From DeviceInit to DeviceEnd. Everything below must be gone before it goes.
class Session {
public:
    // path as ProviderLibrary takes it. Throws Failure.
    explicit Session(const std::string &path);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    const Provider *operator->() const { return &library_.entryPoints(); }

private:
    ProviderLibrary library_;
};

// A handle that goes back through its DeviceFree... entry point.
template <typename H, int (*Provider::*Free)(H)>
class Owned {
public:
    Owned(const Session &session, H handle) : session_(&session), handle_(handle) {}
    Owned(Owned &&other) noexcept
        : session_(other.session_), handle_(std::exchange(other.handle_, nullptr)) {}
    Owned &operator=(Owned &&other) noexcept {
        std::swap(session_, other.session_);
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Owned() {
        if (handle_ != nullptr)
            ((*session_).operator->()->*Free)(handle_);
    }

    H get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }
    const Session &session() const { return *session_; }

private:
    const Session *session_;
    H handle_;
};

using DeviceSet = Owned<SPI_DEVICESET_HANDLE, &Provider::DeviceFreeDevices>;
using Device = Owned<SPI_DEVICE_HANDLE, &Provider::DeviceFreeDevice>;
using KeyPair = Owned<SPI_KEYPAIR_HANDLE, &Provider::DeviceFreeKeypair>;
using PublicKeyHandle = Owned<SPI_PUBLICKEY_HANDLE, &Provider::DeviceFreePublicKey>;
using Hash = Owned<SPI_HASH_HANDLE, &Provider::DeviceFreeHash>;
using Cipher = Owned<SPI_CIPHER_HANDLE, &Provider::DeviceFreeCipher>;

} // namespace tembra::tool
