#include "platform/atspi/AtspiAccessibility.h"

#include "platform/atspi/ProcessTree.h"
#include "state/DiagnosticsLog.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fmt/format.h>

#include <unistd.h>

namespace querlin {

namespace {

constexpr Duration longestFirstAttempt = std::chrono::milliseconds(500);
constexpr Duration longestConnecting = std::chrono::milliseconds(100);
constexpr Duration longestSearch = std::chrono::milliseconds(150);
constexpr Duration betweenAttempts = std::chrono::seconds(1);
/// Reading more would keep the application busy, and nobody wants it.
constexpr std::int64_t mostCharacters = 200'000;

} // namespace

/// What an application shows of one of its elements. It asks afresh each time, but for what can't change.
class AtspiAccessibility::Element final : public AccessibilityElement {
public:
    Element(AtspiAccessibility& owner, AtspiReference reference) :
        owner_(owner), reference_(std::move(reference)) {}

    std::expected<AccessibilityValue, AccessibilityError> attribute(std::string_view name) override {
        auto* tree = owner_.tree();
        if (!tree) return std::unexpected(-ENOTCONN);
        if (name == AX::role || name == AX::subrole) return role(*tree, name == AX::role);
        if (name != AX::value && name != AX::characterCount) return std::unexpected(-ENOENT);
        const auto count = readableCharacters(*tree);
        if (!count) return std::unexpected(count.error());
        if (name == AX::characterCount) return *count;
        if (*count > mostCharacters) return std::unexpected(-EFBIG);
        auto text = tree->text(reference_, 0, -1);
        if (!text) return std::unexpected(text.error());
        return std::move(*text);
    }

    std::expected<std::string, AccessibilityError> stringForRange(std::int64_t location,
                                                                  std::int64_t length) override {
        auto* tree = owner_.tree();
        if (!tree) return std::unexpected(-ENOTCONN);
        const auto count = readableCharacters(*tree);
        if (!count) return std::unexpected(count.error());
        if (location < 0 || length < 0 || length > mostCharacters || location > *count)
            return std::unexpected(-ERANGE);
        return tree->text(reference_, location, std::min(location + length, *count));
    }

private:
    std::expected<AccessibilityValue, AccessibilityError> role(AtspiTree& tree, bool isRole) {
        const auto description = tree.describe(reference_);
        if (!description) return std::unexpected(description.error());
        const auto roles = AtspiRoles::of(*description);
        const auto word = isRole ? roles.role : roles.subrole;
        if (word.empty()) return std::unexpected(-ENOENT);
        return std::string(word);
    }

    /// How many characters there are to be read; an error for what has no text, or has one that is nobody's
    /// business.
    std::expected<std::int64_t, int> readableCharacters(AtspiTree& tree) {
        const auto description = tree.describe(reference_);
        if (!description) return std::unexpected(description.error());
        if (AtspiRoles::of(*description).subrole == AX::secureTextField) return std::unexpected(-EACCES);
        if (!hasText_) {
            const auto answer = tree.hasText(reference_);
            if (!answer) return std::unexpected(answer.error());
            hasText_ = *answer;
        }
        if (!*hasText_) return std::unexpected(-ENOENT);
        return tree.characterCount(reference_);
    }

    AtspiAccessibility& owner_;
    const AtspiReference reference_;
    std::optional<bool> hasText_;
};

/// The desktop as a whole, or one application: knows the element with the focus.
class AtspiAccessibility::Root final : public AccessibilityElement {
public:
    Root(AtspiAccessibility& owner, std::optional<std::int32_t> process) : owner_(owner), process_(process) {}

    std::expected<AccessibilityValue, AccessibilityError> attribute(std::string_view name) override {
        if (name != AX::focusedElement) return std::unexpected(-ENOENT);
        if (!owner_.tree()) return std::unexpected(-ENOTCONN);
        if (isOurs()) return std::unexpected(-ENOENT);
        auto found = process_ ? owner_.searchedFocus(*process_) : owner_.trackedFocus();
        if (!found) return std::unexpected(found.error());
        return ElementPointer(std::make_shared<Element>(owner_, std::move(*found)));
    }
    std::expected<std::string, AccessibilityError> stringForRange(std::int64_t, std::int64_t) override {
        return std::unexpected(-ENOENT);
    }

private:
    /// Our own windows couldn't answer while this thread waits for it.
    bool isOurs() const { return (process_ ? process_ : owner_.frontProcess_()) == ::getpid(); }

