#include "platform/x11/SelectionReader.h"

#include "platform/x11/SelectionForms.h"
#include "state/DiagnosticsLog.h"

#include <algorithm>
#include <set>

#include <fmt/format.h>
#include <xcb/xfixes.h>

namespace querlin {

namespace {

constexpr Duration longestWaitForTargets = std::chrono::milliseconds(500);
/// For the principal forms, and for other encodings of an image; both from the beginning.
constexpr Duration longestReading = std::chrono::seconds(3);
constexpr Duration longestForFurther = std::chrono::milliseconds(400);
/// An image may take its owner a while to encode; anything else that takes so long isn't coming.
constexpr Duration longestSilence = std::chrono::seconds(1);
constexpr std::size_t largestSnapshotInBytes = 256UZ * 1024 * 1024;
/// The owner may change while it is read: then what the new one has counts.
constexpr int mostOwners = 3;

/// Answers that come too late find no window any more, and their properties go with it.
class RequestWindow {
public:
    explicit RequestWindow(XcbConnection& connection) :
        connection_(connection), id_(xcb_generate_id(connection.get())) {
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(connection_.get(), XCB_COPY_FROM_PARENT, id_, connection_.root(), -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    }
    ~RequestWindow() {
        xcb_destroy_window(connection_.get(), id_);
        connection_.flush();
    }
    RequestWindow(const RequestWindow&) = delete;
    RequestWindow& operator=(const RequestWindow&) = delete;

    xcb_window_t id() const { return id_; }

private:
    XcbConnection& connection_;
    xcb_window_t id_;
};

} // namespace

SelectionReader::SelectionReader(XcbConnection& connection, XcbAtoms& atoms) :
    connection_(connection),
    atoms_(atoms),
    clipboard_(atoms.atom("CLIPBOARD")),
    targets_(atoms.atom("TARGETS")),
    incr_(atoms.atom("INCR")) {
    if (!connection_.hasExtension(xcb_xfixes_id)) return;
    const auto version =
        connection_.reply(xcb_xfixes_query_version_reply, xcb_xfixes_query_version(connection_.get(), 5, 0));
    if (!version) return;
    const auto* data = xcb_get_extension_data(connection_.get(), &xcb_xfixes_id);
    ownerEvent_ = static_cast<std::uint8_t>(data->first_event + XCB_XFIXES_SELECTION_NOTIFY);
    xcb_xfixes_select_selection_input(connection_.get(), connection_.root(), clipboard_,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
}

void SelectionReader::handle(const xcb_generic_event_t& event) {
    const auto type = eventType(event);
    if (type == XCB_SELECTION_NOTIFY) {
        const auto& notice = eventAs<xcb_selection_notify_event_t>(event);
        if (notice.requestor != window_ || notice.target != awaited_) return;
        isAnswered_ = true;
        isRefused_ = notice.property == XCB_NONE;
    } else if (type == XCB_PROPERTY_NOTIFY) {
        const auto& change = eventAs<xcb_property_notify_event_t>(event);
        if (change.window == window_ && change.atom == awaited_ && change.state == XCB_PROPERTY_NEW_VALUE)
            hasNewValue_ = true;
    } else if (ownerEvent_ != 0 && type == ownerEvent_) {
        const auto& change = eventAs<xcb_xfixes_selection_notify_event_t>(event);
        if (change.selection != clipboard_ || change.owner == presentOwner_) return;
        hasOwnerChanged_ = true;
        changeTime_ = change.timestamp;
    }
}

xcb_window_t SelectionReader::owner() {
    const auto reply = connection_.reply(xcb_get_selection_owner_reply,
                                         xcb_get_selection_owner(connection_.get(), clipboard_));
    return reply ? reply->owner : xcb_window_t{XCB_NONE};
}

ClipboardSnapshot SelectionReader::read(xcb_timestamp_t time, const Serve& serve) {
    changeTime_ = time;
    const auto begun = std::chrono::steady_clock::now();
    Reading last;
    for (int i = 0; i < mostOwners; ++i) {
        presentOwner_ = owner();
        if (presentOwner_ == XCB_NONE) break;
        last = {changeTime_, &serve, begun, {}, {}, {}};
        if (readOwner(last)) break;
    }
    const auto count = std::ranges::count_if(last.found, [](const auto& data) { return data.has_value(); });
    if (last.leftOut > 0)
        DiagnosticsLog::note("clipboard",
                             fmt::format("{} von {} Formen der Zwischenablage blieben aus.", last.leftOut,
                                         last.leftOut + static_cast<std::size_t>(count)));
    ClipboardSnapshot snapshot;
    ClipboardSnapshot::Item item;
    for (auto& data : last.found) {
        if (data) item.push_back(std::move(*data));
    }
    if (!item.empty()) snapshot.items.push_back(std::move(item));
    return snapshot;
}

/// False if there is another owner now.
bool SelectionReader::readOwner(Reading& reading) {
    hasOwnerChanged_ = false;
    const RequestWindow window(connection_);
    window_ = window.id();
    if (askForTargets(reading)) {
        const auto order = SelectionForms::order(reading.names);
        fetch(reading, order.principal, reading.begun + longestReading);
        fetch(reading, order.further, reading.begun + longestForFurther);
    }
    window_ = XCB_NONE;
    return !hasOwnerChanged_ || owner() == XCB_NONE;
}

bool SelectionReader::askForTargets(Reading& reading) {
    const auto deadline = std::chrono::steady_clock::now() + longestWaitForTargets;
    const auto answer = convert(reading, targets_, deadline, longestWaitForTargets);
    if (!answer && answer.error() == Gap::late)
        DiagnosticsLog::note("clipboard", "Das Programm, dem die Zwischenablage gehört, antwortet nicht.");
    if (!answer) return false;
    reading.targets = answer->numbers();
    std::set<xcb_atom_t> known; // Some name one twice.
    std::erase_if(reading.targets, [&known](xcb_atom_t target) { return !known.insert(target).second; });
    reading.names = atoms_.names(reading.targets);
    reading.found.resize(reading.targets.size());
    return true;
}

void SelectionReader::fetch(Reading& reading, const std::vector<std::size_t>& wanted, Instant deadline) {
    for (const auto index : wanted) {
        const bool isImage = SelectionForms::isImage(reading.names[index]);
        auto answer =
            convert(reading, reading.targets[index], deadline, isImage ? longestReading : longestSilence);
        if (!answer) {
            if (answer.error() != Gap::refused) ++reading.leftOut;
            continue;
        }
        reading.sizeInBytes += answer->bytes.size();
        auto form = SelectionForms::inWords({atoms_.name(answer->type), answer->format});
        reading.found[index] = ClipboardData{reading.names[index], std::move(answer->bytes), std::move(form)};
    }
}

/// The answer goes into the property with the target's own name: one for each.
SelectionReader::Answer SelectionReader::convert(Reading& reading, xcb_atom_t target, Instant deadline,
                                                 Duration silence) {
    const auto now = std::chrono::steady_clock::now();
    if (hasOwnerChanged_) return std::unexpected(Gap::abandoned);
    if (now >= deadline) return std::unexpected(Gap::late);
    awaited_ = target;
    isAnswered_ = false;
    xcb_convert_selection(connection_.get(), window_, clipboard_, target, target, reading.time);
    connection_.flush();
    if (!await(reading, isAnswered_, std::min(deadline, now + silence)))
        return std::unexpected(hasOwnerChanged_ ? Gap::abandoned : Gap::late);
    if (isRefused_) return std::unexpected(Gap::refused);
    hasNewValue_ = false;
    auto property = takeProperty(
        connection_.reply(xcb_get_property_reply, askForProperty(connection_, window_, target, true)));
    if (!property) return std::unexpected(Gap::refused);
    if (property->type == incr_) return receivePieces(reading, target, deadline, silence);
    return std::move(*property);
}

/// Each new value of the property is a piece, the next one comes when it is deleted, and an empty one is the
/// end.
SelectionReader::Answer SelectionReader::receivePieces(Reading& reading, xcb_atom_t property,
                                                       Instant deadline, Duration silence) {
    XcbProperty whole;
    for (;;) {
        if (!await(reading, hasNewValue_, std::min(deadline, std::chrono::steady_clock::now() + silence)))
            return std::unexpected(hasOwnerChanged_ ? Gap::abandoned : Gap::late);
        hasNewValue_ = false;
        const auto piece = takeProperty(
            connection_.reply(xcb_get_property_reply, askForProperty(connection_, window_, property, true)));
        if (!piece) return std::unexpected(Gap::abandoned);
        if (whole.type == XCB_NONE) {
            whole.type = piece->type;
            whole.format = piece->format;
        }
        if (piece->bytes.empty()) return whole;
        whole.bytes += piece->bytes;
        if (reading.sizeInBytes + whole.bytes.size() > largestSnapshotInBytes)
            return std::unexpected(Gap::tooLarge);
    }
}

bool SelectionReader::await(const Reading& reading, const bool& reached, Instant deadline) const {
    while (!reached) {
        if (hasOwnerChanged_ || std::chrono::steady_clock::now() >= deadline) return false;
        if (!(*reading.serve)(deadline)) return reached;
    }
    return true;
}

} // namespace querlin
