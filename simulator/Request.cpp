#include "simulator/Request.h"

#include <algorithm>

namespace simulator {

namespace {

using enum Parameter;

/// Adds an argument, or null for an address that is null.
template <class Add>
void addUnlessNull(Json& arguments, const char* name, const void* address, Add add) {
    if (address == nullptr) {
        arguments[name] = nullptr;
    } else {
        add();
    }
}

void addText(Json& arguments, const char* name, const char* text) {
    addUnlessNull(arguments, name, text, [&] { arguments[name] = jsonOf(text); });
}

void addAddress(Json& arguments, const char* name, const void* address) {
    addUnlessNull(arguments, name, address, [] {});
}

} // namespace

std::string Request::text(const char* argument) const {
    const Json& value = arguments.at(argument);
    if (value.is_string()) return value.get<std::string>();
    const auto bytes = value.get<std::vector<std::uint8_t>>();
    return {bytes.begin(), bytes.end()};
}

std::uint32_t Request::size() const {
    const auto size = arguments.find("size");
    const bool hasBuffer = !arguments.contains("buffer");
    return hasBuffer && size != arguments.end() && size->is_number() ? size->get<std::uint32_t>() : 0;
}

bool Request::isComplete() const {
    return std::none_of(arguments.begin(), arguments.end(), [](const Json& argument) { return argument.is_null(); });
}

Request requestOf(const SdkCall& call, const std::function<std::string(I1PRO3_DeviceHandle)>& nameOf) {
    Request request{call.function, Json::object()};
    Json& arguments = request.arguments;
    for (const Parameter parameter : signatureOf(call.function).parameters) {
        switch (parameter) {
        case none:
            break;
        case device:
            addUnlessNull(arguments, "device", call.device, [&] { arguments["device"] = nameOf(call.device); });
            break;
        case key:
            addText(arguments, "key", call.key);
            break;
        case value:
            addText(arguments, "value", call.value);
            break;
        case sample:
            arguments["sample"] = call.sample;
            break;
        case list:
            addAddress(arguments, "list", call.list);
            addAddress(arguments, "count", call.count);
            break;
        case buffer:
            addAddress(arguments, "buffer", call.buffer);
            addUnlessNull(arguments, "size", call.size, [&] { arguments["size"] = *call.size; });
            break;
        case tristimulus:
        case spectrum:
            addAddress(arguments, "values", call.values);
            break;
        }
    }
    return request;
}

Json jsonOf(const std::string& text) {
    try {
        Json json(text);
        static_cast<void>(json.dump()); // only UTF-8 can be written
        return json;
    } catch (const Json::type_error&) {
        return std::vector<std::uint8_t>(text.begin(), text.end());
    }
}

} // namespace simulator
