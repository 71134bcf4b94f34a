#pragma once

#include "platform/atspi/AtspiBus.h"
#include "platform/atspi/AtspiRoles.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace querlin {

/// What is asked of elements, each with a short wait. Main thread. Errors are negative numbers of the system.
class AtspiTree {
public:
    explicit AtspiTree(AtspiBus& bus) : bus_(bus) {}

    std::expected<std::uint64_t, int> states(const AtspiReference& element);
    std::expected<AtspiDescription, int> describe(const AtspiReference& element);
    std::vector<AtspiReference> children(const AtspiReference& element);
    std::expected<bool, int> hasText(const AtspiReference& element);
    std::expected<std::int64_t, int> characterCount(const AtspiReference& element);
    /// From one character up to before another; made well-formed.
    std::expected<std::string, int> text(const AtspiReference& element, std::int64_t from, std::int64_t to);
    /// The process of a name on the bus.
    std::expected<std::int32_t, int> process(const std::string& name);

    /// The element with the focus below another one: an editable text before whatever else claims it.
    std::optional<AtspiReference> findFocus(const AtspiReference& top, Instant deadline);
    /// Qt says that a list to choose from has the focus when it is the line edit in it that has.
    AtspiReference innermostFocus(const AtspiReference& focused, std::uint64_t states, Instant deadline);

private:
    struct Search {
        Instant deadline;
        int nodesLeft;
        std::optional<AtspiReference> secondBest;
    };
    std::optional<AtspiReference> search(const AtspiReference& element, int depth, Search& search);
    bool isField(const AtspiReference& element, std::uint64_t states);

    AtspiBus& bus_;
};

} // namespace querlin
