#include "ClipboardClient.h"

#include "platform/x11/SelectionForms.h"
#include "support/Desktop.h"

#include <algorithm>
#include <array>
#include <cstring>

#include <poll.h>

namespace querlin {

namespace {

xcb_window_t windowOn(const XcbConnection& connection) {
    const auto window = xcb_generate_id(connection.get());
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection.get(), XCB_COPY_FROM_PARENT, window, connection.root(), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    return window;
}

void waitFor(const XcbConnection& connection) {
    pollfd socket{connection.descriptor(), POLLIN, 0};
    ::poll(&socket, 1, 2);
}

} // namespace

CopyingProgram::CopyingProgram(ClipboardSnapshot::Item forms, CopyingHabits habits) :
    forms_(std::move(forms)),
    habits_(std::move(habits)),
    connection_(std::move(*XcbConnection::open({}))),
    atoms_(*connection_),
    window_(windowOn(*connection_)) {
    const auto selection = atoms_.atom(habits_.manages.empty() ? "CLIPBOARD" : habits_.manages);
    xcb_set_selection_owner(connection_->get(), window_, selection, XCB_CURRENT_TIME);
    connection_->reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(connection_->get(), selection));
    thread_ = std::thread([this] { run(); });
}

CopyingProgram::~CopyingProgram() {
    isEnding_ = true;
    thread_.join();
}

void CopyingProgram::run() {
    while (!isEnding_ && connection_) {
        while (const auto event = connection_->nextEvent()) {
            if (eventType(*event) == XCB_SELECTION_REQUEST) answer(eventAs<xcb_selection_request_event_t>(*event));
            if (eventType(*event) == XCB_PROPERTY_NOTIFY) goOn(eventAs<xcb_property_notify_event_t>(*event));
            if (habits_.diesAfter && answers_ > *habits_.diesAfter) {
                connection_.reset();
                return;
            }
        }
        waitFor(*connection_);
    }
}

void CopyingProgram::answer(const xcb_selection_request_event_t& request) {
    const auto target = atoms_.name(request.target);
    if (habits_.unanswered.contains(target)) return;
    if (SelectionForms::isImage(target)) std::this_thread::sleep_for(habits_.perImage);
    if (++answers_; habits_.diesAfter && answers_ > *habits_.diesAfter) return;
    std::array<char, 32> bytes{};
    xcb_selection_notify_event_t notice{};
    notice.response_type = XCB_SELECTION_NOTIFY;
    notice.time = request.time;
    notice.requestor = request.requestor;
    notice.selection = request.selection;
    notice.target = request.target;
    notice.property = convert(request, target) ? request.property : xcb_atom_t{XCB_NONE};
    std::memcpy(bytes.data(), &notice, sizeof(notice));
    xcb_send_event(connection_->get(), 0, request.requestor, 0, bytes.data());
    connection_->flush();
}

bool CopyingProgram::convert(const xcb_selection_request_event_t& request, const std::string& target) {
    const auto put = [&](xcb_atom_t type, std::uint8_t format, std::size_t count, const void* data) {
        xcb_change_property(connection_->get(), XCB_PROP_MODE_REPLACE, request.requestor, request.property, type, format,
                            static_cast<std::uint32_t>(count), data);
    };
    if (target == "SAVE_TARGETS") {
        ++savesAsked;
        put(atoms_.atom("NULL"), 32, 0, nullptr);
        return true;
    }
    if (target == "TARGETS") {
        std::vector<std::string> names = {"TARGETS", "TIMESTAMP", "MULTIPLE", "SAVE_TARGETS"};
        for (const auto& data : forms_) names.push_back(data.type);
        const auto list = atoms_.atoms(names);
        put(XCB_ATOM_ATOM, 32, list.size(), list.data());
        return true;
    }
    const auto data = std::ranges::find(forms_, target, &ClipboardData::type);
    if (data == forms_.end() || habits_.refused.contains(target)) return false;
    const auto form = SelectionForms::of(*data);
    const auto type = atoms_.atom(form.type);
    if (data->bytes.size() <= habits_.largestPiece) {
        put(type, form.format, data->bytes.size() / (form.format / 8), data->bytes.data());
        return true;
    }
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_->get(), request.requestor, XCB_CW_EVENT_MASK, &events);
    const auto size = static_cast<std::uint32_t>(data->bytes.size());
    put(atoms_.atom("INCR"), 32, 1, &size);
    sendings_.push_back({request.requestor, request.property, type, form.format, data->bytes, 0, 0});
    return true;
}

