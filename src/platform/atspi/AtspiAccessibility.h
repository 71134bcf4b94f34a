#pragma once

#include "desktop/Accessibility.h"
#include "platform/atspi/AtspiTree.h"
#include "platform/atspi/FocusTracker.h"

#include <expected>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace querlin {

/// Other applications' elements by the accessibility bus (AT-SPI 2). Toolkits show their trees from the
/// moment on at which this is made; some only to programs that start later. Main thread. It must outlive what
/// it hands out.
///
/// Nothing here waits for long: a call 100 ms at most, a search 150 ms, an application 200 ms within a
/// second, whatever it is asked.
class AtspiAccessibility final : public Accessibility {
public:
    /// `frontProcess` tells whose window has the keyboard: the focus of another application is none.
    explicit AtspiAccessibility(std::function<std::optional<std::int32_t>()> frontProcess);
    ~AtspiAccessibility() override;

    /// The one that was heard to get the focus; where none was, it is searched for in the program in front.
    std::expected<FieldPointer, FieldFault> focusedField() override;
    /// The two ways to it, for tests.
    std::expected<FieldPointer, FieldFault> heardField();
    std::expected<FieldPointer, FieldFault> searchedField();

    /// Whether the accessibility bus is there. At the first time it waits for it, half a second at most.
    bool isAvailable();
    /// Whether it is there now; if not, it is started and switched on at once, which shows a moment later.
    bool requestEnable();

private:
    class Element;

    std::optional<std::string> busAddress();
    AtspiTree* tree();
    std::expected<std::int32_t, FieldFault> lookableFront();
    std::expected<AtspiReference, int> trackedFocus(std::int32_t process);
    std::expected<AtspiReference, int> searchedFocus(std::int32_t process);
    std::expected<AtspiReference, int> focusWithin(const AtspiReference& application, Instant deadline);
    std::int32_t processOf(const AtspiReference& element);
    bool belongsTo(const AtspiReference& element, std::int32_t process);
    void hint(std::int32_t process, std::string_view what);

    std::function<std::optional<std::int32_t>()> frontProcess_;
    FocusTracker tracker_;
    std::string address_;
    std::unique_ptr<AtspiBus> bus_;
    std::unique_ptr<AtspiTree> tree_;
    Instant nextAttempt_;
    bool hasWaited_ = false;
    std::map<std::string, std::int32_t> processes_; ///< of names on the bus
    std::set<std::string> hinted_;                  ///< programs that have been complained about
};

} // namespace querlin
