#include "platform/atspi/AtspiTree.h"

#include "foundation/Utf8.h"

#include <cstring>

namespace querlin {

namespace {

constexpr std::size_t largestText = 1U << 20U;
constexpr int mostNodes = 2000;
constexpr int greatestDepth = 60;
AtspiReference theBus() { return {"org.freedesktop.DBus", "/org/freedesktop/DBus"}; }

} // namespace

std::expected<std::uint64_t, int> AtspiTree::states(const AtspiReference& element) {
    const auto answer = ask(element, AtspiInterface::accessible, "GetState");
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
    const auto role = ask(element, AtspiInterface::accessible, "GetRole");
    if (!role) return std::unexpected(role.error());
    if (const int read = sd_bus_message_read(role->get(), "u", &description.role); read < 0)
        return std::unexpected(read);
    const auto attributes = ask(element, AtspiInterface::accessible, "GetAttributes");
    // Not all have attributes; but one that doesn't answer may have one that tells of a password.
    if (!attributes && attributes.error() == -ETIMEDOUT) return std::unexpected(attributes.error());
    if (!attributes || sd_bus_message_enter_container(attributes->get(), 'a', "{ss}") <= 0)
        return description;
    const char* key = nullptr;
    const char* value = nullptr;
    while (sd_bus_message_read(attributes->get(), "{ss}", &key, &value) > 0)
        description.attributes.emplace(key, value);
    return description;
}

std::expected<std::vector<AtspiReference>, int> AtspiTree::children(const AtspiReference& element) {
    const auto answer = ask(element, AtspiInterface::accessible, "GetChildren");
    if (!answer) return std::unexpected(answer.error());
    std::vector<AtspiReference> children;
    if (sd_bus_message_enter_container(answer->get(), 'a', "(so)") <= 0) return children;
    const char* name = nullptr;
    const char* path = nullptr;
    while (sd_bus_message_read(answer->get(), "(so)", &name, &path) > 0) children.push_back({name, path});
    return children;
}

std::expected<bool, int> AtspiTree::hasText(const AtspiReference& element) {
    const auto answer = ask(element, AtspiInterface::accessible, "GetInterfaces");
    if (!answer) return std::unexpected(answer.error());
    if (sd_bus_message_enter_container(answer->get(), 'a', "s") <= 0) return false;
    const char* interface = nullptr;
    while (sd_bus_message_read(answer->get(), "s", &interface) > 0) {
        if (std::string_view(interface) == AtspiInterface::text) return true;
    }
    return false;
}

std::expected<std::int32_t, int> AtspiTree::textNumber(const AtspiReference& element, const char* property) {
    const auto answer = ask(element, AtspiInterface::properties, "Get", "ss", AtspiInterface::text, property);
    if (!answer) return std::unexpected(answer.error());
    std::int32_t number = 0;
    const int read = sd_bus_message_read(answer->get(), "v", "i", &number);
    if (read < 0) return std::unexpected(read);
    return number;
}

std::expected<std::int64_t, int> AtspiTree::characterCount(const AtspiReference& element) {
    return textNumber(element, "CharacterCount");
}

std::expected<TextRange, int> AtspiTree::selection(const AtspiReference& element) {
    const auto answer = ask(element, AtspiInterface::text, "GetSelection", "i", 0);
    std::int32_t start = 0;
    std::int32_t end = 0;
    if (answer && sd_bus_message_read(answer->get(), "ii", &start, &end) > 0 && start >= 0 && end > start)
        return TextRange{start, end - start};
    const auto cursor = textNumber(element, "CaretOffset");
    if (!cursor) return std::unexpected(cursor.error());
    return TextRange{*cursor, 0};
}

std::expected<std::string, int> AtspiTree::text(const AtspiReference& element, std::int64_t from,
                                                std::int64_t to) {
    const auto answer = ask(element, AtspiInterface::text, "GetText", "ii", static_cast<std::int32_t>(from),
                            static_cast<std::int32_t>(to));
    if (!answer) return std::unexpected(answer.error());
    const char* text = nullptr;
    if (const int read = sd_bus_message_read(answer->get(), "s", &text); read < 0)
        return std::unexpected(read);
    const std::string_view view(text);
    if (view.size() > largestText) return std::unexpected(-EFBIG);
    return validUtf8(view);
}

std::expected<std::int32_t, int> AtspiTree::process(const std::string& name) {
    const auto answer =
        ask(theBus(), "org.freedesktop.DBus", "GetConnectionUnixProcessID", "s", name.c_str());
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

std::expected<AtspiReference, int> AtspiTree::findFocus(const AtspiReference& top, Instant deadline) {
    Search state;
    state.deadline = deadline;
    state.nodesLeft = mostNodes;
    deadline_ = deadline;
    auto found = search(top, 0, state);
    deadline_ = Instant::max();
    if (found) return std::move(*found);
    if (state.secondBest) return std::move(*state.secondBest);
    return std::unexpected(state.fault);
}

AtspiReference AtspiTree::innermostFocus(const AtspiReference& focused, std::uint64_t states,
                                         Instant deadline) {
    if ((states & AtspiState::editable) != 0) return focused;
    const auto description = describe(focused);
    if (!description || description->role != AtspiRole::comboBox) return focused;
    return findFocus(focused, deadline).value_or(focused);
}

/// What can't be seen has no focus, and neither has what is in it. Most toolkits say showing of what is seen,
/// and visible also of a menu that is closed; GTK 4 says showing of windows alone. An element that is gone is
/// nothing to complain about.
std::optional<AtspiReference> AtspiTree::search(const AtspiReference& element, int depth, Search& state) {
    if (--state.nodesLeft < 0 || std::chrono::steady_clock::now() > state.deadline) state.fault = -ETIMEDOUT;
    if (state.fault == -ETIMEDOUT || depth > greatestDepth) return std::nullopt;
    const auto states = this->states(element);
    if (!states && states.error() == -ETIMEDOUT) state.fault = -ETIMEDOUT;
    if (!states) return std::nullopt;
    if (depth > 0 && (*states & AtspiState::showing) != 0) state.seen = AtspiState::showing;
    if (depth > 0 && (*states & state.seen) == 0) return std::nullopt;
    if (depth > 0 && (*states & AtspiState::focused) != 0) {
        if (isField(element, *states)) return element;
        state.secondBest = element; // The innermost one, and the last that says so.
    }
    const auto children = this->children(element);
    if (!children && children.error() == -ETIMEDOUT) state.fault = -ETIMEDOUT;
    if (!children) return std::nullopt;
    for (const auto& child : *children) {
        if (auto found = search(child, depth + 1, state)) return found;
    }
    return std::nullopt;
}

} // namespace querlin