    AtspiAccessibility& owner_;
    const std::optional<std::int32_t> process_;
};

AtspiAccessibility::AtspiAccessibility(std::function<std::optional<std::int32_t>()> frontProcess) :
    frontProcess_(std::move(frontProcess)) {}

AtspiAccessibility::~AtspiAccessibility() = default;

ElementPointer AtspiAccessibility::systemWide() { return std::make_shared<Root>(*this, std::nullopt); }

ElementPointer AtspiAccessibility::application(std::int32_t processIdentifier) {
    return std::make_shared<Root>(*this, processIdentifier);
}

bool AtspiAccessibility::isAvailable() { return busAddress().has_value(); }

std::optional<std::string> AtspiAccessibility::busAddress() {
    return std::exchange(hasWaited_, true) ? tracker_.address() : tracker_.firstAddress(longestFirstAttempt);
}

bool AtspiAccessibility::requestEnable() {
    if (!isAvailable()) tracker_.hurry();
    return isAvailable();
}

/// Null while there is no bus.
AtspiTree* AtspiAccessibility::tree() {
    const auto address = busAddress();
    if (bus_ && (bus_->isLost() || address != address_)) {
        tree_.reset();
        bus_.reset();
        processes_.clear();
    }
    if (bus_) return tree_.get();
    const auto now = std::chrono::steady_clock::now();
    if (!address || now < nextAttempt_) return nullptr;
    nextAttempt_ = now + betweenAttempts;
    auto bus = AtspiBus::open(*address, longestConnecting);
    if (!bus) return nullptr;
    nextAttempt_ = {};
    address_ = *address;
    bus_ = std::make_unique<AtspiBus>(std::move(*bus));
    tree_ = std::make_unique<AtspiTree>(*bus_);
    return tree_.get();
}

bool AtspiAccessibility::belongsTo(const AtspiReference& element, std::int32_t process) {
    auto known = processes_.find(element.name);
    if (known == processes_.end()) {
        const auto answer = tree_->process(element.name);
        if (!answer) return false;
        known = processes_.emplace(element.name, *answer).first;
    }
    return ProcessTree::areRelated(known->second, process);
}

/// Without a window in front nobody's word about the focus counts.
std::expected<AtspiReference, int> AtspiAccessibility::trackedFocus() {
    const auto front = frontProcess_();
    if (!front) return std::unexpected(-ENOENT);
    for (const auto& element : tracker_.recent()) {
        if (!belongsTo(element, *front)) continue;
        const auto states = tree_->states(element);
        if (states && (*states & AtspiState::focused) != 0)
            return tree_->innermostFocus(element, *states, std::chrono::steady_clock::now() + longestSearch);
        if (states) continue; // A relative of the window's process may have it.
        if (states.error() == -ETIMEDOUT) return std::unexpected(-ETIMEDOUT);
        tracker_.forget(element);
    }
    return std::unexpected(-ENOENT);
}

std::expected<AtspiReference, int> AtspiAccessibility::searchedFocus(std::int32_t process) {
    const auto deadline = std::chrono::steady_clock::now() + longestSearch;
    const auto applications = tree_->children(atspiRoot());
    if (!applications) return std::unexpected(applications.error());
    bool isKnown = false;
    for (const auto& application : *applications) {
        if (!belongsTo(application, process)) continue;
        isKnown = true;
        auto found = focusWithin(application, deadline);
        if (found) tracker_.remember(*found);
        if (found || found.error() != -ENOENT) return found;
    }
    hint(process, isKnown ? "zeigt kein Feld mit der Eingabemarke"
                          : "ist auf dem Bedienungshilfen-Bus nicht zu finden");
    return std::unexpected(-ENOENT);
}

/// In its active windows; in all of them where none says that it is.
std::expected<AtspiReference, int> AtspiAccessibility::focusWithin(const AtspiReference& application,
                                                                   Instant deadline) {
    auto windows = tree_->children(application);
    if (!windows) return std::unexpected(windows.error());
    const auto isActive = [this](const AtspiReference& window) {
        return (tree_->states(window).value_or(0) & AtspiState::active) != 0;
    };
    const auto inactive = std::ranges::stable_partition(*windows, isActive);
    if (inactive.size() < windows->size()) windows->erase(inactive.begin(), inactive.end());
    for (const auto& window : *windows) {
        auto found = tree_->findFocus(window, deadline);
        if (found || found.error() != -ENOENT) return found;
    }
    return std::unexpected(-ENOENT);
}

void AtspiAccessibility::hint(std::int32_t process, std::string_view what) {
    const auto name = ProcessTree::name(process);
    if (!hinted_.insert(name).second) return;
    DiagnosticsLog::note("context",
                         fmt::format("{} (PID {}) {} – die Art seiner Felder bleibt unbekannt. Neu starten "
                                     "hilft oft; Chromium braucht --force-renderer-accessibility.",
                                     name, process, what));
}

} // namespace querlin
