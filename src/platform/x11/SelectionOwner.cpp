#include "platform/x11/SelectionOwner.h"

#include "platform/x11/SelectionForms.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace querlin {

namespace {

/// The server's time goes round every 49 days.
bool isBefore(xcb_timestamp_t time, xcb_timestamp_t other) {
    return static_cast<std::int32_t>(time - other) < 0;
}

std::vector<SelectionContents::Form> formsOf(const ClipboardSnapshot::Item& item, XcbAtoms& atoms) {
    std::vector<std::string> names;
    std::vector<std::uint8_t> formats;
    for (const auto& data : item) {
        auto form = SelectionForms::of(data);
        names.push_back(data.type);
        names.push_back(std::move(form.type));
        formats.push_back(form.format);
    }
    const auto numbers = atoms.atoms(names);
    std::vector<SelectionContents::Form> forms;
    for (std::size_t i = 0; i < item.size(); ++i) {
        const auto target = numbers[2 * i];
        const auto type = numbers[(2 * i) + 1];
        if (target == XCB_NONE || type == XCB_NONE || SelectionForms::isPseudo(item[i].type)) continue;
        if (std::ranges::find(forms, target, &SelectionContents::Form::target) != forms.end()) continue;
        forms.push_back({target, type, formats[i], SelectionForms::isText(item[i].type), i});
    }
    return forms;
}

} // namespace

SelectionOwner::Names::Names(XcbAtoms& atoms) :
    clipboard(atoms.atom("CLIPBOARD")),
    targets(atoms.atom("TARGETS")),
    timestamp(atoms.atom("TIMESTAMP")),
    multiple(atoms.atom("MULTIPLE")),
    atomPair(atoms.atom("ATOM_PAIR")),
    saveTargets(atoms.atom("SAVE_TARGETS")),
    null(atoms.atom("NULL")),
    manager(atoms.atom("CLIPBOARD_MANAGER")),
    historyHint(atoms.atom("x-kde-passwordManagerHint")) {}

SelectionOwner::SelectionOwner(XcbConnection& connection, XcbAtoms& atoms, xcb_window_t window) :
    connection_(connection), atoms_(atoms), window_(window), sends_(connection, atoms), names_(atoms) {}

SelectionOwner::~SelectionOwner() { lose(); }

void SelectionOwner::lose() {
    if (contents_) contents_->offer->lose();
    contents_.reset();
}

xcb_window_t SelectionOwner::owner() {
    const auto reply = connection_.reply(xcb_get_selection_owner_reply,
                                         xcb_get_selection_owner(connection_.get(), names_.clipboard));
    return reply ? reply->owner : xcb_window_t{XCB_NONE};
}

bool SelectionOwner::own(SelectionContents& contents, xcb_timestamp_t time) {
    lose();
    contents.forms = formsOf(contents.item, atoms_);
    contents.since = time;
    xcb_set_selection_owner(connection_.get(), window_, names_.clipboard, time);
    if (!isOwner()) return false;
    contents_ = std::make_shared<const SelectionContents>(std::move(contents));
    contents_->offer->begin();
    return true;
}

bool SelectionOwner::empty(xcb_timestamp_t time) {
    lose();
    xcb_set_selection_owner(connection_.get(), XCB_NONE, names_.clipboard, time);
    return owner() == XCB_NONE && !connection_.isLost();
}

SharedContents SelectionOwner::contents() {
    // The server's word that we aren't any more may still be on its way.
    if (contents_ && !isOwner()) lose();
    return contents_;
}

void SelectionOwner::handle(const xcb_generic_event_t& event) {
    switch (eventType(event)) {
    case XCB_SELECTION_REQUEST:
        answer(eventAs<xcb_selection_request_event_t>(event));
        break;
    case XCB_SELECTION_CLEAR:
        // It may be about an earlier time at which we owned it.
        (void)contents();
        break;
    case XCB_PROPERTY_NOTIFY: {
        const auto& change = eventAs<xcb_property_notify_event_t>(event);
        if (change.state == XCB_PROPERTY_DELETE) sends_.proceed(change.window, change.atom);
        break;
    }
    case XCB_DESTROY_NOTIFY:
        sends_.forget(eventAs<xcb_destroy_notify_event_t>(event).window);
        break;
    case XCB_SELECTION_NOTIFY:
        if (eventAs<xcb_selection_notify_event_t>(event).selection == names_.manager)
            hasManagerAnswered_ = true;
        break;
    default:
        break;
    }
}

