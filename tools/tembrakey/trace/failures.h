// What went wrong in a log: equal failures together.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tembrakey/trace/call.h"
#include "tembrakey/trace/refused_pins.h"
#include "tembrakey/trace/texts.h"

namespace tembra::trace {

// Whether the line is written at level error although nothing is wrong: an absent setting; at
// discovery, a key pair without certificate or a container without one of its pairs. The entry
// point is empty when it is not known.
bool isOrdinary(const Line &line, std::string_view entryPoint);

// A result code of the token library that a message shows by number or by name.
struct SarCode {
    const char *name;
    std::uint32_t value;
    const char *meaning;
};
const SarCode *findSarCode(std::string_view message);

// The message, and after it name and meaning of its code.
std::string explained(std::string_view message, Translate tr);

enum class Kind { failure, refusedPin, lostCall, ordinary };

// Equal lines, or calls, of one entry point.
struct Failure {
    Kind kind = Kind::failure;
    std::string entryPoint; // or the function of a lone line
    std::string function;   // that wrote the lines
    std::string message;
    std::uint64_t count = 0;
    std::uint64_t firstLine = 0;
    std::uint64_t lastLine = 0;
    Time first;
    Time last;
};

class Failures {
public:
    // The call and those inside it.
    void add(const Call &call);
    void add(const RefusedPin &pin);
    // By their first lines.
    std::vector<Failure> list() const;
    // Failures beyond the number of different ones that are told apart.
    std::uint64_t others() const { return m_others; }

private:
    void count(Failure &&failure);

    std::map<std::string, Failure> m_groups;
    std::uint64_t m_others = 0;
};

// "DeviceSign: SKF_ECCSignData fail, error = 0x0A000023 (SAR_DEVICE_REMOVED: token removed)"
std::string failureText(const Failure &failure, Translate tr);

} // namespace tembra::trace
