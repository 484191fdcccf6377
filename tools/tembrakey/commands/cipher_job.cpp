#include "tembrakey/commands/cipher_job.h"

#include "tembrakey/io/files.h"
#include "tembrakey/io/stream.h"
#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

// The cipher handle between two files. What does not fill a block waits for the end; so does the
// last decrypted block when it ends in padding.
class CipherJob {
public:
    CipherJob(const Device &device, const CipherChoice &choice, bool encrypt, OutputFile &out);

    void take(crypto::ByteView piece);
    void finish();
    std::uint64_t written() const { return written_; }

private:
    void transform(crypto::ByteView blocks);
    void write(crypto::ByteView bytes);
    void removePadding();

    const Session &session_;
    bool encrypt_;
    bool padded_;
    OutputFile &out_;
    Cipher cipher_;
    crypto::SecretBytes tail_; // an unfinished block of input
    crypto::SecretBytes held_; // the last block of output, when decrypting with padding
    std::uint64_t written_ = 0;
};

[[noreturn]] void refuseLength() {
    throw Failure(ExitCode::Usage,
                  tr("The input's length is no multiple of 16 bytes (--pad lets encrypt fill up)"));
}

SPI_CIPHER_HANDLE newCipher(const Device &device, const CipherChoice &choice, bool encrypt) {
    const crypto::SecretBytes key = choice.key();
    const crypto::Bytes iv = choice.iv();
    const SPI_CIPHER_HANDLE handle = device.session()->DeviceNewCipher(
        device.get(), encrypt ? 1 : 0, choice.algorithm(), key.data(), static_cast<int>(key.size()),
        iv.empty() ? nullptr : iv.data());
    if (handle == nullptr)
        refuseNull("DeviceNewCipher", tr("the token may not have this cipher (see caps)"));
    return handle;
}

CipherJob::CipherJob(const Device &device, const CipherChoice &choice, bool encrypt,
                     OutputFile &out)
    : session_(device.session()), encrypt_(encrypt), padded_(choice.padded()), out_(out),
      cipher_(session_, newCipher(device, choice, encrypt)) {}

void CipherJob::write(crypto::ByteView bytes) {
    out_.write(bytes);
    written_ += bytes.size();
}

void CipherJob::transform(crypto::ByteView blocks) {
    if (blocks.empty())
        return;
    crypto::SecretBytes result(blocks.size());
    int length = 0;
    check("DeviceCipherUpdate", session_->DeviceCipherUpdate(
                                    cipher_.get(), blocks.data(), static_cast<int>(blocks.size()),
                                    result.data(), static_cast<int>(result.size()), &length));
    if (encrypt_ || !padded_)
        return write(result);
    write(held_);
    const auto last = result.end() - blockSize;
    write({result.data(), result.size() - blockSize});
    held_.assign(last, result.end());
}

void CipherJob::take(crypto::ByteView piece) {
    const std::size_t whole = piece.size() - piece.size() % blockSize; // short only at the end
    transform(piece.first(whole));
    tail_.assign(piece.begin() + static_cast<std::ptrdiff_t>(whole), piece.end());
}

void CipherJob::removePadding() {
    const std::size_t count = held_.empty() ? 0 : held_.back();
    bool good = count >= 1 && count <= blockSize;
    for (std::size_t i = 0; good && i < count; ++i)
        good = held_[blockSize - 1 - i] == count;
    if (!good)
        throw Failure(ExitCode::Usage, tr("The padding is wrong: another key, IV or mode?"));
    write({held_.data(), blockSize - count});
}

void CipherJob::finish() {
    if (encrypt_ && padded_) {
        const auto count = static_cast<std::uint8_t>(blockSize - tail_.size());
        tail_.insert(tail_.end(), count, count);
        transform(tail_);
        return;
    }
    if (!tail_.empty())
        refuseLength();
    if (padded_)
        removePadding();
}

} // namespace

std::uint64_t runCipher(const Device &device, const CipherChoice &choice, bool encrypt,
                        const std::string &in, const std::string &out) {
    const bool whole = !encrypt || !choice.padded(); // blocks only
    if (whole && InputFile(in).size().value_or(0) % blockSize != 0)
        refuseLength();
    OutputFile file(out);
    CipherJob job(device, choice, encrypt, file);
    forEachPiece(in, encrypt ? tr("Encrypting") : tr("Decrypting"),
                 [&](crypto::ByteView piece) { job.take(piece); });
    job.finish();
    file.commit();
    return job.written();
}

void requireSeparateOutput(const Console &console, const std::string &out) {
    if (console.json() && out == "-")
        throw Failure(ExitCode::Usage, tr("--json needs --out FILE here"));
}

void reportOutput(const Console &console, std::uint64_t bytes, const std::string &out) {
    if (out != "-")
        console.result(Record().add("bytes", static_cast<std::int64_t>(bytes)).add("out", out),
                       tr("{1} bytes written to {2}", {std::to_string(bytes), out}));
}

} // namespace tembra::tool