void CopyingProgram::goOn(const xcb_property_notify_event_t& change) {
    if (change.state != XCB_PROPERTY_DELETE) return;
    const auto sending =
        std::ranges::find_if(sendings_, [&](const Sending& s) { return s.requestor == change.window && s.property == change.atom; });
    if (sending == sendings_.end()) return;
    if (habits_.stopsAfterPieces && sending->pieces++ >= *habits_.stopsAfterPieces) return;
    const auto size = std::min(habits_.largestPiece, sending->bytes.size() - sending->offset);
    xcb_change_property(connection_->get(), XCB_PROP_MODE_REPLACE, sending->requestor, sending->property, sending->type, sending->format,
                        static_cast<std::uint32_t>(size / (sending->format / 8)), sending->bytes.data() + sending->offset);
    connection_->flush();
    sending->offset += size;
    if (size == 0) sendings_.erase(sending);
}

PastingProgram::PastingProgram() :
    connection_(std::move(*XcbConnection::open({}))), atoms_(*connection_), window_(windowOn(*connection_)) {}

void PastingProgram::destroyWindow() {
    xcb_destroy_window(connection_->get(), window_);
    window_ = windowOn(*connection_);
    connection_->flush();
}

bool PastingProgram::wait(const std::function<bool(const xcb_generic_event_t&)>& isIt) {
    bool isThere = false;
    return eventually(
        [&] {
            while (const auto event = connection_->nextEvent()) {
                if (isIt(*event)) return isThere = true;
            }
            return isThere;
        },
        std::chrono::seconds(2));
}

std::optional<XcbProperty> PastingProgram::take(xcb_atom_t property) {
    return takeProperty(connection_->reply(xcb_get_property_reply, askForProperty(*connection_, window_, property, true)));
}

bool PastingProgram::ask(xcb_atom_t target, xcb_atom_t property, xcb_timestamp_t time) {
    xcb_convert_selection(connection_->get(), window_, atoms_.atom("CLIPBOARD"), target, property, time);
    connection_->flush();
    bool isGiven = false;
    wait([&](const xcb_generic_event_t& event) {
        if (eventType(event) != XCB_SELECTION_NOTIFY) return false;
        isGiven = eventAs<xcb_selection_notify_event_t>(event).property == property;
        return true;
    });
    return isGiven;
}

std::optional<XcbProperty> PastingProgram::read(const std::string& target, std::size_t pieces, xcb_timestamp_t time) {
    const auto property = atoms_.atom("PASTED");
    if (!ask(atoms_.atom(target), property, time)) return std::nullopt;
    auto whole = take(property);
    if (!whole || whole->type != atoms_.atom("INCR")) return whole;
    *whole = {};
    for (std::size_t i = 0; i < pieces; ++i) {
        const auto isNew = [&](const xcb_generic_event_t& event) {
            if (eventType(event) != XCB_PROPERTY_NOTIFY) return false;
            const auto& change = eventAs<xcb_property_notify_event_t>(event);
            return change.atom == property && change.state == XCB_PROPERTY_NEW_VALUE;
        };
        if (!wait(isNew)) return std::nullopt;
        const auto piece = take(property);
        if (!piece || piece->bytes.empty()) return whole;
        whole->type = piece->type;
        whole->format = piece->format;
        whole->bytes += piece->bytes;
    }
    return whole;
}

std::vector<std::string> PastingProgram::targets() {
    const auto list = read("TARGETS");
    return list ? atoms_.names(list->numbers()) : std::vector<std::string>();
}

std::vector<std::string> PastingProgram::readMultiple(const std::vector<std::string>& targets) {
    std::vector<xcb_atom_t> pairs;
    for (const auto& target : targets) {
        pairs.push_back(atoms_.atom(target));
        pairs.push_back(atoms_.atom("PASTED_" + target));
    }
    const auto property = atoms_.atom("PASTED_PAIRS");
    xcb_change_property(connection_->get(), XCB_PROP_MODE_REPLACE, window_, property, atoms_.atom("ATOM_PAIR"), 32,
                        static_cast<std::uint32_t>(pairs.size()), pairs.data());
    std::vector<std::string> texts(targets.size());
    if (!ask(atoms_.atom("MULTIPLE"), property, XCB_CURRENT_TIME)) return texts;
    const auto granted = take(property)->numbers();
    for (std::size_t i = 0; i < targets.size(); ++i) {
        if (granted[2 * i + 1] != XCB_NONE) texts[i] = take(granted[2 * i + 1]).value_or(XcbProperty()).bytes;
    }
    return texts;
}

} // namespace querlin