void SelectionOwner::answer(const xcb_selection_request_event_t& request) {
    const auto property = request.property == XCB_NONE ? request.target : request.property;
    const bool isOurs = contents_ && request.selection == names_.clipboard;
    // A key that was pressed before these contents were there doesn't mean them.
    const bool isLate =
        isOurs && request.time != XCB_CURRENT_TIME && isBefore(request.time, contents_->since);
    const bool isDone = isOurs && !isLate && convert(request, request.target, property);

    xcb_selection_notify_event_t notice{};
    notice.response_type = XCB_SELECTION_NOTIFY;
    notice.time = request.time;
    notice.requestor = request.requestor;
    notice.selection = request.selection;
    notice.target = request.target;
    notice.property = isDone ? property : xcb_atom_t{XCB_NONE};
    // An event has 32 bytes, and this one's record fewer.
    std::array<char, 32> bytes{};
    std::memcpy(bytes.data(), &notice, sizeof(notice));
    xcb_send_event(connection_.get(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, bytes.data());
    connection_.flush();
}

bool SelectionOwner::convert(const xcb_selection_request_event_t& request, xcb_atom_t target,
                             xcb_atom_t property) {
    if (target == names_.targets) {
        contents_->offer->lookBegun(request.requestor);
        setAtoms(request.requestor, property, targets());
        return true;
    }
    if (target == names_.timestamp) {
        xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, request.requestor, property,
                            XCB_ATOM_INTEGER, 32, 1, &contents_->since);
        return true;
    }
    if (target == names_.saveTargets) { // Without an effect; the question announces that we'd ask for it.
        xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, request.requestor, property,
                            names_.null, 32, 0, nullptr);
        return true;
    }
    if (target == names_.multiple) return request.property != XCB_NONE && convertMultiple(request, property);
    return convertForm(request.requestor, target, property);
}

std::vector<xcb_atom_t> SelectionOwner::targets() const {
    std::vector<xcb_atom_t> list = {names_.targets, names_.timestamp, names_.multiple};
    if (contents_->history == ClipboardHistory::keep) list.push_back(names_.saveTargets);
    for (const auto& form : contents_->forms) list.push_back(form.target);
    return list;
}

void SelectionOwner::setAtoms(xcb_window_t window, xcb_atom_t property,
                              const std::vector<xcb_atom_t>& list) const {
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window, property, XCB_ATOM_ATOM, 32,
                        static_cast<std::uint32_t>(list.size()), list.data());
}

/// The property names pairs of targets and properties; in it we cross out the targets that we don't have.
bool SelectionOwner::convertMultiple(const xcb_selection_request_event_t& request, xcb_atom_t property) {
    const auto list = takeProperty(
        connection_.reply(xcb_get_property_reply, askForProperty(connection_, request.requestor, property)));
    auto pairs = list ? list->numbers() : std::vector<std::uint32_t>();
    if (pairs.empty() || pairs.size() % 2 != 0) return false;
    for (std::size_t i = 0; i < pairs.size(); i += 2) {
        const bool isPossible = pairs[i] != names_.multiple && pairs[i + 1] != XCB_NONE;
        if (!isPossible || !convert(request, pairs[i], pairs[i + 1])) pairs[i + 1] = XCB_NONE;
    }
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, request.requestor, property,
                        names_.atomPair, 32, static_cast<std::uint32_t>(pairs.size()), pairs.data());
    return true;
}

bool SelectionOwner::convertForm(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property) {
    const auto form = std::ranges::find(contents_->forms, target, &SelectionContents::Form::target);
    if (form == contents_->forms.end()) return false;
    if (form->isText || target == names_.historyHint) contents_->offer->lookEnded(requestor);
    const auto& bytes = contents_->bytes(*form);
    if (bytes.size() > sends_.largestPieceInBytes()) {
        sends_.begin(requestor, property, contents_, *form);
        return true;
    }
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, requestor, property, form->type,
                        form->format, static_cast<std::uint32_t>(bytes.size() / (form->format / 8)),
                        bytes.data());
    if (form->isText) contents_->offer->textTaken();
    return true;
}

bool SelectionOwner::askManagerToKeep(xcb_timestamp_t time) {
    if (!contents() || contents_->history == ClipboardHistory::skip || contents_->forms.empty()) return false;
    const auto manager = connection_.reply(xcb_get_selection_owner_reply,
                                           xcb_get_selection_owner(connection_.get(), names_.manager));
    if (!manager || manager->owner == XCB_NONE) return false;
    std::vector<xcb_atom_t> wanted;
    for (const auto& form : contents_->forms) wanted.push_back(form.target);
    setAtoms(window_, names_.saveTargets, wanted);
    hasManagerAnswered_ = false;
    xcb_convert_selection(connection_.get(), window_, names_.manager, names_.saveTargets, names_.saveTargets,
                          time);
    connection_.flush();
    return true;
}

} // namespace querlin
