#include "platform/atspi/AtspiTree.h"

#include "foundation/Utf8.h"

#include <cerrno>
#include <cstring>

namespace querlin {

namespace {

constexpr Duration longestCall = std::chrono::milliseconds(100);
constexpr std::size_t largestText = 1U << 20U;
constexpr int mostNodes = 2000;
constexpr int greatestDepth = 60;
const AtspiReference theBus{"org.freedesktop.DBus", "/org/freedesktop/DBus"};

} // namespace

std::expected<std::uint64_t, int> AtspiTree::states(const AtspiReference& element) {
    const auto answer = bus_.call(element, AtspiInterface::accessible, "GetState", longestCall);
    if (!answer) return std::unexpected(answer.error());
    const void* words = nullptr;
    std::size_t size = 0;
    const int read = sd_bus_message_read_array(answer->get(), 'u', &words, &size);
    if (read < 0) return std::unexpected(read);
    std::uint64_t states = 0;
    std::memcpy(&states, words, std::min(size, sizeof(states)));
    return states;
}

std::expected<AtspiDescription, int> AtspiTree::describe(const AtspiReference& element) {
    AtspiDescription description;
    const auto states = this->states(element);
    if (!states) return std::unexpected(states.error());
    description.states = *states;
    const auto role = bus_.call(element, AtspiInterface::accessible, "GetRole", longestCall);
    if (!role) return std::unexpected(role.error());
    if (const int read = sd_bus_message_read(role->get(), "u", &description.role); read < 0)
        return std::unexpected(read);
    // Not all have attributes.
    const auto attributes = bus_.call(element, AtspiInterface::accessible, "GetAttributes", longestCall);
    if (!attributes || sd_bus_message_enter_container(attributes->get(), 'a', "{ss}") <= 0)
        return description;
    const char* key = nullptr;
    const char* value = nullptr;
    while (sd_bus_message_read(attributes->get(), "{ss}", &key, &value) > 0)
        description.attributes.emplace(key, value);
    return description;
}

std::vector<AtspiReference> AtspiTree::children(const AtspiReference& element) {
    std::vector<AtspiReference> children;
    const auto answer = bus_.call(element, AtspiInterface::accessible, "GetChildren", longestCall);
    if (!answer || sd_bus_message_enter_container(answer->get(), 'a', "(so)") <= 0) return children;
    const char* name = nullptr;
    const char* path = nullptr;
    while (sd_bus_message_read(answer->get(), "(so)", &name, &path) > 0) children.push_back({name, path});
    return children;
}

std::expected<bool, int> AtspiTree::hasText(const AtspiReference& element) {
    const auto answer = bus_.call(element, AtspiInterface::accessible, "GetInterfaces", longestCall);
    if (!answer) return std::unexpected(answer.error());
    if (sd_bus_message_enter_container(answer->get(), 'a', "s") <= 0) return false;
    const char* interface = nullptr;
    while (sd_bus_message_read(answer->get(), "s", &interface) > 0) {
        if (std::string_view(interface) == AtspiInterface::text) return true;
    }
    return false;
}

std::expected<std::int64_t, int> AtspiTree::characterCount(const AtspiReference& element) {
    const auto answer = bus_.call(element, AtspiInterface::properties, "Get", longestCall, "ss",
                                  AtspiInterface::text, "CharacterCount");
    if (!answer) return std::unexpected(answer.error());
    std::int32_t count = 0;
    const int read = sd_bus_message_read(answer->get(), "v", "i", &count);
    if (read < 0) return std::unexpected(read);
    return count;
}

std::expected<std::string, int> AtspiTree::text(const AtspiReference& element, std::int64_t from,
                                                std::int64_t to) {
    const auto answer = bus_.call(element, AtspiInterface::text, "GetText", longestCall, "ii",
                                  static_cast<std::int32_t>(from), static_cast<std::int32_t>(to));
    if (!answer) return std::unexpected(answer.error());
    const char* text = nullptr;
    if (const int read = sd_bus_message_read(answer->get(), "s", &text); read < 0)
        return std::unexpected(read);
    const std::string_view view(text);
    if (view.size() > largestText) return std::unexpected(-EFBIG);
    return validUtf8(view);
}

std::expected<std::int32_t, int> AtspiTree::process(const std::string& name) {
    const auto answer = bus_.call(theBus, "org.freedesktop.DBus", "GetConnectionUnixProcessID", longestCall,
                                  "s", name.c_str());
    if (!answer) return std::unexpected(answer.error());
    std::uint32_t process = 0;
    const int read = sd_bus_message_read(answer->get(), "u", &process);
    if (read < 0) return std::unexpected(read);
    return static_cast<std::int32_t>(process);
}

bool AtspiTree::isField(const AtspiReference& element, std::uint64_t states) {
    if ((states & AtspiState::editable) != 0) return hasText(element).value_or(false);
    const auto description = describe(element);
    return description &&
           (description->role == AtspiRole::terminal || description->role == AtspiRole::passwordText);
}

std::optional<AtspiReference> AtspiTree::findFocus(const AtspiReference& top, Instant deadline) {
    Search state{deadline, mostNodes, std::nullopt};
    auto found = search(top, 0, state);
    return found ? found : state.secondBest;
}

AtspiReference AtspiTree::innermostFocus(const AtspiReference& focused, std::uint64_t states,
                                         Instant deadline) {
    if ((states & AtspiState::editable) != 0) return focused;
    const auto description = describe(focused);
    if (!description || description->role != AtspiRole::comboBox) return focused;
    return findFocus(focused, deadline).value_or(focused);
}

/// What can't be seen has no focus, and neither has what is in it. Some toolkits call visible alone what
/// others call showing.
std::optional<AtspiReference> AtspiTree::search(const AtspiReference& element, int depth, Search& state) {
    if (--state.nodesLeft < 0 || depth > greatestDepth || std::chrono::steady_clock::now() > state.deadline)
        return std::nullopt;
    const auto states = this->states(element).value_or(0);
    if (depth > 0 && (states & (AtspiState::showing | AtspiState::visible)) == 0) return std::nullopt;
    if (depth > 0 && (states & AtspiState::focused) != 0) {
        if (isField(element, states)) return element;
        state.secondBest = element; // The innermost one, and the last that says so.
    }
    for (const auto& child : children(element)) {
        if (auto found = search(child, depth + 1, state)) return found;
    }
    return std::nullopt;
}

} // namespace querlin
