#include "platform/x11/ApplicationNames.h"

#include <algorithm>
#include <memory>

#include <gio/gdesktopappinfo.h>

namespace querlin {

namespace {

constexpr std::string_view suffix = ".desktop";

struct Unref {
    void operator()(GAppInfo* info) const { g_object_unref(info); }
};

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return lower;
}

std::string text(const char* given) { return given ? given : ""; }

std::string_view lastPart(std::string_view path, char separator) {
    return path.substr(path.rfind(separator) + 1); // All of it where there is none.
}

ApplicationNames::Entry described(GAppInfo* info) {
    ApplicationNames::Entry entry;
    entry.identifier = text(g_app_info_get_id(info));
    if (entry.identifier.ends_with(suffix)) entry.identifier.resize(entry.identifier.size() - suffix.size());
    entry.name = text(g_app_info_get_name(info));
    if (G_IS_DESKTOP_APP_INFO(info))
        entry.windowClass = text(g_desktop_app_info_get_startup_wm_class(G_DESKTOP_APP_INFO(info)));
    return entry;
}

template<class Names>
std::optional<std::string> find(const Names& names, std::string_view key) {
    const auto found = names.find(key);
    return found == names.end() ? std::nullopt : std::optional(found->second);
}

} // namespace

ApplicationNames ApplicationNames::installed() {
    std::vector<Entry> shown;
    std::vector<Entry> hidden;
    GList* all = g_app_info_get_all();
    for (const GList* link = all; link; link = link->next) {
        const std::unique_ptr<GAppInfo, Unref> info(static_cast<GAppInfo*>(link->data));
        (g_app_info_should_show(info.get()) != FALSE ? shown : hidden).push_back(described(info.get()));
    }
    g_list_free(all);
    shown.insert(shown.end(), hidden.begin(), hidden.end());
    return ApplicationNames(shown);
}

ApplicationNames::ApplicationNames(const std::vector<Entry>& entries) {
    for (const auto& entry : entries) {
        if (entry.name.empty()) continue;
        const auto identifier = lowerCase(entry.identifier);
        byIdentifier_.try_emplace(identifier, entry.name);
        byLastPart_.try_emplace(std::string(lastPart(identifier, '.')), entry.name);
        if (!entry.windowClass.empty()) byWindowClass_.try_emplace(lowerCase(entry.windowClass), entry.name);
    }
}

std::optional<std::string> ApplicationNames::ofIdentifier(std::string_view identifier) const {
    const auto key = lowerCase(identifier);
    for (const auto* names : {&byIdentifier_, &byWindowClass_, &byLastPart_}) {
        if (auto name = find(*names, key)) return name;
    }
    // "thunderbird-default": some add the name of their profile.
    const auto end = key.rfind('-');
    return end == std::string::npos ? std::nullopt : find(byIdentifier_, key.substr(0, end));
}

} // namespace querlin
