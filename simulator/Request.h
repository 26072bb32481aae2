#pragma once

// Calls and their answers as values, which the simulation and the traces are made of.

#include "simulator/SdkCall.h"

#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace simulator {

/// JSON whose members keep their order.
using Json = nlohmann::ordered_json;

/// A call's arguments as values.
struct Request {
    std::string text(const char* argument) const;
    /// Of the buffer; 0 when there is none.
    std::uint32_t size() const;
    /// Whether all addresses and texts are there.
    bool isComplete() const;

    Function function;
    /// By name, in the order of the call: a device by its name, a buffer by its size. Addresses are left out, except
    /// that null ones are null.
    Json arguments;
};

/// @param nameOf  gives a device's name
Request requestOf(const SdkCall& call, const std::function<std::string(I1PRO3_DeviceHandle)>& nameOf);

/// What a call leaves in its out-parameters; what is not set stays as it was.
struct Outputs {
    std::optional<std::uint32_t> size{};
    std::optional<std::string> text{};
    /// Whether a NUL follows the text.
    bool isTerminated = true;
    std::vector<float> values{};
    std::optional<std::uint32_t> count{};
    /// The names of the devices in the list.
    std::optional<std::vector<std::string>> devices{};
};

struct Reply {
    std::int32_t result = 0;
    Outputs outputs{};
    /// What the function threw in place of a result.
    std::optional<std::string> exception{};
};

/// A text in JSON: as it is when it is UTF-8, otherwise its bytes as numbers.
Json jsonOf(const std::string& text);

} // namespace simulator
