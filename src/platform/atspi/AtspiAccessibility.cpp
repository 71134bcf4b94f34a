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

/// Of a negative number of the system.
FieldFault faultOf(int error) {
    switch (error) {
    case -ETIMEDOUT:
        return FieldFault::noAnswer;
    case -ENOENT:
        return FieldFault::noField;
    case -ENOTCONN:
    case -ECONNRESET:
        return FieldFault::unavailable;
    case -EFBIG:
        return FieldFault::tooLong;
    default:
        return FieldFault::gone;
    }
}

template<class Value>
std::expected<Value, FieldFault> orFault(std::expected<Value, int> value) {
    if (!value) return std::unexpected(faultOf(value.error()));
    return std::move(*value);
}

} // namespace

/// What an application shows of one of its elements. It asks afresh each time, but for what can't change.
class AtspiAccessibility::Element final : public Field {
public:
    Element(AtspiAccessibility& owner, AtspiReference reference) :
        owner_(owner), reference_(std::move(reference)) {}

    std::expected<FieldRecord, FieldFault> look(FieldLook depth) override {
        auto* tree = owner_.tree();
        if (!tree) return std::unexpected(FieldFault::unavailable);
        const auto description = tree->describe(reference_);
        if (!description) return std::unexpected(faultOf(description.error()));
        auto record = fieldRecord(*description);
        record.processIdentifier = owner_.processOf(reference_);
        if (depth == FieldLook::contents) addContents(*tree, record);
        return record;
    }

    std::expected<std::string, FieldFault> text(TextRange range) override {
        auto record = look(FieldLook::kind);
        if (!record) return std::unexpected(record.error());
        auto& tree = *owner_.tree();
        const auto length = readableLength(tree, *record);
        if (!length) return std::unexpected(length.error());
        if (range.start < 0 || range.length < 0 || range.length > mostCharacters || range.start > *length)
            return std::unexpected(FieldFault::outOfRange);
        return orFault(tree.text(reference_, range.start, std::min(range.start + range.length, *length)));
    }

private:
    void addContents(AtspiTree& tree, FieldRecord& record) {
        const auto length = readableLength(tree, record);
        if (!length) {
            record.text = std::unexpected(length.error());
            return;
        }
        record.length = *length;
        if (*length > mostCharacters) {
            record.text = std::unexpected(FieldFault::tooLong);
        } else {
            record.text = orFault(tree.text(reference_, 0, -1));
        }
        if (const auto selection = tree.selection(reference_)) record.selection = *selection;
    }

    /// How many characters may be read.
    std::expected<std::int64_t, FieldFault> readableLength(AtspiTree& tree, const FieldRecord& record) {
        if (record.isPassword) return std::unexpected(FieldFault::password);
        if (!hasText_) {
            const auto answer = tree.hasText(reference_);
            if (!answer) return std::unexpected(faultOf(answer.error()));
            hasText_ = *answer;
        }
        if (!*hasText_) return std::unexpected(FieldFault::noText);
        return orFault(tree.characterCount(reference_));
    }

    AtspiAccessibility& owner_;
    const AtspiReference reference_;
    std::optional<bool> hasText_;
};

AtspiAccessibility::AtspiAccessibility(std::function<std::optional<std::int32_t>()> frontProcess) :
    frontProcess_(std::move(frontProcess)) {}

AtspiAccessibility::~AtspiAccessibility() = default;

std::expected<FieldPointer, FieldFault> AtspiAccessibility::focusedField() {
    auto field = heardField();
    if (!field && field.error() != FieldFault::unavailable) field = searchedField();
    return field;
}

std::expected<FieldPointer, FieldFault> AtspiAccessibility::heardField() {
    const auto process = lookableFront();
    auto found = process ? orFault(trackedFocus(*process)) : std::unexpected(process.error());
    if (!found) return std::unexpected(found.error());
    return std::make_shared<Element>(*this, std::move(*found));
}

std::expected<FieldPointer, FieldFault> AtspiAccessibility::searchedField() {
    const auto process = lookableFront();
    auto found = process ? orFault(searchedFocus(*process)) : std::unexpected(process.error());
    if (!found) return std::unexpected(found.error());
    return std::make_shared<Element>(*this, std::move(*found));
}

/// The process in front, if it can be looked into. Our own windows couldn't answer while this thread waits
/// for them; and without a window in front nobody's word about the focus counts.
std::expected<std::int32_t, FieldFault> AtspiAccessibility::lookableFront() {
    if (!tree()) return std::unexpected(FieldFault::unavailable);
    const auto front = frontProcess_();
    if (!front || *front == ::getpid()) return std::unexpected(FieldFault::noField);
    return *front;
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

/// 0 if the bus doesn't say.
std::int32_t AtspiAccessibility::processOf(const AtspiReference& element) {
    if (const auto known = processes_.find(element.name); known != processes_.end()) return known->second;
    const auto process = tree_->process(element.name);
    if (!process) return 0;
    return processes_.emplace(element.name, *process).first->second;
}

bool AtspiAccessibility::belongsTo(const AtspiReference& element, std::int32_t process) {
    const auto owner = processOf(element);
    return owner != 0 && ProcessTree::areRelated(owner, process);
}

std::expected<AtspiReference, int> AtspiAccessibility::trackedFocus(std::int32_t process) {
    for (const auto& element : tracker_.recent()) {
        if (!belongsTo(element, process)) continue;
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
    hint(process, isKnown ? "zeigt kein Feld mit der Eingabemarke" : "zeigt seine Eingabefelder nicht");
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
