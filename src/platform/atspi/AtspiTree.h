#pragma once

#include "platform/atspi/AtspiBus.h"
#include "platform/atspi/AtspiRoles.h"
#include "platform/atspi/Patience.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string>
#include <vector>

namespace querlin {

/// What is asked of elements, each time with a short wait, and of nobody who makes us wait too often
/// (`Patience`). Main thread. Errors are negative numbers of the system.
class AtspiTree {
public:
    explicit AtspiTree(AtspiBus& bus) : bus_(bus) {}

    std::expected<std::uint64_t, int> states(const AtspiReference& element);
    std::expected<AtspiDescription, int> describe(const AtspiReference& element);
    std::expected<std::vector<AtspiReference>, int> children(const AtspiReference& element);
    std::expected<bool, int> hasText(const AtspiReference& element);
    std::expected<std::int64_t, int> characterCount(const AtspiReference& element);
    /// From one character up to before another; made well-formed.
    std::expected<std::string, int> text(const AtspiReference& element, std::int64_t from, std::int64_t to);
    /// The first selection, or the cursor as an empty one.
    std::expected<TextRange, int> selection(const AtspiReference& element);
    /// The process of a name on the bus.
    std::expected<std::int32_t, int> process(const std::string& name);

    /// The element with the focus below another one: an editable text before whatever else claims it. -ENOENT
    /// after the whole tree was seen.
    std::expected<AtspiReference, int> findFocus(const AtspiReference& top, Instant deadline);
    /// Qt says that a list to choose from has the focus when it is the line edit in it that has.
    AtspiReference innermostFocus(const AtspiReference& focused, std::uint64_t states, Instant deadline);

private:
    struct Search {
        Instant deadline;
        int nodesLeft = 0;
        std::uint64_t seen = AtspiState::visible; ///< the state of what can be seen
        std::optional<AtspiReference> secondBest;
        int fault = -ENOENT;
    };
    std::optional<AtspiReference> search(const AtspiReference& element, int depth, Search& state);
    std::expected<std::int32_t, int> textNumber(const AtspiReference& element, const char* property);
    bool isField(const AtspiReference& element, std::uint64_t states);

    template<class... Arguments>
    std::expected<AtspiMessage, int> ask(const AtspiReference& of, const char* interface, const char* member,
                                         const char* types = "", Arguments... arguments) {
        const auto begun = std::chrono::steady_clock::now();
        const auto limit = patience_.limit(of.name, std::min(longestCall, deadline_ - begun), begun);
        if (limit <= Duration::zero()) return std::unexpected(-ETIMEDOUT);
        auto answer = bus_.call(of, interface, member, limit, types, arguments...);
        const auto now = std::chrono::steady_clock::now();
        if (answer || answer.error() != -ETIMEDOUT) {
            patience_.answered(of.name, now - begun, now);
        } else {
            patience_.gaveUp(of.name, now);
        }
        return answer;
    }

    static constexpr Duration longestCall = std::chrono::milliseconds(100);

    AtspiBus& bus_;
    Patience patience_;
    Instant deadline_ = Instant::max(); ///< of the search under way
};

} // namespace querlin
