#include "arguments.h"

#include <limits>
#include <vector>

#include "blocks.h"

namespace tembra::host {

namespace {

// Buffers that are freed unless all of them can be returned.
struct Pending {
    std::vector<unsigned char *> buffers;

    ~Pending() {
        for (unsigned char *buffer : buffers)
            freeBlock(Kind::buffer, buffer);
    }
};

} // namespace

int outputBuffers(std::initializer_list<Output> outputs) {
    Pending pending;
    pending.buffers.reserve(outputs.size());
    for (const Output &output : outputs) {
        if (output.content.size() > std::numeric_limits<int>::max())
            return 0;
        pending.buffers.push_back(newBlock(Kind::buffer, output.content));
    }
    auto buffer = pending.buffers.begin();
    for (const Output &output : outputs) {
        *output.data = *buffer++;
        *output.length = static_cast<int>(output.content.size());
    }
    pending.buffers.clear();
    return 1;
}

} // namespace tembra::host
